// SPDX-License-Identifier: GPL-3.0-or-later
// The audio of a call and the keys pressed in it, plain and encrypted.
#include <spandsp.h>

#include "adapters/line/sip/srtp.h"
#include "integration/line/sip/sip_line_test.h"
#include "platform/wave.h"

namespace orven::test {
namespace {

/// The tones of `keys`, 70 ms each with pauses, as mu-law bytes with silence around.
Bytes Tones(const std::string& keys) {
  dtmf_tx_state_t* generator = dtmf_tx_init(nullptr);
  dtmf_tx_set_timing(generator, 70, 70);
  dtmf_tx_put(generator, keys.c_str(), -1);
  std::vector<std::int16_t> samples((20 + 7 * keys.size()) * 160);
  dtmf_tx(generator, samples.data() + 1600, static_cast<int>(samples.size() - 1600));
  dtmf_tx_free(generator);
  Bytes bytes(samples.size());
  Encode(Codec::kMuLaw, samples, bytes.data());
  return bytes;
}

/// A call that is recorded.
class SipAudioTest : public SipLineTest {
 protected:
  void SetUp() override {
    Play("> INVITE,Ring 1 1,answer 1,< 200,> ACK,Connected 1");
    ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  }

  /// As an ordinary telephone: three packets while the key is down, then three that it is up. The first
  /// `lost` of them are not sent.
  void PressAsEvent(char key, int lost = 0) {
    const auto code = static_cast<std::uint8_t>(std::string("0123456789*#A").find(key));
    timestamp_ += 8000;
    for (int i = lost; i < 6; ++i) {
      const auto flags = static_cast<std::uint8_t>(i < 3 ? 0x0A : 0x8A);
      const auto duration = static_cast<std::uint8_t>(std::min(i, 3) * 40);
      caller->SendRtp(
          RtpPacketBytes(i == 0 ? 0x80 | 101 : 101, ++sequence_, timestamp_, {code, flags, 0, duration}));
    }
  }
  void PressAsInfo(const std::string& type, const std::string& body, const std::string& status = "200") {
    caller->Send(caller->Text("INFO", body, "application/" + type));
    EXPECT_NE(caller->Take(status), "") << body;
  }

  KeptAudio recorded;

