// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of the SIP line that need no network: jitter buffer, SDP, keys, digits, names, answers.
#include <opus.h>

#include <regex>

#include "adapters/line/sip/caller_identity.h"
#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/diversion.h"
#include "adapters/line/sip/jitter_buffer.h"
#include "adapters/line/sip/media_agreement.h"
#include "adapters/line/sip/register_answer.h"
#include "adapters/line/sip/srtp.h"
#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;

/// Plays a stream of 20 ms packets, step by step. A letter is a packet that arrives, "+" is the packet after
/// the latest one, "." plays one block, "-" makes the next packet one sample shorter. Returns the blocks that
/// were heard unchanged, and how many were waiting at the end.
std::string Heard(const std::string& script) {
  const auto block_of = [](int n) { return NoiseBytes(1, static_cast<std::uint32_t>(n % 26)); };
  JitterBuffer buffer;
  std::string heard;
  int latest = -1, waiting = 0;
  std::size_t missing = 0;
  const auto pull = [&] {
    std::vector<std::int16_t> block(kBlockSamples);  // on the heap: sanitizers find writes past its end
    buffer.Pull(block);
    for (int n = 0; n < 26; ++n)
      heard += block == Decoded(block_of(n)) ? std::string(1, static_cast<char>('a' + n)) : "";
  };
  for (const char step : script) {
    if (step == '.') pull();
    if (step == '-') missing = 1;
    if (step != '+' && std::islower(step) == 0) continue;
    latest = step == '+' ? latest + 1 : step - 'a';
    auto packet = block_of(latest);
    packet.resize(packet.size() - std::exchange(missing, 0U));
    buffer.Push({.place = latest * kBlockSamples, .samples = std::ssize(packet), .payload = packet});
  }
  for (; !buffer.Empty(); ++waiting) pull();
  return heard + " " + std::to_string(waiting);
}

TEST(JitterBufferTest, PlaysPacketsInOrderConcealsLossesAndLimitsTheDelay) {
  const std::pair<const char*, const char*> kRows[] = {
      // Reordered, duplicate and late packets; a network that stalls and then delivers everything at once.
      {"a.c.b.b.e.d.f.f.a......ghijkl", "abcdefhijkl 6"},
      {"a.b.c.d.e.f.g.h...k.l.m.n.o.p.q.r.s.t.", "abcdefghlmnopqrst 2"},
      {".-abcd....", "cd 0"},
      {"a....", "a 0"},
  };
  for (const auto& [script, heard] : kRows) EXPECT_EQ(Heard(script), heard) << script;
  std::string faster;  // the sender is too fast at first
  for (int i = 0; i < 3000; ++i) faster += i < 150 && i % 10 == 0 ? "++." : "+.";
  EXPECT_TRUE(Heard(faster).ends_with(" 5")) << Heard(faster);
}

/// Returns the media, crypto and direction lines of our offer or answer as one line.
std::string Written(MediaNegotiation& negotiation, bool as_offer) {
  const LibrePtr<mbuf> text = negotiation.Write(as_offer);
  const std::string all(reinterpret_cast<const char*>(text->buf), text->end);
  const std::regex fact("m=audio( .*)|a=crypto:(.{25})|a=(.*only)");
  std::string told;
  for (std::sregex_iterator one(all.begin(), all.end(), fact), end; one != end; ++one)
    told += one->str(1) + (one->str(1).empty() ? " " : "") + one->str(2) + one->str(3);
  return told;
}

sa Address(std::uint16_t port) {
  sa address{};
  (void)sa_set_str(&address, "127.0.0.1", port);
  return address;
}

/// Reads SDP whose lines are joined by "|". Returns the peer's address, the payload types that we send
/// ("0+101": audio and keys), the directions, and our answer; or "refused".
std::string Read(MediaNegotiation& negotiation, const std::string& media, bool is_offer = true) {
  const auto text =
      std::regex_replace("v=0|s=-|c=IN IP4 127.0.0.1|" + media + "|", std::regex("\\|"), "\r\n");
  const auto agreed = negotiation.Read(text, is_offer, Address(5060));
  if (!agreed) return "refused";
  const auto& key_type = agreed->event_payload_type;
  return AddressText(agreed->peer) + " " + std::to_string(agreed->send_payload_type) +
         (key_type ? "+" + std::to_string(*key_type) : "") + (agreed->send ? " sends" : "") +
         (agreed->receive ? " receives" : "") + ":" + Written(negotiation, false);
}

