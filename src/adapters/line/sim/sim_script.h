// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace orven {

/// One event on a simulated line.
struct SimStep {
  enum class Kind { Offer, Ring, CallerId, Press, HangUp };
  std::chrono::milliseconds at{0};  ///< after the line was opened
  Kind kind = Kind::Offer;
  std::string name{};    ///< CallerId
  std::string number{};  ///< CallerId; the keys of Press
};

using SimScript = std::vector<SimStep>;

/// Reads a script: one step per line, a time in seconds and what happens then. Empty lines and lines that
/// begin with ";" or "#" are ignored.
///
///     0    offer
///     0.1  callerid 5551234 Anna Smith
///     0.1  ring
///     9.5  press 123456*
///     20   hangup
///
/// Other lines are left out; each adds a text like "script.sim:3: …" to `complaints`.
SimScript ReadSimScript(const std::string& path, std::vector<std::string>& complaints);

}  // namespace orven
