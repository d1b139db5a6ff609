// SPDX-License-Identifier: GPL-3.0-or-later
// Calls as the caller and the user of the line see them, their audio and keys, and hostile input: after any
// input, the line takes the next call.
#include <spandsp.h>

#include <array>
#include <fstream>
#include <regex>

#include "adapters/line/sip/srtp.h"
#include "integration/line/sip/sip_line_test.h"
#include "platform/wave.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;
using Texts = std::vector<std::string>;

/// Returns the resident memory of this process.
std::size_t ResidentBytes() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * 4096;
}

/// Returns the steps that connect caller `n` in call `n`.
std::string Connected(const std::string& n) {
  return "caller " + n + ",> INVITE,Ring " + n + " 1,answer 1,< 200,> ACK,Connected " + n + ",";
}

TEST_F(SipLineTest, ReportsTheEventsOfACallInOrder) {
  Play("> INVITE,< 180,Ring 1 1,Ring 1 2,answer 7,< 200,> ACK,Connected 1,> BYE,< 200,Idle 1");
  Play("caller 2,> INVITE,Ring 2 1,> CANCEL,< 487,Idle 2");
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith/5551234", "Ring 1 1", "Ring 1 2",
                                 "Done 7 0", "Connected 1", "Disconnected 1", "Idle 1", "Offered 2",
                                 "CallerId 2 Ann Smith/5551234", "Ring 2 1", "Idle 2"}));
  Play("answer 3,drop 4,Done 3 " + std::to_string(kTelephonyNoCall) + ",Done 4 0");
}

TEST_F(SipLineTest, DroppingEndsTheCallOnBothSidesAtAnyTime) {
  Play("> INVITE,Ring 1 1,drop 1,< 486,Idle 1,Done 1 0");
  Play("caller 2,> INVITE,Ring 2 1,answer 2,drop 3,Idle 2,< 200,> ACK,< BYE");
  Play(Connected("3") + "answer 5,drop 6,< BYE,Idle 3,Done 5 " + std::to_string(kTelephonyAlreadyAnswered));
  for (const std::string& event : events.All()) EXPECT_FALSE(event.starts_with("Disconnected")) << event;
}

