// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "adapters/line/sip/sip_line.h"
#include "integration/line/sip/network.h"
#include "integration/line/sip/recorded_events.h"
#include "integration/line/sip/sip_caller.h"

namespace orven::test {

/// An open SIP line on a port of its own, with what it told so far.
class SipLineTest : public ::testing::Test {
 protected:
  SipLineTest() {
    settings.name = "Desk";
    settings.ring_seconds = 1;
    port = FreePort();
    settings.listen = "127.0.0.1:" + std::to_string(port);
  }
  ~SipLineTest() override {
    if (line != nullptr) line->Close();
  }

  void OpenLine() {
    line = MakeSipLine(settings);
    ASSERT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  }

  /// Has `caller` call, answers as request 1 and acknowledges: the call is up as call 1.
  void Connect(SipCaller& caller, const Offer& offer = {}) {
    caller.Invite(offer);
    ASSERT_TRUE(events.Wait("Ring 1 1"));
    line->Answer(1, 1);
    ASSERT_TRUE(caller.TakeAnswer());
    caller.Ack();
    ASSERT_TRUE(events.Wait("Connected 1"));
  }

  SipLineSettings settings;
  std::uint16_t port;
  RecordedEvents events;
  std::unique_ptr<LineDriver> line;
};

}  // namespace orven::test
