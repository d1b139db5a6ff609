// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdlib>
#include <iostream>
#include <string>

#include "simulation/promises.h"
#include "simulation/random_call.h"

namespace orven::test {
namespace {

/// Longest time that anything started by a script goes on after it: an answer under way, a silence
/// limit, a message that is played.
constexpr auto kAftermath = 20s;

void Prepare(World& world, const RandomCall& story) {
  for (const auto& [name, value] : story.settings) world.registry.Set(name, value);
  if (story.greeting_missing) world.files.Delete(std::string(World::kHome) + "/Greets/Hello.wav");
  if (story.beep_missing) world.files.Delete(std::string(World::kHome) + "/beep.wav");
  for (int number = 0; number < story.older_messages; ++number) {
    if (number % 2 == 0) {
      world.AddMessage(std::to_string(number) + ".wav", 1500ms);
    } else {
      world.AddCallWithoutMessage();
    }
  }
  world.Start();
}

/// Plays one seed. The promises that were broken.
std::vector<std::string> Play(std::uint64_t seed, bool talkative) {
  const RandomCall story(seed);
  World world;
  Prepare(world, story);
  Promises promises(world);
  const auto begin = world.time.Uptime();
  for (const auto& happening : story.happenings) {
    world.RunFor(begin + happening.at - world.time.Uptime());
    happening.act(world);
    if (!world.ended) promises.CheckWindow();
  }
  world.RunFor(begin + story.end - world.time.Uptime());
  world.line->HangUp();
  world.RunFor(kAftermath);
  promises.CheckEnd();
  if (talkative || !promises.Broken().empty()) {
    std::cout << "seed " << seed << "\n" << story.Script() << "system log:\n";
    for (const auto& line : world.SystemLog()) std::cout << "  " << line << '\n';
  }
  return promises.Broken();
}

int Run(std::uint64_t calls, std::uint64_t first_seed, const char* program) {
  constexpr std::uint64_t kEnoughToSeeThePattern = 5;
  std::uint64_t played = 0;
  std::uint64_t failed = 0;
  for (; played < calls && failed < kEnoughToSeeThePattern; ++played) {
    const auto seed = first_seed + played;
    const auto broken = Play(seed, calls == 1);
    if (broken.empty()) continue;
    for (const auto& promise : broken) std::cout << "BROKEN " << promise << '\n';
    std::cout << "replay: " << program << " 1 " << seed << "\n\n";
    ++failed;
  }
  std::cout << played << " worlds simulated from seed " << first_seed << ", " << failed
            << " with broken promises\n";
  return failed == 0 && played > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace orven::test

int main(int count, char** arguments) {
  const auto number = [&](int index, std::uint64_t otherwise) {
    return index < count ? std::strtoull(arguments[index], nullptr, 10) : otherwise;
  };
  return orven::test::Run(number(1, 1000), number(2, 1), arguments[0]);
}