 private:
  std::uint32_t sequence_ = 100;
  std::uint32_t timestamp_ = 0;
};

TEST_F(SipAudioTest, RecordsOnlyTheCallerWhoHearsTheGreeting) {
  const Bytes greeting = NoiseBytes(9, 7);
  KeptAudio played;
  played.all = Decode(Codec::kMuLaw, greeting);
  ASSERT_EQ(line->Audio().StartPlay(played), kWaveOk);
  EXPECT_EQ(line->Audio().StartPlay(played), kWaveBusy);
  EXPECT_EQ(line->Audio().StartRecord(recorded), kWaveBusy);
  const Socket stranger = Socket::Udp();
  stranger.SendTo(caller->line_rtp_port, RtpPacketBytes(77, 1, 160, NoiseBytes(1, 1)));  // not agreed upon
  stranger.SendTo(caller->line_rtp_port, std::string("not RTP"));
  Play("hears 10");
  const auto spoken = NoiseBytes(40, 3), shouted = NoiseBytes(30, 4);
  std::jthread talker = Talk(caller->rtp, caller->line_rtp_port, spoken);
  Play("hears 10");
  std::jthread shouter = Talk(stranger, caller->line_rtp_port, shouted, 2);
  talker.join();
  shouter.join();
  Play("> BYE,< 200,Idle 1");
  EXPECT_GE(recorded.all.size(), spoken.size() + 1600) << "a silent caller is recorded too";
  // A machine under load may put a pause into the stream, but never loses or changes audio for good.
  EXPECT_GE(recorded.BlocksOf(spoken), 37U);
  EXPECT_EQ(recorded.BlocksOf({spoken.end() - kBlockSamples, spoken.end()}), 1U) << "the last word is lost";
  EXPECT_EQ(recorded.BlocksOf(shouted), 0U);
  EXPECT_EQ(stranger.Receive(milliseconds(1)), "") << "a stranger receives the greeting";
  (void)caller->NextPacket(milliseconds(0));
  EXPECT_NE(caller->heard.find(std::string(greeting.begin(), greeting.end())), std::string::npos);
}

TEST_F(SipAudioTest, TellsKeysOnceInWhicheverWaysTheyComeWhileMonitored) {
  PressAsInfo("dtmf", "8");
  line->MonitorDigits(1, true);
  for (const char key : {'1', '1', '*', '#'}) PressAsEvent(key);
  PressAsEvent('A', 4);
  ASSERT_TRUE(events.Wait("Digit 1 A"));
  PressAsInfo("dtmf-relay", "Signal=7\r\nDuration=160\r\n");
  PressAsInfo("dtmf-relay", "Duration=1", "400");
  PressAsInfo("dtmf-relay", "Signal:7", "400");
  PressAsInfo("text", "5", "415");
  PressAsInfo("dtmf", "15");
  const auto tones = Tones("429B");
  std::jthread talker = Talk(caller->rtp, caller->line_rtp_port, tones);
  PressAsEvent('4');
  PressAsInfo("dtmf-relay", "Signal=4\r\n");
  ASSERT_TRUE(events.Wait("Digit 1 2"));
  PressAsInfo("dtmf-relay", "Signal=2\r\n");
  talker.join();
  ASSERT_TRUE(events.Wait("Digit 1 B"));
  Play("> BYE,< 200,Idle 1");
  std::string digits;
  for (const std::string& event : events.All()) digits += event.starts_with("Digit ") ? event.substr(8) : "";
  EXPECT_EQ(digits, "11*#A7D429B");
  EXPECT_GE(recorded.BlocksOf(tones), tones.size() / 160 - 3) << "the tones stay in the recording";
}

TEST_F(SipLineTest, AnEncryptedCallStaysSoThroughHoldsAndNewKeys) {
  const std::string key = "1 AES_CM_128_HMAC_SHA1_80 inline:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
  const std::string new_key = "1 AES_CM_128_HMAC_SHA1_80 inline:BQECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
  SrtpSender sender(SrtpSuite::kTag80, ReadCryptoAttribute(key)->key);
  SrtpSender new_sender(SrtpSuite::kTag80, ReadCryptoAttribute(new_key)->key);
  Bytes spoken;
  auto speak = [&, sequence = 1U](SrtpSender& by) mutable {
    for (const std::uint32_t end = sequence + 10; sequence < end; ++sequence) {
      const Bytes block = NoiseBytes(1, sequence);
      const auto packet = by.Protect(RtpPacketBytes(0, sequence, sequence * 160, block));
      caller->SendRtp({packet.begin(), packet.end()});
      spoken.insert(spoken.end(), block.begin(), block.end());
    }
  };
  // Offers audio and returns the key of the answer.
  const auto offer = [&](const std::string& by, const std::string& direction) {
    std::string sdp = caller->Sdp("0 101", direction) + "a=crypto:" + by + "\r\n";
    caller->Send(caller->Text("INVITE", sdp.replace(sdp.find("RTP/AVP"), 7, "RTP/SAVP")));
    Play(call == 0 ? "Ring 1 1,answer 1,< 200" : "< 200,> ACK");
    const auto at = caller->answer.find("a=crypto:") + 9;
    return ReadCryptoAttribute(caller->answer.substr(at, caller->answer.find('\r', at) - at)).value().key;
  };
  KeptAudio recorded;
  OpenLine();
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  const SrtpKey own = offer(key, "sendrecv");
  const auto hears = [&] {
    SrtpReceiver receiver(SrtpReceiver::Kind::kRtp, SrtpSuite::kTag80, own);
    const std::string packet = caller->NextPacket();
    return receiver.Unprotect(Bytes(packet.begin(), packet.end())).has_value();
  };
  const Bytes plain = NoiseBytes(1, 99);
  for (std::uint32_t i = 0; i < 3; ++i) caller->SendRtp(RtpPacketBytes(0, i, i * 160, plain));
  Play("hears 10");
  EXPECT_EQ(events.All().back(), "RequestDone 1 0") << "plain packets count as audio";
  speak(sender);
  Play("Connected 1");  // without an ACK
  EXPECT_TRUE(hears());
  Play("> ACK");
  EXPECT_EQ(offer(key, "sendonly"), own) << "our key changed without need";
  Play("deaf 300");
  offer(key, "sendrecv");
  EXPECT_TRUE(hears());
  speak(sender);
  Play("> INVITE 0,< 488");
  EXPECT_TRUE(hears()) << "the call is plain from now on";
  offer(new_key, "sendrecv");
  speak(new_sender);
  EXPECT_TRUE(hears());
  Play("> BYE,< 200,Idle 1");
  EXPECT_GE(recorded.BlocksOf(spoken), 27U);
  EXPECT_EQ(recorded.BlocksOf(plain), 0U);
}

}  // namespace
}  // namespace orven::test
