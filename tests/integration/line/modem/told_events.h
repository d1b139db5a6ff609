// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "platform/line_driver.h"
#include "platform/telephony.h"

namespace orven::test {

/// The user of a line, which reports each event in a few words.
struct ToldEvents : LineDriverEvents {
  virtual void Tell(const std::string& text) = 0;
  void Tell(const std::string& what, std::uint32_t number, const std::string& more = "") {
    Tell(what + " " + std::to_string(number) + more);
  }

  void Offered(CallNumber number) override { Tell("Offered", call = number); }
  void Ring(CallNumber number, std::int32_t count) override {
    Tell("Ring", number, " " + std::to_string(count));
  }
  void CallerId(CallNumber number, const std::string& name, const std::string& from) override {
    Tell("CallerId", number, " " + name + "/" + from);
  }
  void RequestDone(std::int32_t number, std::int32_t result) override {
    Tell("Done", std::uint32_t(number),
         result == kTelephonyDeviceFailed ? " failed" : " " + std::to_string(result));
  }
  void Connected(CallNumber number) override { Tell("Connected", number); }
  void Digit(CallNumber, char digit) override { Tell(std::string("Digit ") + digit); }
  void Disconnected(CallNumber number) override { Tell("Disconnected", number); }
  void Idle(CallNumber number) override { Tell("Idle", number); }
  void Trouble(const std::string& text) override { Tell("Trouble " + text); }

  CallNumber call = 0;
};

}  // namespace orven::test
