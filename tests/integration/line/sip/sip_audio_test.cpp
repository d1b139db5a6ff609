// SPDX-License-Identifier: GPL-3.0-or-later
// The audio of a call and the keys pressed in it, plain and encrypted.
#include <spandsp.h>

#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/srtp.h"
#include "integration/line/sip/sip_line_test.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;

/// A call that is recorded, from a caller who presses keys in every way there is.
class SipAudioTest : public SipLineTest {
 protected:
  void SetUp() override {
    OpenLine();
    Play("> INVITE,Ring 1 1,answer 1,< 200,> ACK,Connected 1");
    ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  }

  /// As an ordinary telephone: three packets while the key is down, then three that it is up. The first
  /// `lost` of them are not sent.
  void PressAsEvent(unsigned code, unsigned lost = 0) {
    timestamp_ += 8000;
    for (unsigned i = lost; i < 6; ++i) {
      const unsigned payload = code << 24 | (i >= 3 ? 0x8A0000U : 0x0A0000U) | std::min(i, 3U) * 40;
      Bytes bytes;
      for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(payload >> shift));
      caller->SendRtp(RtpPacketBytes(i == 0 ? 0x80 | 101 : 101, ++sequence_, timestamp_, bytes));
    }
  }

  void PressAsInfo(const std::string& type, const std::string& body, const std::string& status = "200") {
    caller->Request("INFO", "application/" + type, body);
    EXPECT_NE(caller->Take(status), "") << body;
  }

  /// Ends the call and tells the keys that came.
  std::string Digits() {
    Play("> BYE,< 200,Idle 1");
    std::string digits;
    for (const std::string& event : events.All())
      digits += event.starts_with("Digit ") ? event.substr(8) : "";
    return digits;
  }

  KeptAudio recorded;

 private:
  std::uint32_t sequence_ = 100;
  std::uint32_t timestamp_ = 0;
};

/// The tones of `keys`, 70 ms each with pauses, as mu-law bytes with silence around.
Bytes Tones(const std::string& keys) {
  dtmf_tx_state_t* generator = dtmf_tx_init(nullptr);
  dtmf_tx_set_timing(generator, 70, 70);
  dtmf_tx_put(generator, keys.c_str(), -1);
  Samples samples((20 + 7 * keys.size()) * 160);
  dtmf_tx(generator, samples.data() + 1600, static_cast<int>(samples.size() - 1600));
  dtmf_tx_free(generator);
  Bytes bytes(samples.size());
  Encode(Codec::kMuLaw, samples, bytes.data());
  return bytes;
}

Samples Decoded(const Bytes& audio) {
  return Decode(Codec::kMuLaw, audio);
}

TEST_F(SipAudioTest, RecordsOnlyTheCaller) {
  const Socket stranger = Socket::Udp();
  stranger.SendTo(caller->line_rtp_port, RtpPacketBytes(77, 1, 160, NoiseBytes(1, 1)));  // not agreed upon
  stranger.SendTo(caller->line_rtp_port, std::string("not RTP"));
  ASSERT_TRUE(recorded.WaitFor(1600)) << "a silent caller is recorded too";
  const auto spoken = NoiseBytes(40, 3), shouted = NoiseBytes(30, 4);
  std::jthread talker = Talk(caller->rtp, caller->line_rtp_port, spoken);
  ASSERT_TRUE(recorded.WaitFor(3200));
  std::jthread shouter = Talk(stranger, caller->line_rtp_port, shouted, 2);
  talker.join();
  shouter.join();
  EXPECT_EQ(Digits(), "");
  // A machine under load may put a pause into the stream, but never loses or changes audio for good.
  EXPECT_GE(recorded.BlocksOf(Decoded(spoken)), 37U);
  EXPECT_EQ(recorded.BlocksOf(Decoded({spoken.end() - kBlockSamples, spoken.end()})), 1U)
      << "the last word is lost";
  EXPECT_EQ(recorded.BlocksOf(Decoded(shouted)), 0U);
  EXPECT_FALSE(stranger.Receive(milliseconds(1))) << "a stranger receives the greeting";
}

TEST_F(SipAudioTest, TellsKeysSentAsEventsAndInMessagesWhileMonitored) {
  PressAsInfo("dtmf", "8");
  line->MonitorDigits(1, true);
  for (const unsigned code : {1U, 1U, 10U, 11U}) PressAsEvent(code);
  PressAsEvent(12, 4);
  ASSERT_TRUE(events.Wait("Digit 1 A"));
  PressAsInfo("dtmf-relay", "Signal=7\r\nDuration=160\r\n");
  PressAsInfo("dtmf-relay", "Duration=1", "400");
  PressAsInfo("text", "5", "415");
  PressAsInfo("dtmf", "15");
  EXPECT_EQ(Digits(), "11*#A7D");
}

