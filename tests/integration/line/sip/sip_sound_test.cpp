// SPDX-License-Identifier: GPL-3.0-or-later
// The sound of a call and the keys pressed in it.
#include <spandsp.h>

#include "adapters/line/sip/rtp.h"
#include "integration/line/sip/sip_line_test.h"
#include "integration/line/sip/test_audio.h"

namespace orven::test {
namespace {

using SipSoundTest = SipLineTest;

TEST_F(SipSoundTest, ListensToTheCallerAndToNobodyElse) {
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  KeptSound recorded;
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  const Socket stranger = Socket::Udp();
  stranger.SendTo(caller.LineRtpPort(), RtpPacketBytes(77, 1, 160, NoiseBytes(1, 1)));  // not agreed upon
  stranger.SendTo(caller.LineRtpPort(), "no RTP at all");
  ASSERT_TRUE(recorded.WaitFor(1600)) << "a silent caller is recorded too";
  const auto spoken = NoiseBytes(40, 3);
  const auto shouted = NoiseBytes(30, 4);
  std::jthread talker = Talk(caller.Rtp(), caller.LineRtpPort(), spoken);
  ASSERT_TRUE(recorded.WaitFor(3200));
  std::jthread shouter = Talk(stranger, caller.LineRtpPort(), shouted, 2);
  talker.join();
  shouter.join();
  HangUp(caller);
  // A machine under load may put a pause into the stream, never lose or change sound for good.
  EXPECT_GE(recorded.BlocksOf(Decode(Codec::kMuLaw, spoken)), 37U);
  EXPECT_EQ(recorded.BlocksOf(Decode(Codec::kMuLaw, {spoken.end() - kBlockSamples, spoken.end()})), 1U)
      << "the last word is cut off";
  EXPECT_EQ(recorded.BlocksOf(Decode(Codec::kMuLaw, shouted)), 0U);
  EXPECT_FALSE(stranger.Receive(milliseconds(1))) << "nor is anything sent there";
}

/// A caller that presses keys in every way there is.
class SipDigitsTest : public SipLineTest {
 protected:
  void SetUp() override {
    OpenLine();
    caller = std::make_unique<SipCaller>(port);
    Connect(*caller);
    ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  }

  /// As an ordinary telephone: three packets while the key is down, then its end thrice. The first
  /// packets may be lost.
  void PressAsEvent(int code, int lost = 0) {
    timestamp_ += 8000;
    for (int i = lost; i < 6; ++i) {
      const Bytes payload{static_cast<std::uint8_t>(code), static_cast<std::uint8_t>(i >= 3 ? 0x8A : 0x0A), 0,
                          static_cast<std::uint8_t>(std::min(i, 3) * 40)};
      caller->Rtp().SendTo(caller->LineRtpPort(),
                           RtpPacketBytes(i == 0 ? 0x80 | 101 : 101, ++sequence_, timestamp_, payload));
    }
  }

  void PressAsInfo(const std::string& type, const std::string& body, const std::string& status = "200") {
    caller->Request("INFO", type, body);
    EXPECT_TRUE(caller->Wait(status)) << body;
  }

  /// The tones of `keys`, 100 ms each with pauses, as mu-law bytes with silence around.
  static Bytes Tones(const std::string& keys) {
    dtmf_tx_state_t* generator = dtmf_tx_init(nullptr);
    dtmf_tx_set_timing(generator, 100, 100);
    dtmf_tx_put(generator, keys.c_str(), -1);
    Samples samples((10 + 10 * keys.size() + 30) * 160);
    dtmf_tx(generator, samples.data() + 1600, static_cast<int>(samples.size() - 1600));
    dtmf_tx_free(generator);
    Bytes bytes(samples.size());
    Encode(Codec::kMuLaw, samples, bytes.data());
    return bytes;
  }

  std::unique_ptr<SipCaller> caller;
  KeptSound recorded;

 private:
  std::uint32_t sequence_ = 100;
  std::uint32_t timestamp_ = 0;
};

TEST_F(SipDigitsTest, TellsKeysSentAsEventsAndInMessagesWhileMonitored) {
  PressAsInfo("application/dtmf", "8");
  line->MonitorDigits(1, true);
  for (const int code : {1, 1, 10, 11}) PressAsEvent(code);
  PressAsEvent(12, 4);
  ASSERT_TRUE(events.Wait("Digit 1 A"));
  PressAsInfo("application/dtmf-relay", "Signal=7\r\nDuration=160\r\n");
  PressAsInfo("application/dtmf-relay", "Duration=1", "400");
  PressAsInfo("text/plain", "5", "415");
  PressAsInfo("application/dtmf", "9");
  HangUp(*caller);
  EXPECT_EQ(events.Digits(), "11*#A79");
}

TEST_F(SipDigitsTest, HearsTonesOnceAlthoughTheyComeInOtherWaysToo) {
  line->MonitorDigits(1, true);
  const auto tones = Tones("429#");
  std::jthread talker = Talk(caller->Rtp(), caller->LineRtpPort(), tones);
  PressAsEvent(4);
  PressAsInfo("application/dtmf-relay", "Signal=4\r\n");
  ASSERT_TRUE(events.Wait("Digit 1 2"));
  PressAsInfo("application/dtmf-relay", "Signal=2\r\n");
  ASSERT_TRUE(events.Wait("Digit 1 #"));
  talker.join();
  HangUp(*caller);
  EXPECT_EQ(events.Digits(), "429#");
  EXPECT_GE(recorded.BlocksOf(Decode(Codec::kMuLaw, tones)), tones.size() / 160 - 3)
      << "the tones stay in the recording";
}

}  // namespace
}  // namespace orven::test
