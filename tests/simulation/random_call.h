// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/world.h"

namespace orven::test {

/// One thing that happens in a simulated world.
struct Happening {
  std::chrono::milliseconds at;
  std::string what;  ///< readable, for the script that a failure prints
  std::function<void(World&)> act;
};

/// A random world and what happens in it: settings, failing parts, messages that are there already,
/// and the events of one to three calls in any order and at any time. The same seed gives the same
/// script on every machine.
struct RandomCall {
  explicit RandomCall(std::uint64_t seed);

  std::map<std::string, std::string> settings;
  int older_messages = 0;  ///< calls that are filed before
  bool greeting_missing = false;
  bool beep_missing = false;
  std::vector<Happening> happenings;  ///< by time
  std::chrono::milliseconds end{0};   ///< by then every call has been hung up

  std::string Script() const;
};

}  // namespace orven::test