TEST_F(SipAudioTest, HearsTonesOnceAlthoughTheyComeInOtherWaysToo) {
  line->MonitorDigits(1, true);
  const auto tones = Tones("429#");
  std::jthread talker = Talk(caller->rtp, caller->line_rtp_port, tones);
  PressAsEvent(4);
  PressAsInfo("dtmf-relay", "Signal=4\r\n");
  ASSERT_TRUE(events.Wait("Digit 1 2"));
  PressAsInfo("dtmf-relay", "Signal=2\r\n");
  ASSERT_TRUE(events.Wait("Digit 1 #"));
  talker.join();
  EXPECT_EQ(Digits(), "429#");
  EXPECT_GE(recorded.BlocksOf(Decoded(tones)), tones.size() / 160 - 3) << "the tones stay in the recording";
}

/// Plays given samples once.
struct GivenAudio : AudioSource {
  explicit GivenAudio(Samples given) : samples(std::move(given)) {}
  bool Read(std::span<std::int16_t> block) override {
    if (samples.size() < block.size()) return false;
    std::copy_n(samples.begin(), block.size(), block.begin());
    samples.erase(samples.begin(), samples.begin() + kBlockSamples);
    return true;
  }
  Samples samples;
};

class SipSecureTest : public SipLineTest {
 protected:
  /// Offers audio that is encrypted by `key` and waits for our answer.
  void Offer(const std::string& key, const std::string& direction = "sendrecv") {
    std::string sdp = caller->Sdp("0 101", direction);
    sdp.replace(sdp.find("RTP/AVP"), 7, "RTP/SAVP");
    caller->Request("INVITE", "application/sdp", sdp + "a=crypto:" + key + "\r\n");
    Play(call == 0 ? "Ring 1 1,answer 1,< 200" : "< 200,> ACK");
  }
  /// The key of our latest answer.
  SrtpKey LineKey() const {
    const auto at = caller->answer.find("a=crypto:") + 9;
    return ReadCryptoAttribute(caller->answer.substr(at, caller->answer.find('\r', at) - at)).value().key;
  }
  /// Sends ten blocks, encrypted by `sender`, and adds them to `spoken`.
  void Speak(SrtpSender& sender) {
    for (const std::uint32_t end = sequence_ + 10; sequence_ < end; ++sequence_) {
      const Bytes block = NoiseBytes(1, sequence_);
      const auto packet = sender.Protect(RtpPacketBytes(0, sequence_, sequence_ * 160, block));
      caller->SendRtp({packet.begin(), packet.end()});
      spoken.insert(spoken.end(), block.begin(), block.end());
    }
  }
  /// Whether the line's next packet is encrypted with `key`.
  bool Hears(const SrtpKey& key) const {
    SrtpReceiver receiver(SrtpReceiver::Kind::kRtp, SrtpSuite::kTag80, key);
    const auto packet = caller->NextPacket();
    return packet && receiver.Unprotect(*packet);
  }

  Bytes spoken;

 private:
  std::uint32_t sequence_ = 1;
};

TEST_F(SipSecureTest, AnEncryptedCallStaysSoThroughHoldsAndNewKeys) {
  const std::string key = "1 AES_CM_128_HMAC_SHA1_80 inline:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
  const std::string new_key = "1 AES_CM_128_HMAC_SHA1_80 inline:BQECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
  SrtpSender sender(SrtpSuite::kTag80, ReadCryptoAttribute(key)->key);
  SrtpSender new_sender(SrtpSuite::kTag80, ReadCryptoAttribute(new_key)->key);
  KeptAudio recorded;
  OpenLine();
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  Offer(key);
  const SrtpKey own = LineKey();
  const Bytes plain = NoiseBytes(1, 99);
  for (std::uint32_t i = 0; i < 3; ++i) caller->SendRtp(RtpPacketBytes(0, i, i * 160, plain));
  ASSERT_TRUE(recorded.WaitFor(1600));
  EXPECT_FALSE(events.Wait("Connected 1", milliseconds(1))) << "plain packets count as audio";
  Speak(sender);
  Play("Connected 1");  // without an ACK
  EXPECT_TRUE(Hears(own));
  caller->Request("ACK");
  Offer(key, "sendonly");
  EXPECT_EQ(LineKey(), own) << "our key changed without need";
  Play("deaf 300");
  Offer(key);
  EXPECT_TRUE(Hears(own));
  Speak(sender);
  Play("> INVITE 0,< 488");
  EXPECT_TRUE(Hears(own)) << "the call is plain from now on";
  Offer(new_key);
  Speak(new_sender);
  EXPECT_TRUE(Hears(own));
  Play("> BYE,< 200,Idle 1");
  EXPECT_GE(recorded.BlocksOf(Decoded(spoken)), 27U);
  EXPECT_EQ(recorded.BlocksOf(Decoded(plain)), 0U);
}

