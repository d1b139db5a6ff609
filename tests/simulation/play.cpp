// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/play.h"

#include <algorithm>
#include <set>

#include "simulation/promises.h"

namespace orven::test {
namespace {

/// Longest time that anything started by a script goes on after it: an answer under way, a silence limit, a
/// message that is played, a mail.
constexpr auto kAftermath = 20s;

/// Somebody calls, waits for the beep and talks.
void PlayPlainCall(World& world, Promises& promises) {
  constexpr int kMostRings = 5;
  MendEverything(world);
  promises.ExpectWholeCall();
  world.Talk();
  world.line->Offer();
  for (int ring = 0; ring < kMostRings; ++ring) {
    world.line->Ring();
    world.RunFor(1s);
  }
  world.RunFor(4s);
  world.line->HangUp();
  world.RunFor(kAftermath);
}

/// Without its time and its numbers, by which the same promise differs from one script to the next.
std::string Kind(const std::string& broken) {
  std::string kind = broken.substr(broken.find(": ") + 2);
  std::erase_if(kind, [](char character) { return character >= '0' && character <= '9'; });
  return kind;
}

std::set<std::string> Kinds(const Outcome& outcome) {
  std::set<std::string> kinds;
  for (const auto& broken : outcome.broken) kinds.insert(Kind(broken));
  return kinds;
}

}  // namespace

Outcome Play(const Story& story) {
  World world;
  Promises promises(world);
  auto step = story.steps.begin();
  for (; step != story.steps.end() && step->at == kBeforeStart; ++step) step->act(world);
  world.Start();
  const auto begin = world.time.Uptime();
  for (; step != story.steps.end(); ++step) {
    world.RunFor(begin + step->at - world.time.Uptime());
    promises.Before(step->what);
    step->act(world);
    promises.After(step->what);
    if (!world.ended) promises.CheckWindow();
  }
  world.RunFor(begin + story.end - world.time.Uptime());
  world.line->HangUp();
  world.RunFor(kAftermath);
  if (!world.ended) PlayPlainCall(world, promises);
  promises.CheckEnd();
  return {promises.Broken(), promises.Log(), promises.Calls()};
}

/// Takes pieces of the story out as long as the rest breaks a promise: halves, quarters and so on down to
/// single steps (delta debugging).
Story Shrunk(Story story, const Outcome& outcome) {
  const auto wanted = Kinds(outcome);
  const auto breaks_one = [&](const Story& part) {
    const auto kinds = Kinds(Play(part));
    return std::ranges::any_of(kinds, [&](const auto& kind) { return wanted.contains(kind); });
  };
  for (std::size_t piece = story.steps.size() / 2; piece > 0;) {
    bool shorter = false;
    for (std::size_t begin = 0; begin < story.steps.size();) {
      const auto end = std::min(begin + piece, story.steps.size());
      auto rest = story;
      rest.steps.erase(rest.steps.begin() + static_cast<std::ptrdiff_t>(begin),
                       rest.steps.begin() + static_cast<std::ptrdiff_t>(end));
      const bool still = breaks_one(rest);
      if (still) story = std::move(rest);
      if (!still) begin = end;
      shorter = shorter || still;
    }
    if (piece == 1 && shorter) continue;  // until no single step can be left out
    piece /= 2;
  }
  return story;
}

}  // namespace orven::test