TEST_F(SipLineTest, AnswersAnInviteWithoutAnOffer) {
  Play("> INVITE none,Ring 1 1,answer 1,< 200");
  EXPECT_NE(caller->answer.find(" RTP/AVP 0 8 9 107 101 102\r\n"), std::string::npos) << caller->answer;
  caller->Send(caller->Text("ACK", caller->Sdp("107") + "a=rtpmap:107 opus/48000/2\r\n"));
  Play("Connected 1");
  const std::string packets[] = {caller->NextPacket(), caller->rtp.Receive()};
  EXPECT_EQ(packets[0].at(1) & 0x7F, 107);
  // Numbers of the lowest 16 bits: the sequence and the clock.
  const auto number = [&](int packet, std::size_t at) {
    return static_cast<std::uint8_t>(packets[packet].at(at)) * 256 +
           static_cast<std::uint8_t>(packets[packet].at(at + 1));
  };
  EXPECT_EQ((number(1, 6) - number(0, 6)) & 0xFFFF, (number(1, 2) - number(0, 2)) * 48'000 / 50);
  Play("> BYE,< 200");
}

TEST_F(SipLineTest, ReInvitesHoldAndResumeAndOnlySilenceOffHoldEndsTheCall) {
  settings.timers.lost_media = milliseconds(500);
  Play(Connected("1") + "> INVITE 0 sendonly,< 200,> ACK,deaf 600,> INVITE 0 inactive,< 200,> ACK,deaf 100");
  Play("> INVITE 18,< 488");
  EXPECT_EQ(events.All().back(), "Connected 1") << "a refused offer does not end the call";
  Play("> INVITE,< 200,> ACK,hears 1,Disconnected 1,Idle 1,< BYE");
}

TEST_F(SipLineTest, ACallEndsIfThePeerIsUnreachableSilentOnHoldOrSendsNoAck) {
  settings.timers.unreachable = settings.timers.lost_held = settings.timers.no_ack = milliseconds(300);
  Play(Connected("1"));
  caller->rtp.Close();
  Play("Disconnected 1,Idle 1,< BYE");
  Play(Connected("2") + "> INVITE 0 sendonly,< 200,> ACK,Disconnected 2,Idle 2,< BYE");
  Play("caller 3,> INVITE,Ring 3 1,answer 2,Disconnected 3,Idle 3,< 200,> ACK,< BYE");
}

TEST_F(SipLineTest, ARingingThatMustArriveIsRepeatedUntilItIsConfirmedOrTheCallEnds) {
  settings.timers.no_ack = milliseconds(700);
  OpenLine();
  const auto with = [&](const std::string& method, const std::string& header, const std::string& to) {
    const auto text = std::regex_replace(caller->Text(method), std::regex("To: .*>"), "To: " + to);
    caller->Send(std::regex_replace(text, std::regex("Contact"), header + "\r\nContact"));
  };
  with("INVITE", "Require: 100rel", "<sip:line@127.0.0.1>");
  const std::string ringing = caller->Take("180"), number = Header(ringing, "RSeq"),
                    to = Header(ringing, "To");
  EXPECT_EQ(Header(caller->Take("180"), "RSeq"), number) << "repeated";
  with("PRACK", "RAck: " + number + " 2 INVITE", to);
  Play("< 481");
  with("PRACK", "RAck: " + number + " 1 INVITE", to);
  Play("< 200,Ring 1 1");
  with("PRACK", "RAck: " + number + " 1 INVITE", to);
  Play("< 481");
  EXPECT_EQ(caller->Take("504", milliseconds(900)), "") << "the call goes on";
  Play("drop 1,Idle 1,caller 2");
  with("INVITE", "Require: 100rel", "<sip:line@127.0.0.1>");
  Play("Ring 2 1,< 504,Idle 2");
}

TEST_F(SipLineTest, ASessionTimerEndsACallThatNobodyConfirms) {
  settings.timers.shortest_session = std::chrono::seconds(2);
  OpenLine();
  const auto send = [&](const std::string& method, const std::string& headers, const std::string& body = "") {
    caller->Send(
        std::regex_replace(caller->Text(method, body), std::regex("Contact"), headers + "\r\nContact"));
  };
  send("INVITE", "Supported: timer\r\nSession-Expires: 1", caller->Sdp());
  EXPECT_EQ(Header(caller->Take("422"), "Min-SE"), "2");
  send("INVITE", "Supported: timer\r\nSession-Expires: 2", caller->Sdp());
  Play("Ring 1 1,answer 1,< 200,> ACK");
  EXPECT_EQ(Header(caller->answer, "Session-Expires"), "2;refresher=uac");
  send("UPDATE", "Subject: x", caller->Sdp("0", "sendonly"));
  Play("< 200,deaf 800");
  send("UPDATE", "Supported: timer", caller->Sdp("18"));
  Play("< 488");
  send("UPDATE", "Supported: timer");
  EXPECT_EQ(Header(caller->Take("200"), "Session-Expires"), "2;refresher=uac");
  send("UPDATE", "Subject: x", caller->Sdp());
  Play("< 200,hears 40");
  EXPECT_EQ(events.All().back(), "Connected 1") << "the call has been confirmed";
  Play("Disconnected 1,Idle 1,< BYE,> UPDATE,< 481,caller 2");
  // The second caller wants us to confirm, and is behind a router.
  send("INVITE", "Session-Expires: 2",
       std::regex_replace(caller->Sdp(), std::regex("audio .* RTP"), "audio 9 RTP"));
  Play("Ring 2 1,answer 1,< 200,> ACK");
  caller->SendRtp(RtpPacketBytes(0, 1, 160, NoiseBytes(1, 1)));
  std::string ours = caller->Take("INVITE");
  EXPECT_EQ(Header(ours, "Session-Expires") + Header(ours, "Supported"), "2;refresher=uastimer");
  EXPECT_EQ(ours.substr(ours.find("m=")), caller->answer.substr(caller->answer.find("m=")))
      << "another offer";
  const auto sdp = std::regex_replace(caller->Sdp("0 101"), std::regex("audio .* RTP"), "audio 9 RTP");
  ours = ReplyTo(ours, "200 OK", "Contact: " + Header(caller->Text("UPDATE"), "Contact") + "\r\n");
  caller->Send(std::regex_replace(ours, std::regex("Length: 0\r\n\r\n"),
                                  "Length: " + std::to_string(sdp.size()) + "\r\n\r\n" + sdp));
  Play("< ACK,hears 40");
  EXPECT_EQ(events.All().back(), "Connected 2") << "the confirmation was accepted";
  Play("Disconnected 2,Idle 2");
}

TEST_F(SipLineTest, ASecondCallerIsBusyAndClosingHangsUp) {
  Play(Connected("1"));
  const Texts before = events.All();
  Play("caller 2,> INVITE,< 486,caller 1,hears 1");
  EXPECT_EQ(events.All(), before);
  line->Close();
  EXPECT_EQ(events.All().back(), "Idle 1");
  ASSERT_FALSE(line->Open(sink));
  Play("< BYE,caller 3,> INVITE,< 180");
  line->Close();  // without waiting for the ACK of the refusal
  EXPECT_EQ(events.All().back(), "Idle 1");
}

TEST_F(SipLineTest, AFailedOpeningNamesTheReasonAndCanBeRepeated) {
  for (const auto& make : {Socket::Udp, Socket::TcpListening}) {
    const Socket taken = make(port);
    OpenLine(kTelephonyLineInUse, settings.listen);
  }
  EXPECT_FALSE(line->Open(sink));
}

TEST_F(SipLineTest, InvalidRequestsAreRefusedAndTheLineStaysInUse) {
  Play("> MESSAGE,< 405,> BYE,< 481,> OPTIONS");
  EXPECT_NE(Header(caller->Take("200"), "Allow").find("INVITE"), std::string::npos);
  const std::string multipart = "multipart/mixed;boundary=b\r\n\r\n--b\r\n";
  const std::array<std::string, 3> kRows[] = {
      {"From:", "X:", "400"},
      {"To:", "X:", "400"},
      {"Call-ID:", "X:", "400"},
      {"CSeq:", "X:", "400"},
      {"Contact:", "X:", "400"},
      {"Contact:", "Contact: <nothing>\r\nX:", "400"},
      {"1 INVITE", "1 BYE", "400"},
      {";tag=caller", "", "400"},
      {"Length: ", "Length: 9", "400"},
      {"Length: ", "Length: -", "400"},
      {"Contact:", "X-Long: " + std::string(9'000, 'x') + "\r\nContact:", "180"},
      {"Contact:", "Require: 100rel, path\r\nContact:", "420"},
      {"Contact:",
       "P-Asserted-Identity: <sip:7@h>\r\nDiversion: <sip:8@h,i>;reason=away,<sip:9@h>\r\nContact:", "180"},
      {"application/sdp", "text/plain", "415"},
      {"Content-Type: application/sdp\r\nContent-Length", "X", "180"},
      {"application/sdp\r\nContent-Length:", multipart + "content-type:\r\n application/sdp\r\nX:", "180"},
      {"application/sdp\r\nContent-Length:", multipart + "Content-Type: text/plain\r\nX:", "415"},
      {"RTP/AVP 0", "RTP/AVP 18", "488"},
  };
  for (const auto& [from, to, status] : kRows) {
    SipCaller eve(port);
    std::string text = eve.Text("INVITE", eve.Sdp("0"));
    eve.Send(text.replace(text.find(from), from.size(), to));
    EXPECT_NE(eve.Take(status, milliseconds(2000)), "") << from << " as " << to.substr(0, 50);
    const std::string next = std::to_string(call + 1);
    if (status == "180") Play("Ring " + next + " 1,drop 1,Idle " + next);
  }
  Play("CallerId 2 Ann Smith/5551234,Diverted 2 8/away");
  Play(Connected(std::to_string(call + 1)) + "hears 1,> BYE,< 200");
}

TEST_F(SipLineTest, BrokenTcpStreamsAreClosedAndCostNoMemory) {
  OpenLine();
  const std::size_t before = ResidentBytes();
  // The first flood is empty lines whose answers are not read. The second one reads the answers, but its data
  // always ends within a line.
  for (const std::string& lines :
       {"\r\n\r\n"s, "\n\r\n\r"s, "xxxx"s, "OPTIONS sip:a SIP/2.0\r\nContent-Length: 4000000000\r\n\r\n"s}) {
    const bool reads = lines[0] == '\n';
    const Socket flood = Socket::TcpTo(port);
    flood.Send(reads ? "\r" : "");
    std::string piece;
    while (piece.size() < 8192) piece += lines;
    std::size_t most = 0, sent = 0;
    for (; sent < 64'000'000 && flood.Send(piece); sent += piece.size()) {
      if (reads) (void)flood.Receive(milliseconds(0));
      most = std::max(most, ResidentBytes());
    }
    EXPECT_LT(sent, 64'000'000U) << lines << " is never refused";
#ifndef __SANITIZE_ADDRESS__  // a sanitizer keeps freed memory
    EXPECT_LT(most, before + 50'000'000) << lines;
#endif
  }
}

/// Returns the tones of `keys` as mu-law bytes, 70 ms each with pauses, and silence before and after them.
Bytes Tones(const std::string& keys) {
  dtmf_tx_state_t* generator = dtmf_tx_init(nullptr);
  dtmf_tx_set_timing(generator, 70, 70);
  dtmf_tx_put(generator, keys.c_str(), -1);
  std::vector<std::int16_t> samples((20 + 7 * keys.size()) * 160);
  dtmf_tx(generator, samples.data() + 1600, static_cast<int>(samples.size() - 1600));
  dtmf_tx_free(generator);
  Encoder encoder;
  const auto bytes = encoder.Encode(Codec::kMuLaw, samples);
  return {bytes.begin(), bytes.end()};
}

TEST_F(SipLineTest, RecordsOnlyTheCallerWhomItAnswered) {
  const Bytes spoken = NoiseBytes(40, 3), shouted = NoiseBytes(30, 4);
  settings.timers.last_audio = milliseconds(8000);
  KeptAudio recorded;
  Play(Connected("1"));
  ASSERT_EQ(line->Audio().StartRecord(recorded), kWaveOk);
  EXPECT_EQ(line->Audio().StartRecord(recorded), kWaveBusy);
  const Socket stranger = Socket::Udp();
  stranger.SendTo(caller->line_rtp_port, RtpPacketBytes(77, 1, 160, NoiseBytes(1, 1)));  // not negotiated
  stranger.SendTo(caller->line_rtp_port, "not RTP"s);
  Play("hears 15");
  std::jthread talker = Talk(caller->rtp, caller->line_rtp_port, spoken);
  Play("hears 10");
  std::jthread shouter = Talk(stranger, caller->line_rtp_port, shouted, 2);
  talker.join();
  shouter.join();
  const Bytes last = NoiseBytes(2, 5);
  const auto say = [&](std::uint32_t number, auto begin) {
    caller->SendRtp(RtpPacketBytes(0, number, number * 160, {begin, begin + 160}));
  };
  say(41, last.begin() + 160);
  Play("> BYE,< 200");
  say(40, last.begin());
  Play("Idle 1");
  EXPECT_EQ(recorded.BlocksOf(last), 2U) << "what was under way at the end is lost";
  EXPECT_GE(recorded.all.size(), spoken.size() + 1400) << "a silent caller is recorded too";
  // A busy machine may insert a pause into the stream, but no audio is lost or changed permanently.
  EXPECT_GE(recorded.BlocksOf(spoken), 37U);
  EXPECT_EQ(recorded.BlocksOf({spoken.end() - kBlockSamples, spoken.end()}), 1U) << "the last word is lost";
  EXPECT_EQ(recorded.BlocksOf(shouted), 0U);
  EXPECT_EQ(stranger.Receive(milliseconds(1)), "") << "a stranger hears the call";
  Play(Connected("2"));
  say(1, last.begin());
  say(3, last.begin());
  Play("> BYE,< 200,caller 3,> INVITE,Idle 2,Ring 3 1");
}

TEST_F(SipLineTest, ReportsEachMonitoredKeyOnceHoweverItIsSent) {
  // Sends a key as a telephone does: three packets while it is down, three after its release. The first
  // `lost` packets are not sent.
  auto press = [&, sequence = 100U, at = 0U](char key, int lost = 0) mutable {
    const auto code = static_cast<std::uint8_t>("0123456789*#A"s.find(key));
    at += 8000;
    for (int i = lost; i < 6; ++i) {
      const auto flags = static_cast<std::uint8_t>(i < 3 ? 0x0A : 0x8A);
      const auto duration = static_cast<std::uint8_t>(std::min(i, 3) * 40);
      caller->SendRtp(RtpPacketBytes(i == 0 ? 0x80 | 101 : 101, ++sequence, at, {code, flags, 0, duration}));
    }
  };
  const auto info = [&](const std::string& type, const std::string& body, const std::string& status = "200") {
    caller->Send(caller->Text("INFO", body, "application/" + type));
    EXPECT_NE(caller->Take(status), "") << body;
  };
  KeptAudio recorded;
  Play(Connected("1"));
  ASSERT_EQ(line->Audio().StartRecord(recorded), kWaveOk);
  info("dtmf", "8");
  line->MonitorDigits(1, true);
  for (const char key : {'1', '1', '?', '*', '#'}) press(key);  // '?' is no key
  press('A', 4);
  ASSERT_TRUE(events.Wait("Digit A"));
  info("dtmf-relay", "Signal=7\r\nDuration=160\r\n");
  info("dtmf-relay", "Signal:7", "400");
  info("text", "5", "415");
  info("dtmf", "15");
  const auto tones = Tones("429B");
  std::jthread talker = Talk(caller->rtp, caller->line_rtp_port, tones);
  press('4');
  info("dtmf-relay", "Signal=4\r\n");
  ASSERT_TRUE(events.Wait("Digit 2"));
  info("dtmf-relay", "Signal=2\r\n");
  talker.join();
  ASSERT_TRUE(events.Wait("Digit B"));
  Play("> BYE,< 200,Idle 1");
  std::string digits;
  for (const std::string& event : events.All()) digits += event.starts_with("Digit ") ? event.substr(6) : "";
  EXPECT_EQ(digits, "11*#A7D429B");
  EXPECT_GE(recorded.BlocksOf(tones), tones.size() / 160 - 3) << "the tones stay in the recording";
}

TEST_F(SipLineTest, AnEncryptedCallStaysEncryptedThroughHoldsAndNewKeys) {
  const std::string key = "1 AES_CM_128_HMAC_SHA1_80 inline:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
  const std::string new_key = std::regex_replace(key, std::regex("AAEC"), "BQEC");
  const auto send = [&](SrtpSender& sender, const Bytes& plain) {
    const auto packet = sender.Protect(plain);
    caller->SendRtp({packet.begin(), packet.end()});
  };
  Bytes spoken;
  auto speak = [&, sequence = 1U](const std::string& by) mutable {
    SrtpSender sender(SrtpSuite::kTag80, ReadCryptoAttribute(by)->key);
    for (const std::uint32_t end = sequence + 10; sequence < end; ++sequence) {
      const Bytes block = NoiseBytes(1, sequence);
      send(sender, RtpPacketBytes(0, sequence, sequence * 160, block));
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
    const std::string packet = caller->NextPacket();
    SrtpReceiver receiver(SrtpReceiver::Kind::kRtp, SrtpSuite::kTag80, own);
    return packet.size() == 12 + 160 + 80 / 8U && receiver.Unprotect(Bytes(packet.begin(), packet.end()));
  };
  SrtpSender stranger(SrtpSuite::kTag80, NewSrtpKey());
  const Bytes plain = NoiseBytes(1, 99);
  for (std::uint32_t i = 0; i < 100; ++i) {
    send(stranger, RtpPacketBytes(0, 60'000 + i, 0, plain, i));
    caller->SendRtp(RtpPacketBytes(0, i, i * 160, plain));
  }
  Play("hears 10");
  EXPECT_EQ(events.All().back(), "Done 1 0") << "strangers' packets count as audio";
  speak(key);
  Play("Connected 1");  // without an ACK
  EXPECT_TRUE(hears());
  Play("> ACK");
  EXPECT_EQ(offer(key, "sendonly"), own) << "our key changed without need";
  Play("deaf 300");
  offer(key, "sendrecv");
  EXPECT_TRUE(hears());
  speak(key);
  Play("> INVITE 0,< 488");
  EXPECT_TRUE(hears()) << "the call is no longer encrypted";
  offer(new_key, "sendrecv");
  speak(new_key);
  EXPECT_TRUE(hears());
  Play("> BYE,< 200,Idle 1");
  EXPECT_GE(recorded.BlocksOf(spoken), 27U);
  EXPECT_EQ(recorded.BlocksOf(plain), 0U);
}

}  // namespace
}  // namespace orven::test
