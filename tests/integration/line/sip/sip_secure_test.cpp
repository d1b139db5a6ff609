// SPDX-License-Identifier: GPL-3.0-or-later
// Encrypted sound: its keys, its packets, who gets it, and a telephone that nobody here wrote.
#include <array>
#include <cstring>

#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/srtp.h"
#include "integration/line/sip/sip_peers_test.h"

namespace orven::test {
namespace {

constexpr const char* kSuite80 = "AES_CM_128_HMAC_SHA1_80";
constexpr const char* kSuite32 = "AES_CM_128_HMAC_SHA1_32";
/// 30 bytes each.
constexpr const char* kOneKey = "inline:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
constexpr const char* kOtherKey = "inline:BQECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";

std::string Crypto(const std::string& tag, const std::string& suite, const std::string& key) {
  return "a=crypto:" + tag + " " + suite + " " + key + "\r\n";
}

Bytes Packet(std::uint32_t sequence, std::uint32_t ssrc = 9) {
  return RtpPacketBytes(0, sequence & 0xFFFF, sequence * 160, NoiseBytes(1, sequence), ssrc);
}

Bytes Copy(std::span<const std::uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

TEST(SecureSoundTest, AHundredStrangersLeaveRoomForThePeer) {
  const SrtpKey key = NewSrtpKey();
  SoundSealer peer(SrtpSuite::kTag80, key), stranger(SrtpSuite::kTag80, NewSrtpKey());
  SoundOpener opener(SoundOpener::Kind::kSound, SrtpSuite::kTag80, key);
  for (std::uint32_t ssrc = 0; ssrc < 100; ++ssrc)
    EXPECT_FALSE(opener.Open(stranger.Seal(Packet(60'000 + ssrc, ssrc))));
  EXPECT_TRUE(opener.Open(peer.Seal(Packet(1))));
}

TEST(CryptoAttributeTest, ReadsWhatWeCanDoAndNothingElse) {
  const std::string begin = "7 " + std::string(kSuite32) + " " + kOneKey;
  for (const char* end : {"", "|2^31", " WSH=64 -NEW=1", "  "}) {
    const auto read = ReadCryptoAttribute(begin + end);
    ASSERT_TRUE(read) << end;
    EXPECT_EQ(WriteCryptoAttribute(*read), begin);
  }
  for (const char* end : {"|2^31|1:4", "|1:4", " UNENCRYPTED_SRTP", " KDR=1", "A", ";inline:x", " NEW=1"}) {
    EXPECT_FALSE(ReadCryptoAttribute(begin + end)) << end;
  }
  for (const char* text : {"", "1", "x AES_CM_128_HMAC_SHA1_80 inline:", "1 AES_CM_128_HMAC_SHA1_80",
                           "1 AES_CM_128_HMAC_SHA1_80 inline:AAAA", "1 F8_128_HMAC_SHA1_80 inline:AAAA",
                           "1 AES_CM_128_HMAC_SHA1_80 inline:????????????????????????????????????????"}) {
    EXPECT_FALSE(ReadCryptoAttribute(text)) << text;
  }
}

/// A caller of our own that speaks encrypted.
class SipSecureTest : public SipLineTest {
 protected:
  static std::string Offer(const SipCaller& caller, const std::string& profile, const std::string& more,
                           const std::string& direction = "sendrecv") {
    std::string sdp = caller.Sdp("0 101", direction);
    return sdp.replace(sdp.find("RTP/AVP"), 7, profile) + more;
  }

  /// The status of the refusal, or the profile and the way to encrypt that the answer names.
  std::string OutcomeOf(const std::string& profile, const std::string& more) {
    SipCaller caller(port);
    caller.Request("INVITE", "application/sdp", Offer(caller, profile, more));
    if (caller.Wait("488", milliseconds(200))) return "488";
    if (!events.Wait("Ring " + std::to_string(++call) + " 1")) return "nothing";
    line->Answer(call, 1);
    if (!caller.TakeAnswer()) return "no answer";
    caller.Request("ACK");
    HangUp(caller);
    const std::string& answer = caller.Answer();
    const auto at = answer.find(" RTP/") + 1;
    const auto crypto = answer.find("a=crypto:");
    return answer.substr(at, answer.find(' ', at) - at) +
           (crypto == std::string::npos ? "" : " " + answer.substr(crypto + 9, 25));
  }

  /// With which the line encrypts and we decrypt.
  static SrtpKey LineKey(const SipCaller& caller) {
    const std::string& answer = caller.Answer();
    const auto at = std::min(answer.find("a=crypto:"), answer.size() - 9) + 9;
    const auto read = ReadCryptoAttribute(answer.substr(at, answer.find("\r\n", at) - at));
    EXPECT_TRUE(read);
    return read ? read->key : SrtpKey{};
  }

  /// Sends blocks of `sound`, encrypted.
  void Speak(SipCaller& caller, SoundSealer& sealer, const Bytes& sound) {
    for (auto begin = sound.begin(); begin != sound.end(); begin += 160, ++sequence_) {
      caller.Rtp().SendTo(
          caller.LineRtpPort(),
          Copy(sealer.Seal(RtpPacketBytes(0, sequence_, sequence_ * 160, {begin, begin + 160}))));
    }
  }

  /// The line's next packet opens with `key`.
  static bool Hears(SipCaller& caller, const SrtpKey& key) {
    SoundOpener opener(SoundOpener::Kind::kSound, SrtpSuite::kTag80, key);
    while (caller.Rtp().Receive(milliseconds(0))) {
    }
    const auto packet = caller.Rtp().Receive(milliseconds(2000));
    return packet && opener.Open(*packet);
  }

  std::uint32_t sequence_ = 1;
};

TEST_F(SipSecureTest, EncryptsWhatIsOfferedUnlessTheLineForbidsOrDemandsIt) {
  const std::string both = Crypto("1", "AES_256_CM_HMAC_SHA1_80", "inline:x") +
                           Crypto("2", kSuite32, kOneKey) + Crypto("3", kSuite80, kOneKey);
  const std::string none = Crypto("1", "AES_256_CM_HMAC_SHA1_80", "inline:x");
  const std::string chosen = std::string(" 2 ") + kSuite32;
  const struct {
    SrtpUse srtp;
    std::array<std::string, 5> outcomes;
  } kCases[] = {
      {SrtpUse::kNever, {"RTP/AVP", "RTP/AVP", "488", "488", "488"}},
      {SrtpUse::kIfOffered, {"RTP/AVP", "RTP/AVP" + chosen, "RTP/SAVP" + chosen, "488", "488"}},
      {SrtpUse::kRequired, {"488", "RTP/AVP" + chosen, "RTP/SAVP" + chosen, "488", "488"}},
  };
  for (const auto& one : kCases) {
    settings.srtp = one.srtp;
    OpenLine();
    EXPECT_EQ(OutcomeOf("RTP/AVP", ""), one.outcomes[0]);
    EXPECT_EQ(OutcomeOf("RTP/AVP", both), one.outcomes[1]);
    EXPECT_EQ(OutcomeOf("RTP/SAVP", both), one.outcomes[2]);
    EXPECT_EQ(OutcomeOf("RTP/SAVP", none), one.outcomes[3]);
    EXPECT_EQ(OutcomeOf("RTP/SAVPF", ""), one.outcomes[4]);
    line->Close();
    events.Clear();
    call = 0;
  }
}

TEST_F(SipSecureTest, AnEncryptedCallStaysSoThroughHoldsAndNewKeys) {
  OpenLine();
  SipCaller caller(port);
  const auto reinvite = [&](const std::string& profile, const std::string& more,
                            const std::string& direction = "sendrecv") {
    caller.Request("INVITE", "application/sdp", Offer(caller, profile, more, direction));
  };
  const std::string offer = Crypto("1", kSuite80, kOneKey);
  reinvite("RTP/SAVP", offer);
  ASSERT_TRUE(events.Wait("Ring " + std::to_string(++call) + " 1"));
  KeptSound recorded;
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  line->Answer(call, 1);
  ASSERT_TRUE(caller.TakeAnswer());
  const SrtpKey own = LineKey(caller);
  SoundSealer voice(SrtpSuite::kTag80,
                    ReadCryptoAttribute("1 " + std::string(kSuite80) + " " + kOneKey)->key);
  const Bytes plain = NoiseBytes(3, 1);
  for (std::uint32_t i = 0; i < 3; ++i) {
    caller.Rtp().SendTo(caller.LineRtpPort(),
                        RtpPacketBytes(0, i, i * 160, {plain.begin(), plain.begin() + 160}));
  }
  ASSERT_TRUE(recorded.WaitFor(1600));
  EXPECT_FALSE(events.Wait("Connected 1", milliseconds(1))) << "plain packets count as sound";
  const Bytes before = NoiseBytes(10, 2);
  Speak(caller, voice, before);
  ASSERT_TRUE(events.Wait("Connected 1")) << "the first sound proves that our answer has arrived";
  EXPECT_TRUE(Hears(caller, own));
  caller.Request("ACK");
  reinvite("RTP/SAVP", offer, "sendonly");
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Request("ACK");
  EXPECT_EQ(LineKey(caller), own) << "a key of ours changed although nobody asked for it";
  EXPECT_FALSE(caller.HearsMore(milliseconds(300)));
  reinvite("RTP/SAVP", offer);
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Request("ACK");
  EXPECT_TRUE(Hears(caller, own));
  const Bytes resumed = NoiseBytes(10, 3);
  Speak(caller, voice, resumed);
  reinvite("RTP/AVP", "");
  ASSERT_TRUE(caller.Wait("488")) << "the call is plain from now on";
  caller.Request("ACK");
  EXPECT_TRUE(Hears(caller, own));
  reinvite("RTP/SAVP", Crypto("1", kSuite80, kOtherKey));
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Request("ACK");
  SoundSealer other(SrtpSuite::kTag80,
                    ReadCryptoAttribute("1 " + std::string(kSuite80) + " " + kOtherKey)->key);
  const Bytes after = NoiseBytes(10, 4);
  Speak(caller, other, after);
  EXPECT_TRUE(Hears(caller, own));
  HangUp(caller);
  for (const Bytes& sound : {before, resumed, after}) {
    EXPECT_GE(recorded.BlocksOf(Decode(Codec::kMuLaw, sound)), 9U);
  }
  EXPECT_EQ(recorded.BlocksOf(Decode(Codec::kMuLaw, plain)), 0U);
}

/// How baresip calls.
struct Way {
  const char* name;
  const char* encryption;
  bool by_tls;
};

class SipSecurePeerTest : public SipPeersTest, public ::testing::WithParamInterface<Way> {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists("/usr/lib/baresip/modules/srtp.so"))
      GTEST_SKIP() << "baresip is not installed";
    PutFile(folder / "spoken.wav", Wave(spoken));
    settings.srtp = SrtpUse::kRequired;
    settings.tls_listen = "127.0.0.1:" + std::to_string(tls_port);
    settings.tls_made_certificate = folder / "made.pem";
    OpenLine();
  }

  std::string Callee() const {
    return "sip:line@127.0.0.1:" +
           (GetParam().by_tls ? std::to_string(tls_port) + ";transport=tls" : std::to_string(port));
  }

  /// Baresip, told by its control socket, presses a key.
  void Press(char key) const {
    const std::string command = R"({"command":"sndcode","params":")" + std::string(1, key) + "\"}";
    Socket::TcpTo(control).Send(std::to_string(command.size()) + ":" + command + ",");
  }

  /// What baresip decoded.
  KeptSound& Heard() {
    for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
      if (!entry.path().filename().string().ends_with("-dec.wav")) continue;
      const std::string content = ContentOf(entry.path());
      for (std::size_t at = 44; at + 320 <= content.size(); at += 320) {
        Samples block(kBlockSamples);
        std::memcpy(block.data(), content.data() + at, 320);
        heard_.Write(block);
      }
    }
    return heard_;
  }

  const std::uint16_t tls_port = FreePort();
  const std::uint16_t control = FreePort();
  const std::string config =
      "sip_certificate " + (folder / "made.pem") + "\nmodule srtp.so\nmodule sndfile.so\nsnd_path " +
      (folder / "") + "\nmodule_app ctrl_tcp.so\nctrl_tcp_listen 127.0.0.1:" + std::to_string(control) + "\n";
  const Samples spoken = Decode(Codec::kMuLaw, NoiseBytes(150, 6));
  const Samples greeting = Decode(Codec::kMuLaw, NoiseBytes(50, 7));

 private:
  KeptSound heard_;
};

TEST_P(SipSecurePeerTest, BaresipSpeaksPressesAKeyAndHearsEncrypted) {
  const Socket stranger = Socket::TcpTo(tls_port);
  stranger.Send("OPTIONS sip:line@127.0.0.1 SIP/2.0\r\n\r\n");  // does not even speak TLS
  std::jthread baresip =
      RunBaresip(Callee(), std::string(";dtmfmode=rtpevent;mediaenc=") + GetParam().encryption, config);
  GivenSound played(greeting);
  Answer();
  ASSERT_EQ(line->Audio().StartPlay(played), 0);
  Press('5');
  EXPECT_TRUE(events.Wait("Digit 1 5"));
  ASSERT_TRUE(recorded.WaitFor(20'000));
  line->Drop(1, 2);
  ASSERT_TRUE(events.Wait("Idle 1"));
  baresip.join();
  const std::string output = ContentOf(folder / "output");
  EXPECT_NE(output.find("session closed: Connection reset by peer"), std::string::npos)
      << "it was not told that the call is over: " << output;
  EXPECT_GE(recorded.BlocksOf(spoken), 90U);
  EXPECT_GE(Heard().BlocksOf(greeting), 45U);
}

INSTANTIATE_TEST_SUITE_P(Ways, SipSecurePeerTest,
                         ::testing::Values(Way{"OptionalOverUdp", "srtp", false},
                                           Way{"MandatoryOverTls", "srtp-mand", true}),
                         [](const auto& way) { return way.param.name; });

}  // namespace
}  // namespace orven::test
