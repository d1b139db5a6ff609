// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <set>

#include "simulation/promises.h"

namespace orven::test {
namespace {

constexpr std::uint64_t kEnoughToSeeThePattern = 5;

/// The longest time that anything started by a story continues after it: an answer, a silence limit, playing
/// a message, a mail.
constexpr auto kAftermath = 20s;

struct Outcome {
  std::vector<std::string> broken;  ///< broken promises, each with its time
  std::vector<std::string> log;     ///< the system log in the order of writing
  int calls = 0;                    ///< number of offered calls
};

/// Plays a call without any fault: the caller waits for the beep and talks.
void PlayPlainCall(World& world, Promises& promises) {
  MendEverything(world);
  promises.whole = true;
  world.Talk();
  world.CallAndWaitForRecording();
  world.RunFor(2s);
  world.HangUp();
  world.RunFor(kAftermath);
}

/// Plays a story in a new world. Then clears all faults and plays a last call, which must be complete.
Outcome Play(const Story& story) {
  World world;
  Promises promises(world);
  auto step = story.steps.begin();
  for (; step != story.steps.end() && step->at == kBeforeStart; ++step) step->act(world);
  world.Start();
  const auto begin = world.time.Uptime();
  for (; step != story.steps.end(); ++step) {
    world.RunFor(begin + step->at - world.time.Uptime());
    promises.Play(*step);
  }
  world.RunFor(begin + story.end - world.time.Uptime());
  world.line->HangUp();
  world.RunFor(kAftermath);
  if (!world.ended) PlayPlainCall(world, promises);
  promises.CheckEnd();
  return {promises.broken, promises.log, promises.offered};
}

/// Returns the broken promises without their times and numbers, which differ between stories.
std::set<std::string> Kinds(const Outcome& outcome) {
  std::set<std::string> kinds;
  for (auto kind : outcome.broken) {
    kind.erase(0, kind.find(": "));
    std::erase_if(kind, [](char character) { return character >= '0' && character <= '9'; });
    kinds.insert(kind);
  }
  return kinds;
}

/// Returns the shortest part of the story that breaks one of the same promises. Removes pieces (halves,
/// quarters … single steps) as long as the rest still breaks one (delta debugging).
Story Shrunk(Story story, const Outcome& outcome) {
  const auto wanted = Kinds(outcome);
  for (std::size_t piece = story.steps.size() / 2; piece > 0;) {
    bool shorter = false;
    for (std::size_t begin = 0; begin < story.steps.size();) {
      const auto first = story.steps.begin() + static_cast<std::ptrdiff_t>(begin);
      const auto end = std::min(begin + piece, story.steps.size());
      Story rest{{story.steps.begin(), first}, story.end};
      rest.steps.insert(rest.steps.end(), first + static_cast<std::ptrdiff_t>(end - begin),
                        story.steps.end());
      const bool still =
          std::ranges::any_of(Kinds(Play(rest)), [&](const auto& kind) { return wanted.contains(kind); });
      if (still) story = std::move(rest);
      if (!still) begin = end;
      shorter = shorter || still;
    }
    if (piece > 1 || !shorter) piece /= 2;  // repeats single steps until none can be left out
  }
  return story;
}

/// Plays a story and prints it with its outcome.
int Show(const Story& story) {
  const auto outcome = Play(story);
  for (const auto& step : story.steps) {
    std::cout << "  [" << step.number << "] ";
    if (step.at != kBeforeStart) std::cout << step.at.count() << " ms: ";
    std::cout << step.what << '\n';
  }
  std::cout << "system log:\n";
  for (const auto& line : outcome.log) std::cout << "  " << line << '\n';
  for (const auto& promise : outcome.broken) std::cout << "BROKEN " << promise << '\n';
  return outcome.broken.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Shows the story of `seed`, or only the steps whose numbers are in `list` ("3,7,12").
int Replay(std::uint64_t seed, const std::string& list) {
  auto story = RandomStory(seed);
  std::erase_if(story.steps, [&](const Step& step) {
    const auto number = "," + std::to_string(step.number) + ",";
    return !list.empty() && ("," + list + ",").find(number) == std::string::npos;
  });
  return Show(story);
}

/// Shrinks and shows the failed story of `seed`.
void ShowFailure(std::uint64_t seed, const Outcome& outcome, const char* program) {
  const auto story = RandomStory(seed);
  const auto shortest = Shrunk(story, outcome);
  std::cout << "seed " << seed << ", shrunk from " << story.steps.size() << " steps to "
            << shortest.steps.size() << '\n';
  Show(shortest);
  std::cout << "replay: " << program << " replay " << seed << " 0";
  for (const auto& step : shortest.steps) std::cout << ',' << step.number;
  std::cout << "\n\n" << std::flush;
}

/// Plays `worlds` worlds, but for no longer than `minutes` (0: no limit).
int PlaySeeds(std::uint64_t worlds, std::uint64_t minutes, std::uint64_t first_seed, const char* program) {
  const auto begin = std::chrono::steady_clock::now();
  std::uint64_t played = 0, calls = 0, failed = 0;
  const auto report = [&] {
    std::cout << calls << " calls simulated in " << played << " worlds from seed " << first_seed << ", "
              << failed << " with broken promises\n"
              << std::flush;
  };
  for (; played < worlds && failed < kEnoughToSeeThePattern; ++played) {
    if (minutes > 0 && std::chrono::steady_clock::now() - begin >= std::chrono::minutes(minutes)) break;
    if (played % 100'000 == 99'999) report();
    const auto outcome = Play(RandomStory(first_seed + played));
    calls += static_cast<std::uint64_t>(outcome.calls);
    if (outcome.broken.empty()) continue;
    ++failed;
    ShowFailure(first_seed + played, outcome, program);
  }
  report();
  return failed == 0 && calls > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

int Run(const std::vector<std::string>& arguments, const char* program) {
  const auto number = [&](std::size_t index, std::uint64_t otherwise) {
    return index < arguments.size() ? std::strtoull(arguments[index].c_str(), nullptr, 10) : otherwise;
  };
  const std::string command = arguments.empty() ? "" : arguments[0];
  if (command == "replay") return Replay(number(1, 1), arguments.size() > 2 ? arguments[2] : "");
  if (command == "soak")
    return PlaySeeds(UINT64_MAX, number(1, 0), number(2, std::random_device()()), program);
  return PlaySeeds(number(0, 1000), 0, number(1, 1), program);
}

}  // namespace
}  // namespace orven::test

int main(int count, char** arguments) {
  return orven::test::Run({arguments + 1, arguments + count}, arguments[0]);
}
