// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/line_driver.h"

namespace orven::test {

/// The cause of a trouble, which must have a remedy, too.
inline std::string CauseOf(const std::string& trouble) {
  const auto end = trouble.find(": ");
  EXPECT_TRUE(trouble.empty() || end != trouble.npos) << trouble;
  return trouble.substr(0, end);
}

/// A driver's event in a few words.
inline std::string ToText(const LineEvent& event) {
  using Kind = LineEvent::Kind;
  constexpr const char* kWords[] = {"Offered ",   "Ring ",  "CallerId ",     "Diverted ", "Done ",
                                    "Connected ", "Digit ", "Disconnected ", "Idle ",     "Trouble "};
  const std::string word = kWords[static_cast<int>(event.kind)], number = std::to_string(event.number);
  const bool failed = event.result == kTelephonyDeviceFailed;
  if (event.kind == Kind::Proc)
    return word + number + ' ' + (failed ? "failed" : std::to_string(event.result));
  if (event.kind == Kind::MonitorDigit) return word + event.digit;
  if (event.kind == Kind::Trouble) return word + CauseOf(event.trouble.English());
  const auto call = word + std::to_string(event.call);
  if (event.kind == Kind::CallerID || event.kind == Kind::Diverted)
    return call + ' ' + event.name + '/' + event.text;
  return event.kind == Kind::Ring ? call + ' ' + number : call;
}

}  // namespace orven::test
