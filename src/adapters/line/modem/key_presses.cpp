// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/key_presses.h"

#include <string_view>

namespace orven {
namespace {

constexpr char kBegins = '/';
constexpr char kEnds = '~';

/// Modems repeat a key that is held about every 70 ms; a person needs longer to press it again.
constexpr std::chrono::milliseconds kRepeat{150};

/// A bracket that has gone on for so long has lost its end.
constexpr std::chrono::milliseconds kLostEnd{1'000};

bool IsKey(char code) {
  return code != '\0' && std::string_view("0123456789*#ABCD").find(code) != std::string_view::npos;
}

}  // namespace

std::optional<char> KeyPresses::Sign(char code, Time now) {
  if (code == kBegins || code == kEnds) {
    bracket_ = code == kBegins;
    told_ = false;
    if (!bracket_) latest_ = now;
    return std::nullopt;
  }
  if (!IsKey(code)) return std::nullopt;
  const bool first_in_bracket = bracket_ && !told_;
  const bool repeated = code == digit_ && now - latest_ <= (bracket_ ? kLostEnd : kRepeat);
  digit_ = code;
  latest_ = now;
  told_ = true;
  if (repeated && !first_in_bracket) return std::nullopt;
  return code;
}

}  // namespace orven
