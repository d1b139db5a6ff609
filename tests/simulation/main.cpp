// SPDX-License-Identifier: GPL-3.0-or-later
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <sstream>
#include <string>

#include "simulation/play.h"

namespace orven::test {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr std::uint64_t kEnoughToSeeThePattern = 5;

struct Tally {
  std::uint64_t worlds = 0, calls = 0, failed = 0;
};

void Print(const Story& story, const Outcome& outcome) {
  std::cout << story.Script() << "system log:\n";
  for (const auto& line : outcome.log) std::cout << "  " << line << '\n';
  for (const auto& promise : outcome.broken) std::cout << "BROKEN " << promise << '\n';
}

/// Those steps of `story` whose numbers stand in `list` ("3,7,12").
Story Only(const Story& story, const std::string& list) {
  Story part{{}, story.end};
  std::istringstream numbers(list);
  for (std::string number; std::getline(numbers, number, ',');) {
    const auto index = std::strtoull(number.c_str(), nullptr, 10);
    if (index >= 1 && index <= story.steps.size()) part.steps.push_back(story.steps[index - 1]);
  }
  return part;
}

std::string Numbers(const Story& story) {
  std::string list;
  for (const auto& step : story.steps) list += (list.empty() ? "" : ",") + std::to_string(step.number);
  return list.empty() ? "0" : list;
}

/// Plays one seed; a story that fails is shrunk and printed.
void PlaySeed(std::uint64_t seed, const char* program, Tally& tally) {
  const auto story = RandomStory(seed);
  const auto outcome = Play(story);
  ++tally.worlds;
  tally.calls += static_cast<std::uint64_t>(outcome.calls);
  if (outcome.broken.empty()) return;
  ++tally.failed;
  const auto shortest = Shrunk(story, outcome);
  std::cout << "seed " << seed << ", shrunk from " << story.steps.size() << " steps to "
            << shortest.steps.size() << '\n';
  Print(shortest, Play(shortest));
  std::cout << "replay: " << program << " replay " << seed << ' ' << Numbers(shortest) << "\n\n"
            << std::flush;
}

int Report(const Tally& tally, std::uint64_t first_seed) {
  std::cout << tally.calls << " calls simulated in " << tally.worlds << " worlds from seed " << first_seed
            << ", " << tally.failed << " with broken promises\n";
  return tally.failed == 0 && tally.calls > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Plays so many worlds (0: no limit) and until `minutes` have passed (0: no limit).
int PlaySeeds(std::uint64_t worlds, std::uint64_t minutes, std::uint64_t first_seed, const char* program) {
  const auto begin = SteadyClock::now();
  auto told = begin;
  Tally tally;
  while ((worlds == 0 || tally.worlds < worlds) && tally.failed < kEnoughToSeeThePattern) {
    const auto now = SteadyClock::now();
    if (minutes > 0 && now - begin >= std::chrono::minutes(minutes)) break;
    if (now - told >= 60s) {
      Report(tally, first_seed);
      std::cout << std::flush;
      told = now;
    }
    PlaySeed(first_seed + tally.worlds, program, tally);
  }
  return Report(tally, first_seed);
}

int Replay(std::uint64_t seed, const std::string& steps) {
  auto story = RandomStory(seed);
  if (!steps.empty()) story = Only(story, steps);
  const auto outcome = Play(story);
  Print(story, outcome);
  return outcome.broken.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

int Run(const std::vector<std::string>& arguments, const char* program) {
  const auto number = [&](std::size_t index, std::uint64_t otherwise) {
    return index < arguments.size() ? std::strtoull(arguments[index].c_str(), nullptr, 10) : otherwise;
  };
  const std::string command = arguments.empty() ? "" : arguments[0];
  if (command == "replay") return Replay(number(1, 1), arguments.size() > 2 ? arguments[2] : "");
  if (command == "soak") return PlaySeeds(0, number(1, 0), number(2, std::random_device()()), program);
  return PlaySeeds(number(0, 1000), 0, number(1, 1), program);
}

}  // namespace
}  // namespace orven::test

int main(int count, char** arguments) {
  return orven::test::Run({arguments + 1, arguments + count}, arguments[0]);
}
