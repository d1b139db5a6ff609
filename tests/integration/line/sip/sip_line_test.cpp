// SPDX-License-Identifier: GPL-3.0-or-later
// A call's way through the line, as a caller and the line's owner see it.
#include "integration/line/sip/sip_line_test.h"

#include "adapters/line/sip/g711.h"
#include "integration/line/sip/test_audio.h"

namespace orven::test {
namespace {

using Texts = std::vector<std::string>;

TEST_F(SipLineTest, TellsACallInOrderFromOfferToIdle) {
  OpenLine();
  SipCaller caller(port);
  caller.Invite();
  EXPECT_TRUE(caller.WaitStatus(180));
  ASSERT_TRUE(events.Wait("Ring 1 2"));
  line->Answer(1, 7);
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Ack();
  ASSERT_TRUE(events.Wait("Connected 1"));
  caller.Request("BYE");
  EXPECT_TRUE(caller.WaitStatus(200));
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith|5551234", "Ring 1 1", "Ring 1 2",
                                 "RequestDone 7 0", "Connected 1", "Disconnected 1", "Idle 1"}));
}

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
}

INSTANTIATE_TEST_SUITE_P(Codecs, SipLineSoundTest, ::testing::Values(Codec::kMuLaw, Codec::kALaw));

}  // namespace
}  // namespace orven::test
