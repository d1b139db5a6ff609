// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "platform/line_driver.h"

namespace orven::test {

/// A driver's event in a few words.
inline std::string ToText(const LineEvent& event) {
  using Kind = LineEvent::Kind;
  const auto call = ' ' + std::to_string(event.call), number = ' ' + std::to_string(event.number);
  switch (event.kind) {
    case Kind::InCommingCall: return "Offered" + call;
    case Kind::Ring: return "Ring" + call + number;
    case Kind::CallerID: return "CallerId" + call + ' ' + event.name + '/' + event.text;
    case Kind::Proc:
      return "Done" + number + ' ' +
             (event.result == kTelephonyDeviceFailed ? "failed" : std::to_string(event.result));
    case Kind::Connected: return "Connected" + call;
    case Kind::MonitorDigit: return std::string("Digit ") + event.digit;
    case Kind::Disconnected: return "Disconnected" + call;
    case Kind::Idle: return "Idle" + call;
    case Kind::Trouble: return "Trouble " + event.text;
  }
  return {};
}

}  // namespace orven::test