constexpr const char* kSuite80 = "AES_CM_128_HMAC_SHA1_80";
constexpr const char* kSuite32 = "AES_CM_128_HMAC_SHA1_32";
constexpr const char* kKey = " inline:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";  // 30 bytes

TEST(MediaNegotiationTest, AgreesOnCodecsAddressesDirectionsAndKeysOrChangesNothing) {
  const std::string plain = "m=audio 9 RTP/AVP 0", savp = "m=audio 9 RTP/SAVP 0", avp = ": 4000 RTP/AVP 0";
  const std::string one = "127.0.0.1:9 0", agreed = one + " sends receives" + avp, chosen = " 2 "s + kSuite32;
  const std::string other = "|a=crypto:1 AES_256_CM_HMAC_SHA1_80 inline:x",
                    keys = "|a=rtpmap:101 telephone-event/8000";
  const std::string both = other + "|a=crypto:2 " + kSuite32 + kKey + "|a=crypto:3 " + kSuite80 + kKey;
  const std::string agreed_savp = one + " sends receives: 4000 RTP/SAVP 0" + chosen;
  constexpr auto kNever = SrtpUse::kNever, kIfOffered = SrtpUse::kIfOffered, kRequired = SrtpUse::kRequired;
  const std::tuple<SrtpUse, std::string, std::string> kRows[] = {
      {kNever, "m=audio 9 RTP/AVP 18 8 0 101" + keys,
       "127.0.0.1:9 8+101 sends receives: 4000 RTP/AVP 8 0 101"},
      {kNever, "m=audio 9 RTP/AVPF 96 97|a=rtpmap:96 pcmu/8000|a=rtpmap:97 PCMA/8000",
       "127.0.0.1:9 96 sends receives: 4000 RTP/AVPF 96 97"},
      {kNever, "m=audio 9 RTP/AVP 101" + keys, "refused"},
      {kNever, "m=nonsense|" + plain, "refused"},
      {kNever, plain + "|a=sendonly", one + " receives" + avp + " recvonly"},
      {kNever, plain + "|a=recvonly", one + " sends" + avp + " sendonly"},
      {kNever, plain + "|c=IN IP4 0.0.0.0", one + avp},
      {kNever, plain + "|c=IN IP6 ::", one + avp},
      {kNever, plain + "|c=IN IP4 example.org", agreed},
      {kNever, plain + "|c=IN IP6 2001:db8::1", agreed},
      {kNever, plain + "|a=fmtp:0|a=rtpmap:97 odd|a=rtpmap:98 /8000|b=AS:|| |m=video 9 X 98|a=rtcp:", agreed},
      {kNever, "o=- 1 1 IN IP4 0.0.0.0|m=audio 0 RTP/AVP 0|m=audio 9/2 RTP/AVP 0",
       one + " sends receives: 0 RTP/AVP 0 4000 RTP/AVP 0"},
      {kNever, plain + both, agreed},
      {kNever, savp + both, "refused"},
      {kIfOffered, plain + both, agreed + chosen},
      {kIfOffered, savp + both, agreed_savp},
      {kIfOffered, savp + other, "refused"},
      {kRequired, plain, "refused"},
      {kRequired, plain + both, agreed + chosen},
  };
  for (const auto& [use, offer, result] : kRows) {
    MediaNegotiation negotiation(Address(4000), use);
    EXPECT_EQ(Read(negotiation, offer), result) << offer;
  }
  // Wide codecs, by the line's ranking.
  const std::string all =
                        "m=audio 9 RTP/AVP 111 9 8 0 101 100|a=rtpmap:111 opus/48000/2|a=rtpmap:100 "
                        "telephone-event/48000" +
                        keys,
                    wide = "m=audio 9 RTP/AVP 9 111 101|a=rtpmap:111 opus/48000/2" + keys;
  using enum Codec;
  const std::tuple<std::vector<Codec>, std::string, std::string> kRanked[] = {
      {{}, all, "8+101 sends receives: 4000 RTP/AVP 8 0 101"},
      {{}, wide, "9+101 sends receives: 4000 RTP/AVP 9 101"},
      {{kMuLaw, kALaw, kG722}, all, "0+101 sends receives: 4000 RTP/AVP 0 8 101"},
      {{kG722, kMuLaw}, all, "9+101 sends receives: 4000 RTP/AVP 9 101"},
      {{kOpus, kG722}, all, "111+100 sends receives: 4000 RTP/AVP 111 100"},
      {{kOpus}, wide, "111+101 sends receives: 4000 RTP/AVP 111 101"},
      {{kOpus}, "m=audio 9 RTP/AVP 0 8", "refused"},
  };
  for (const auto& [codecs, offer, result] : kRanked) {
    MediaNegotiation negotiation(Address(4000), kNever, codecs);
    EXPECT_EQ(Read(negotiation, offer), result == "refused" ? result : "127.0.0.1:9 " + result) << offer;
  }
  // A refused description changes nothing.
  MediaNegotiation negotiation(Address(4000), SrtpUse::kIfOffered);
  EXPECT_NE(Read(negotiation, "m=audio 0 RTP/AVP 0|m=audio 9 RTP/AVP 0"), "refused");
  EXPECT_EQ(Read(negotiation, "m=audio 0 RTP/AVP 0|m=audio 9 RTP/AVP 18"), "refused");
  EXPECT_EQ(Read(negotiation, "m=audio 0 RTP/AVP 0|m=audio 9 RTP/SAVP 0", false), "refused")
      << "the answer demands what was not offered";
  EXPECT_EQ(Written(negotiation, true), " 0 RTP/AVP 0 4000 RTP/AVP 0");
}

