// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>

namespace orven {

/// Makes one key press of what a modem reports of it: a digit between '/' and '~' again and again, or
/// several times without them, or once.
class KeyPresses {
 public:
  using Time = std::chrono::milliseconds;  ///< of any clock that only goes forward

  /// `code` of a <DLE> sign, whatever it is. The key, '0'-'9', '*', '#', 'A'-'D', of a new press.
  std::optional<char> Sign(char code, Time now);

 private:
  bool bracket_ = false;
  bool told_ = false;  ///< within the bracket
  char digit_ = 0;
  Time latest_{0};
};

}  // namespace orven
