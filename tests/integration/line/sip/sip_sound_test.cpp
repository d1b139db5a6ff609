// SPDX-License-Identifier: GPL-3.0-or-later
// The sound of a call and the keys pressed in it.
#include <spandsp.h>

#include "adapters/line/sip/g711.h"
#include "integration/line/sip/sip_line_test.h"
#include "integration/line/sip/test_audio.h"

namespace orven::test {
namespace {

class SipLineSoundTest : public SipLineTest, public ::testing::WithParamInterface<Codec> {};

TEST_P(SipLineSoundTest, CarriesSoundBothWaysBitForBit) {
  const Codec codec = GetParam();
  const std::uint8_t type = codec == Codec::kMuLaw ? 0 : 8;
  OpenLine();
  SipCaller caller(port);
  Connect(caller, Offer{.formats = std::to_string(type)});
  const auto spoken = NoiseBytes(50, 1);
  const auto greeting = NoiseBytes(50, 2);
  KeptSound recorded;
  GivenSound played(Decode(codec, greeting));
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  ASSERT_EQ(line->Audio().StartPlay(played), 0);

  RtpTalker talker(caller.Rtp(), caller.LineRtpPort(), type, spoken);
  std::vector<std::int16_t> heard;
  while (BlocksFound(Decode(codec, greeting), heard) < 50) {
    const auto packet = caller.Rtp().Receive(milliseconds(3000));
    ASSERT_TRUE(packet) << "the greeting broke off";
    ASSERT_EQ(packet->bytes.size(), 172U);
    ASSERT_EQ(packet->bytes[1] & 0x7F, type);
    const auto block = Decode(codec, {packet->bytes.data() + 12, 160});
    heard.insert(heard.end(), block.begin(), block.end());
  }
  talker.Join();
  caller.Request("BYE");
  ASSERT_TRUE(events.Wait("Idle 1"));
  // A machine under load may put a pause into the stream, never lose or change sound for good.
  EXPECT_GE(BlocksFound(Decode(codec, spoken), recorded.Samples()), 47U);
  const auto all = recorded.Samples();
  const auto last = Decode(codec, {spoken.end() - kBlockSamples / 2, spoken.end()});
  EXPECT_NE(std::search(all.begin(), all.end(), last.begin(), last.end()), all.end())
      << "the last word is cut off";
}

INSTANTIATE_TEST_SUITE_P(Codecs, SipLineSoundTest, ::testing::Values(Codec::kMuLaw, Codec::kALaw));

using SipSoundTest = SipLineTest;

TEST_F(SipSoundTest, RecordsAtThePaceOfTheClockWhetherOrNotTheCallerSpeaks) {
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  KeptSound recorded;
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(recorded.WaitFor(8000));
  const auto time = std::chrono::steady_clock::now() - start;
  EXPECT_GE(time, milliseconds(970));
  EXPECT_LE(time, milliseconds(3000));
  const auto samples = recorded.Samples();
  EXPECT_EQ(std::count(samples.begin(), samples.end(), 0), static_cast<std::ptrdiff_t>(samples.size()));
  line->Audio().StopRecord();
  const std::size_t kept = recorded.Samples().size();
  EXPECT_TRUE(caller.Rtp().Receive(milliseconds(1000)));
  EXPECT_EQ(recorded.Samples().size(), kept) << "nothing is written after StopRecord";
}

TEST_F(SipSoundTest, ListensToTheCallerAndToNobodyElse) {
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  KeptSound recorded;
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  Socket stranger = Socket::Udp();
  const auto spoken = NoiseBytes(40, 3);
  const auto shouted = NoiseBytes(40, 4);
  RtpTalker talker(caller.Rtp(), caller.LineRtpPort(), 0, spoken, 1);
  ASSERT_TRUE(recorded.WaitFor(1600));
  RtpTalker shouter(stranger, caller.LineRtpPort(), 0, shouted, 2);
  talker.Join();
  shouter.Join();
  caller.Request("BYE");
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_GE(BlocksFound(Decode(Codec::kMuLaw, spoken), recorded.Samples()), 37U);
  EXPECT_EQ(BlocksFound(Decode(Codec::kMuLaw, shouted), recorded.Samples()), 0U);
  EXPECT_FALSE(stranger.Receive(milliseconds(1))) << "nor is anything sent there";
}

TEST_F(SipSoundTest, FollowsTheCallerToTheAddressThatARouterGave) {
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  Socket router = Socket::Udp();
  const auto noise = NoiseBytes(1, 1);
  router.SendTo(caller.LineRtpPort(), RtpPacketBytes(77, false, 1, 160, 5, noise));  // not agreed upon
  router.SendTo(caller.LineRtpPort(), std::string("no RTP at all"));
  EXPECT_FALSE(router.Receive(milliseconds(200)));
  router.SendTo(caller.LineRtpPort(), RtpPacketBytes(0, false, 2, 320, 5, noise));
  ASSERT_TRUE(router.Receive(milliseconds(2000)));
  // A re-INVITE settles anew where the caller is.
  caller.Invite();
  ASSERT_TRUE(caller.WaitStatus(200));
  caller.Ack();
  while (caller.Rtp().Receive(milliseconds(1))) {
  }
  EXPECT_TRUE(caller.Rtp().Receive(milliseconds(2000)));
}

TEST_F(SipSoundTest, ACallerWhoFallsSilentForGoodIsLost) {
  settings.timers.lost_media = milliseconds(800);
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  caller.Rtp().SendTo(caller.LineRtpPort(), RtpPacketBytes(0, true, 1, 160, 9, NoiseBytes(1, 1)));
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_TRUE(events.Wait("Disconnected 1"));
  EXPECT_TRUE(caller.WaitRequest("BYE"));
}

TEST_F(SipSoundTest, ACallerWhosePortIsGoneIsLost) {
  settings.timers.unreachable = milliseconds(300);
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  caller.Rtp().Close();
  ASSERT_TRUE(events.Wait("Idle 1")) << "the refusals went unnoticed";
  EXPECT_TRUE(caller.WaitRequest("BYE"));
}

/// A caller that presses keys in every way there is.
class SipDigitsTest : public SipLineTest {
 protected:
  void SetUp() override {
    OpenLine();
    caller = std::make_unique<SipCaller>(port);
    Connect(*caller);
    line->MonitorDigits(1, true);
  }