TEST(SrtpTest, ReadsTheSupportedCryptoAttributes) {
  const std::string begin = "7 "s + kSuite32 + kKey;
  for (const char* end : {"", "|2^31", " WSH=64 -NEW=1", "  "}) {
    const auto read = ReadCryptoAttribute(begin + end);
    ASSERT_TRUE(read) << end;
    EXPECT_EQ(WriteCryptoAttribute(*read), begin);
  }
  for (const std::string& text :
       {begin + "|2^31|1:4", begin + "|1:4", begin + " UNENCRYPTED_SRTP", begin + " KDR=1", begin + "A",
        begin + ";inline:x", begin + " NEW=1", ""s, "1"s, "x "s + kSuite80 + kKey, "1 "s + kSuite80,
        "1 "s + kSuite80 + " inline:AAAA", "1 F8_128_HMAC_SHA1_80"s + kKey,
        "1 "s + kSuite80 + " inline:" + std::string(40, '?')}) {
    EXPECT_FALSE(ReadCryptoAttribute(text)) << text;
  }
}

TEST(DigitsTest, APersonsPaceIsAllowedAndAMachinesIsNot) {
  KeyRateLimit pace;
  int allowed = 0;
  // A person's pace, then several keys at once from a stalled network, then 6000 keys in six seconds.
  for (int key = 0, at = 3'600'000; key < 6028; ++key, at += key <= 20 ? 80 : key < 28 ? 0 : 1) {
    allowed += pace.Allows(KeyRateLimit::Time(milliseconds(at))) ? 1 : 0;
    EXPECT_TRUE(key >= 28 || allowed == key + 1) << key;
  }
  EXPECT_LE(allowed, 138);
}