/// Baresip calls by TLS, encrypts, presses a key and hears us: the certificate, the keys and the packets are
/// right.
TEST_F(SipSecureTest, BaresipSpeaksPressesAKeyAndHearsEncrypted) {
  if (!std::filesystem::exists("/usr/lib/baresip/modules/srtp.so"))
    GTEST_SKIP() << "baresip is not installed";
  const ScratchFolder folder;
  const std::string tls = "127.0.0.1:" + std::to_string(FreePort()),
                    own = "127.0.0.1:" + std::to_string(FreePort());
  const std::uint16_t control_port = FreePort();
  settings.srtp = SrtpUse::kRequired;
  settings.tls_listen = tls;
  settings.tls_made_certificate = folder / "made.pem";
  OpenLine();
  std::string config =
      "sip_listen " + own + "\nnet_interface 127.0.0.1\nsip_certificate " + (folder / "made.pem") +
      "\nsnd_path " + (folder / "") + "\naudio_source aufile," + (folder / "spoken.wav") +
      "\naudio_player aufile,/dev/null\naudio_alert aufile,/dev/null\nausrc_srate 8000\nauplay_srate 8000" +
      "\nctrl_tcp_listen 127.0.0.1:" + std::to_string(control_port) +
      "\nmodule_path /usr/lib/baresip/modules\nmodule_tmp account.so\n";
  for (const char* module : {"g711", "aufile", "srtp", "sndfile"}) config += "module "s + module + ".so\n";
  PutFile(folder / "config", config + "module_app menu.so\nmodule_app ctrl_tcp.so\n");
  const std::string header(
      "RIFF\xA4\xBB\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x80\x3E\0\0\2\0\x10\0data\x80\xBB\0\0", 44);
  PutFile(folder / "spoken.wav", header + std::string(48'000, 'x'));  // 3 s
  PutFile(folder / "accounts",
          "<sip:1@" + own + ">;regint=0;audio_codecs=PCMU;dtmfmode=rtpevent;mediaenc=srtp-mand\n");
  PutFile(folder / "contacts", "");
  std::jthread baresip([&] {
    const std::string dial = "' -e '/dial sip:line@" + tls + ";transport=tls' </dev/null >'";
    const std::string command =
        "timeout 30 baresip -f '" + (folder / "") + dial + (folder / "output") + "' 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << ContentOf(folder / "output");
  });
  const Bytes greeting = NoiseBytes(50, 7);
  GivenAudio played(Decoded(greeting));
  Play("Ring 1 1,answer 1,Connected 1");
  line->MonitorDigits(1, true);
  ASSERT_EQ(line->Audio().StartPlay(played), 0);
  const Socket control = Socket::TcpTo(control_port);
  control.Send(R"(34:{"command":"sndcode","params":"5"},)");
  Play("Digit 1 5");
  KeptAudio recorded, heard;
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  ASSERT_TRUE(recorded.WaitFor(9600));
  Play("drop 2,Idle 1");
  std::string told;
  for (std::string more = "-"; !more.empty() && told.find("CALL_CLOSED") == told.npos; told += more)
    more = control.ReceiveText(milliseconds(5000));
  EXPECT_NE(told.find("Connection reset by peer"), std::string::npos) << "it did not get our BYE: " << told;
  control.Send(R"(18:{"command":"quit"},)");
  baresip.join();
  for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
    if (!entry.path().string().ends_with("-dec.wav")) continue;
    const std::string wave = ContentOf(entry.path());
    heard.Write({reinterpret_cast<const std::int16_t*>(wave.data()), wave.size() / 2});
  }
  EXPECT_GE(heard.BlocksOf(Decoded(greeting)), 45U);
}

}  // namespace
}  // namespace orven::test