  void PressAsEvent(std::uint8_t code) {
    timestamp_ += 8000;
    for (int i = 0; i < 6; ++i) {
      const std::uint8_t flags = i >= 3 ? 0x8A : 0x0A;
      caller->Rtp().SendTo(caller->LineRtpPort(),
                           RtpPacketBytes(101, i == 0, ++sequence_, timestamp_, 7,
                                          {code, flags, 0, static_cast<std::uint8_t>(std::min(i, 3) * 40)}));
    }
  }

  void PressAsInfo(const std::string& type, const std::string& body) {
    caller->Request("INFO", "Content-Type: " + type + "\r\n", body);
    EXPECT_TRUE(caller->WaitStatus(200));
  }

  /// The tones of `keys`, 100 ms each with pauses, as mu-law bytes with silence around.
  static std::vector<std::uint8_t> Tones(const std::string& keys) {
    dtmf_tx_state_t* generator = dtmf_tx_init(nullptr);
    dtmf_tx_set_timing(generator, 100, 100);
    dtmf_tx_put(generator, keys.c_str(), -1);
    std::vector<std::int16_t> samples((10 + 10 * keys.size() + 30) * 160);
    dtmf_tx(generator, samples.data() + 1600, static_cast<int>(samples.size() - 1600));
    dtmf_tx_free(generator);
    std::vector<std::uint8_t> bytes(samples.size());
    Encode(Codec::kMuLaw, samples, bytes.data());
    return bytes;
  }

  std::unique_ptr<SipCaller> caller;

 private:
  std::uint16_t sequence_ = 100;
  std::uint32_t timestamp_ = 0;
};

TEST_F(SipDigitsTest, TellsKeysSentAsEventsAndInMessages) {
  for (const int code : {1, 1, 10, 11, 12}) PressAsEvent(static_cast<std::uint8_t>(code));
  ASSERT_TRUE(events.WaitForDigits(5));
  PressAsInfo("application/dtmf-relay", "Signal=7\r\nDuration=160\r\n");
  PressAsInfo("application/dtmf", "9");
  ASSERT_TRUE(events.WaitForDigits(7));
  EXPECT_EQ(events.Digits(), "11*#A79");
  caller->Request("INFO", "Content-Type: application/dtmf-relay\r\n", "Duration=1");
  EXPECT_TRUE(caller->WaitStatus(400));
  caller->Request("INFO", "Content-Type: text/plain\r\n", "5");
  EXPECT_TRUE(caller->WaitStatus(415));
  EXPECT_EQ(events.Digits(), "11*#A79");
}

TEST_F(SipDigitsTest, HearsTonesInTheSoundAndLeavesThemInTheRecording) {
  KeptSound recorded;
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  const auto tones = Tones("159#");
  RtpTalker talker(caller->Rtp(), caller->LineRtpPort(), 0, tones);
  ASSERT_TRUE(events.WaitForDigits(4));
  talker.Join();
  caller->Request("BYE");
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_EQ(events.Digits(), "159#");
  EXPECT_GE(BlocksFound(Decode(Codec::kMuLaw, tones), recorded.Samples()), tones.size() / 160 - 3);
}

TEST_F(SipDigitsTest, APressThatComesInThreeWaysIsOnePress) {
  const auto tones = Tones("42");
  RtpTalker talker(caller->Rtp(), caller->LineRtpPort(), 0, tones);
  PressAsEvent(4);
  PressAsInfo("application/dtmf-relay", "Signal=4\r\n");
  ASSERT_TRUE(events.WaitForDigits(2)) << "the tone of 2";
  PressAsInfo("application/dtmf-relay", "Signal=2\r\n");
  talker.Join();
  caller->Request("BYE");
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_EQ(events.Digits(), "42");
}

TEST_F(SipDigitsTest, KeysAreToldOnlyWhileTheyAreMonitored) {
  line->MonitorDigits(1, false);
  PressAsInfo("application/dtmf", "1");
  line->MonitorDigits(1, true);
  PressAsInfo("application/dtmf", "2");
  ASSERT_TRUE(events.WaitForDigits(1));
  EXPECT_EQ(events.Digits(), "2");
}

}  // namespace
}  // namespace orven::test
