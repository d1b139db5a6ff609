// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
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

/// The moment of what is so before the program starts: settings, missing files, older messages.
inline constexpr std::chrono::milliseconds kBeforeStart{-1};

/// What happens in one world, by time. Any of its steps can be left out, and it is a story still.
struct Story {
  std::vector<Step> steps;
  std::chrono::milliseconds end{0};  ///< by then every call has been hung up

  void Add(std::chrono::milliseconds at, std::string what, std::function<void(World&)> act) {
    steps.push_back({at, std::move(what), std::move(act)});
  }
  /// The script is complete: puts the steps in order and numbers them.
  void Close();

  /// A line a step, its number first.
  std::string Script() const;
};

}  // namespace orven::test
