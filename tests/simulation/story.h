// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "support/world.h"

namespace orven::test {

/// One thing that happens in a simulated world.
struct Step {
  std::chrono::milliseconds at;
  std::string what;  ///< readable, for the script that a failure prints
  std::function<void(World&)> act;
  std::size_t number = 0;  ///< in the whole story, from 1
};

/// The time of steps before the program starts: settings, missing files, older messages.
inline constexpr std::chrono::milliseconds kBeforeStart{-1};

/// What happens in one world, by time. Any of its steps can be left out.
struct Story {
  std::vector<Step> steps;
  std::chrono::milliseconds end{0};  ///< by then every call has been hung up

  void Add(std::chrono::milliseconds at, std::string what, std::function<void(World&)> act) {
    steps.push_back({at, std::move(what), std::move(act)});
  }
  /// Sorts and numbers the steps.
  void Close();

  /// A line for each step, its number first.
  std::string Script() const;
};

/// Writes a story at random. Its draws depend on the seed alone: the standard's distributions differ by
/// library.
struct Writer {
  explicit Writer(std::uint64_t seed) : engine(seed) {}

  int Below(int bound) { return static_cast<int>(engine() % static_cast<std::uint64_t>(bound)); }
  bool OneIn(int chances) { return Below(chances) == 0; }
  template <class... Choice>
  std::string OneOf(Choice... choices) {
    const std::string all[] = {choices...};
    return all[Below(static_cast<int>(sizeof...(choices)))];
  }
  /// Any moment of the present call, often one at which the machine is just doing something.
  std::chrono::milliseconds Moment();

  void Before(std::string what, std::function<void(World&)> act) {
    story.Add(kBeforeStart, std::move(what), std::move(act));
  }
  void Sometime(std::string what, std::function<void(World&)> act) {
    story.Add(Moment(), std::move(what), std::move(act));
  }
  void SometimeOneIn(int chances, std::string what, std::function<void(World&)> act) {
    if (OneIn(chances)) Sometime(std::move(what), std::move(act));
  }

  std::mt19937_64 engine;
  Story story;
  std::chrono::milliseconds begin{0};  ///< of the present call
};

/// A random world: settings, failing parts, messages that are there already, and one to three calls whose
/// events come in any order and at any time. The same seed gives the same story on every machine.
Story RandomStory(std::uint64_t seed);

/// Everything that goes wrong around a call: answers, audio, the disk at any write, the records, the clock, a
/// kill.
void WriteFaults(Writer& writer);
void MendEverything(World& world);

/// What a person does at the desk meanwhile: drops and answers, the quick options, the list, the player, the
/// window and its tray icon, the caller view, takes from the microphone.
void WriteDesk(Writer& writer);

/// The program has ended or is killed, and is started again: a new window, the disk as it is.
void StartAgain(World& world);

}  // namespace orven::test