TEST(CodecTest, KeysAreHeardThroughEachCodecAndOpusRepeatsWhatWasLost) {
  const std::string keys = "159D*0#";
  dtmf_tx_state_t* generator = dtmf_tx_init(nullptr);
  dtmf_tx_put(generator, keys.c_str(), -1);
  std::vector<std::int16_t> played(100 * kBlockSamples);
  dtmf_tx(generator, played.data(), static_cast<int>(played.size()));
  dtmf_tx_free(generator);
  // A telephone that repeats in each Opus packet what the one before it said.
  const std::unique_ptr<OpusEncoder, void (*)(OpusEncoder*)> repeater(
      opus_encoder_create(8000, 1, OPUS_APPLICATION_VOIP, nullptr), opus_encoder_destroy);
  opus_encoder_ctl(repeater.get(), OPUS_SET_BITRATE(24'000));
  opus_encoder_ctl(repeater.get(), OPUS_SET_INBAND_FEC(1));
  opus_encoder_ctl(repeater.get(), OPUS_SET_PACKET_LOSS_PERC(20));
  const auto repeated = [&](std::span<const std::int16_t> block) {
    Bytes payload(1275);
    payload.resize(
        static_cast<std::size_t>(opus_encode(repeater.get(), block.data(), 160, payload.data(), 1275)));
    return payload;
  };
  for (std::size_t row = 0; row <= kCodecs.size(); ++row) {
    const bool loses = row == kCodecs.size();
    const auto& [codec, name] = loses ? kCodecs.back() : kCodecs[row];
    Encoder encoder;
    Decoder decoder;
    std::vector<std::int16_t> decoded;
    std::string heard;
    DtmfDetector detector([&heard](char key) { heard += key; });
    for (std::size_t at = 0; at < played.size(); at += kBlockSamples) {
      const auto block = std::span(played).subspan(at, kBlockSamples);
      const Bytes own = loses ? repeated(block) : Bytes();
      const auto payload = loses ? std::span(own) : encoder.Encode(codec, block);
      EXPECT_EQ(SamplesIn(codec, payload), kBlockSamples) << name;
      if (loses && at > 0 && at % (7 * kBlockSamples) == 0) continue;
      const std::size_t lost = at - decoded.size();
      EXPECT_TRUE(lost == 0 || decoder.Recover(codec, payload, lost, decoded));
      decoder.Decode(codec, payload, decoded);
    }
    EXPECT_EQ(decoded.size(), played.size()) << name;
    detector.Listen(decoded);
    EXPECT_EQ(heard, keys) << name << (loses ? " with lost packets" : "");
  }
  const std::uint8_t damaged[] = {0xFF, 0xFF, 0x01};
  EXPECT_EQ(SamplesIn(Codec::kOpus, damaged), 0U);
}

TEST(CallerIdentityTest, ReadsWhatNetworksSend) {
  using Text = std::string_view;
  const Text from = "\"From\" <sip:1@h>;tag=x@y", ann = "\"Ann\" <sip:1@h>",
             office = "\"Office\" <sip:777@h>";
  const Text anonymous = "<sip:anonymous@anonymous.invalid>";
  // P-Asserted-Identity, From, Privacy, and the name and number that are read from them.
  const std::tuple<std::vector<Text>, Text, Text, Text> kRows[] = {
      {{}, R"("A \"B\" O'C, <x>" <sip:%2B49301;phone-context=d@h:5060>)", "", "A \"B\" O'C, <x>|+49301"},
      {{}, "Ann Smith <sip:ann:secret@h>", "", "Ann Smith|ann"},
      {{}, "sip:100@h;tag=abc", "", "|100"},
      {{office}, from, "", "Office|777"},
      {{"<tel:+1-201-555-0123;x=y>", office}, from, "", "Office|+12015550123"},
      {{"garbage"}, from, "", "From|1"},
      {{ann}, anonymous, "none", "Ann|1"},
      {{ann}, "<sip:1@h>", "critical; id", "|"},
      {{}, from, "header", "|"},
      {{}, anonymous, "", "|"},
      {{}, "<sip:x@anonymous.invalid:5060>", "", "|"},
      {{}, "Anonymous <sip:123@h>", "", "|"},
      {{}, "\"unended\\", "", "unended\\|"},
      {{}, "\"J\xFCrgen\" <sip:%FC@h>", "", "J\xC3\xBCrgen|\xC3\xBC"},
      {{}, "\"\xED\xA0\x80\" <sip:%G1%4@h>", "", "\xC3\xAD\xC2\xA0\xC2\x80|%G1%4"},
  };
  for (const auto& [asserted, sender, privacy, result] : kRows) {
    const auto [name, number] = Identify({asserted, {}, sender, privacy});
    EXPECT_EQ(name + "|" + number, result) << sender;
  }
  // Remote-Party-ID instead of P-Asserted-Identity.
  const std::pair<Text, Text> kParties[] = {
      {"\"Ann\" <sip:5@h>;party=calling;screen=yes;privacy=off", "Ann|5"},
      {"\"Ann\" <sip:5@h>;privacy=FULL", "|"},
      {"\"Ann\" <sip:5@h>;privacy=name", "|5"},
      {"\"Ann\" <sip:5@h>;privacy=\"uri\"", "Ann|"},
      {"\"Ann\" <sip:5@h>;party=called", "From|1"},
  };
  for (const auto& [party, result] : kParties) {
    const auto [name, number] = Identify({{}, {party}, from, ""});
    EXPECT_EQ(name + "|" + number, result) << party;
  }
}

TEST(DiversionTest, TellsWhoDivertedACallAndWhy) {
  using Texts = std::vector<std::string_view>;
  // Diversion, History-Info, and what they tell.
  const std::tuple<Texts, Texts, const char*> kRows[] = {
      {{"garbage", "\"Office\" <sip:888@h>;reason=no-answer;counter=1", "<sip:999@h>"}, {}, "888|no answer"},
      {{"<tel:+1-5>;reason=\"user-busy\";privacy=full"}, {}, "|busy"},
      {{"<sip:888@h>;reason=unknown"}, {}, "888|"},
      {{},
       {"<sip:888@h>;index=1", "<sip:1@h;cause=486?x=y>;index=1.1", "<sip:1@p>;index=1.1.1;rc=1.1"},
       "888|busy"},
      {{},
       {"<sip:888@h?Privacy=history&Reason=SIP%3Bcause%3D302%3Btext%3D%22M%22>;index=1", "<sip:1@h>"},
       "|always"},
      {{}, {"<sip:888@h>;index=1", "<sip:1@h>;index=1.1;mp=1"}, "888|"},
      {{}, {"<sip:888@h>;index=1", "<sip:888@p>;index=1.1;rc=1"}, "none"},
  };
  for (const auto& [diversions, history, result] : kRows) {
    const auto found = DiversionIn(diversions, history);
    EXPECT_EQ(found ? found->from + "|" + found->reason : "none", result);
  }
}

TEST(RegisterAnswerTest, TellsWhereTheServerSeesUs) {
  // The transport, the parameters of the answer's Via, and where we are. Over TLS a connection is the only
  // way to us.
  const std::tuple<sip_transp, const char*, const char*> kRows[] = {
      {SIP_TRANSP_UDP, "rport=4000", "192.0.2.1:4000"},
      {SIP_TRANSP_TCP, "rport=4000", "here"},
      {SIP_TRANSP_TLS, "rport=4000", "192.0.2.1:4000"},
      {SIP_TRANSP_TCP, "rport=4000;received=198.51.100.7", "198.51.100.7:4000"},
      {SIP_TRANSP_UDP, "rport=5070;received=192.0.2.1", "here"},
      {SIP_TRANSP_UDP, "x=y", "unknown"},
  };
  sa own{};
  ASSERT_EQ(sa_set_str(&own, "192.0.2.1", 5070), 0);
  for (const auto& [transport, parameters, where] : kRows) {
    const LibrePtr<mbuf> text(mbuf_alloc(512));
    ASSERT_EQ(mbuf_printf(text.get(), "SIP/2.0 200 OK\r\nVia: SIP/2.0/UDP 192.0.2.1:5070;branch=z;%s\r\n\r\n",
                          parameters),
              0);
    text->pos = 0;
    sip_msg* message = nullptr;
    ASSERT_EQ(sip_msg_decode(&message, text.get()), 0);
    const LibrePtr<sip_msg> answer(message);
    answer->tp = transport;
    const auto seen = SeenAddress(*answer, own);
    const std::string told = !seen ? "unknown" : sa_isset(&*seen, SA_ALL) ? AddressText(*seen) : "here";
    EXPECT_EQ(told, where) << parameters;
  }
}

}  // namespace
}  // namespace orven::test
