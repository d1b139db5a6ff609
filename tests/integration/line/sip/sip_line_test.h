// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "adapters/line/sip/sip_line.h"
#include "integration/line/sip/recorded_events.h"
#include "integration/line/sip/sip_caller.h"

namespace orven::test {

/// A SIP line on a port of its own, with what it told so far.
class SipLineTest : public ::testing::Test {
 protected:
  SipLineTest() {
    settings.ring_seconds = 1;
    settings.listen = "127.0.0.1:" + std::to_string(port);
  }
  ~SipLineTest() override {
    if (line != nullptr) line->Close();
  }

  void OpenLine() {
    line = MakeSipLine(settings);
    ASSERT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  }

  /// Has `caller` call: it rings as the next call.
  void Ring(SipCaller& caller, const std::string& formats = "0 8 101") {
    caller.Invite(formats);
    ASSERT_TRUE(events.Wait("Ring " + std::to_string(++call) + " 1"));
  }

  /// Has `caller` call, answers as request 1 and acknowledges: the call is up.
  void Connect(SipCaller& caller, const std::string& formats = "0 8 101") {
    Ring(caller, formats);
    line->Answer(call, 1);
    ASSERT_TRUE(caller.TakeAnswer());
    caller.Request("ACK");
    ASSERT_TRUE(events.Wait("Connected " + std::to_string(call)));
  }

  /// The caller ends the call.
  void HangUp(SipCaller& caller) {
    caller.Request("BYE");
    EXPECT_TRUE(caller.Wait("200"));
    ASSERT_TRUE(events.Wait("Idle " + std::to_string(call)));
  }

  const std::uint16_t port = FreePort();
  SipLineSettings settings;
  RecordedEvents events;
  CallNumber call = 0;  ///< the number of the latest call
  std::unique_ptr<LineDriver> line;
};

}  // namespace orven::test
