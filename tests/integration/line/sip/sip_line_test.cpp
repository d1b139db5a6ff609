// SPDX-License-Identifier: GPL-3.0-or-later
// A call's way through the line, as a caller and the line's owner see it; and what no caller should send:
// whatever comes, the line lives and takes the next call.
#include <array>
#include <fstream>

#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;
using Texts = std::vector<std::string>;

/// What this process has in memory.
std::size_t ResidentBytes() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * 4096;
}

/// A caller's call that is up as call `n`.
std::string Connected(const std::string& n) {
  return "caller " + n + ",> INVITE,Ring " + n + " 1,answer 1,< 200,> ACK,Connected " + n + ",";
}

TEST_F(SipLineTest, TellsACallInOrderUnlessItIsCancelled) {
  Play("> INVITE,< 180,Ring 1 1,Ring 1 2,answer 7,< 200,> ACK,Connected 1,> BYE,< 200,Idle 1");
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith|5551234", "Ring 1 1", "Ring 1 2",
                                 "RequestDone 7 0", "Connected 1", "Disconnected 1", "Idle 1"}));
  events.Clear();
  Play("caller 2,> INVITE,Ring 2 1,> CANCEL,< 487,Idle 2");
  EXPECT_EQ(events.All(), (Texts{"Offered 2", "CallerId 2 Ann Smith|5551234", "Ring 2 1", "Idle 2"}));
  Play("answer 3,drop 4,RequestDone 3 " + std::to_string(kTelephonyNoCall) + ",RequestDone 4 0");
}

TEST_F(SipLineTest, DroppingEndsTheCallOnBothSidesAtEveryMoment) {
  Play("> INVITE,Ring 1 1,drop 1,< 486,Idle 1,RequestDone 1 0");
  Play("caller 2,> INVITE,Ring 2 1,answer 2,drop 3,Idle 2,< 200,> ACK,< BYE");
  Play(Connected("3") + "answer 5,drop 6,< BYE,Idle 3,RequestDone 5 " +
       std::to_string(kTelephonyAlreadyAnswered));
  for (const std::string& event : events.All()) EXPECT_FALSE(event.starts_with("Disconnected")) << event;
}

TEST_F(SipLineTest, AnswersACallThatLeavesTheOfferToUs) {
  Play("> INVITE none,Ring 1 1,answer 1,< 200");
  caller->Send(caller->Text("ACK", caller->Sdp("8")));
  Play("Connected 1");
  EXPECT_EQ(caller->NextPacket().at(1) & 0x7F, 8);
  Play("> BYE,< 200");
}

TEST_F(SipLineTest, ReInvitesHoldAndResumeAndOnlyASilentPeerIsLost) {
  settings.timers.lost_media = milliseconds(500);
  Play(Connected("1") + "> INVITE 0 sendonly,< 200,> ACK,deaf 600,> INVITE 0 inactive,< 200,> ACK,deaf 100");
  Play("> INVITE 18,< 488");
  EXPECT_EQ(events.All().back(), "Connected 1") << "a refused offer ends no call";
  Play("> INVITE,< 200,> ACK,hears 1");
  for (const std::uint32_t type : {200, 0}) {  // RTCP for 0.8 s, then others until the end
    for (int i = 0; i < (type != 0 ? 40 : 400) && events.All().back() == "Connected 1"; ++i) {
      caller->rtp.SendTo(static_cast<std::uint16_t>(caller->line_rtp_port + 1),
                         RtpPacketBytes(type, 1, 0, {}));
      (void)caller->NextPacket(milliseconds(20));
    }
    EXPECT_EQ(events.All().back(), type != 0 ? "Connected 1" : "Idle 1");
  }
  Play("< BYE");
}

TEST_F(SipLineTest, ACallerWhoIsGoneOrSilentOnHoldOrNeverAcknowledgesIsLost) {
  settings.timers.unreachable = settings.timers.lost_held = settings.timers.no_ack = milliseconds(300);
  Play(Connected("1"));
  caller->rtp.Close();
  Play("Disconnected 1,Idle 1,< BYE");
  Play(Connected("2") + "> INVITE 0 sendonly,< 200,> ACK,Disconnected 2,Idle 2,< BYE");
  Play("caller 3,> INVITE,Ring 3 1,answer 2,Disconnected 3,Idle 3,< 200,> ACK,< BYE");
}

TEST_F(SipLineTest, ASecondCallerIsBusyAndClosingHangsUp) {
  Play(Connected("1"));
  const Texts before = events.All();
  Play("caller 2,> INVITE,< 486,caller 1,hears 1");
  EXPECT_EQ(events.All(), before);
  line->Close();
  EXPECT_EQ(events.All().back(), "Idle 1");
  ASSERT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  Play("< BYE,caller 3,> INVITE,< 180");
  line->Close();  // without waiting for the refusal's acknowledgement
  EXPECT_EQ(events.All().back(), "Idle 1");
}

TEST_F(SipLineTest, OpeningSaysWhatIsWrongAndCanBeRepeated) {
  for (const auto& make : {Socket::Udp, Socket::TcpListening}) {
    const Socket taken = make(port);
    OpenLine(kTelephonyLineInUse, settings.listen);
  }
  EXPECT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  settings.listen = "203.0.113.7:5999";
  OpenLine(kTelephonyDeviceFailed, "203.0.113.7:5999");
}

TEST_F(SipLineTest, RequestsAreTakenWhereTheyCanBeAndElseRefused) {
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
      {"Contact:", "Require: 100rel\r\nContact:", "420"},
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
  Play(Connected(std::to_string(call + 1)) + "hears 1,> BYE,< 200");
}

TEST_F(SipLineTest, BrokenTcpStreamsAreClosedAndCostNoMemory) {
  OpenLine();
  const std::size_t before = ResidentBytes();
  // Empty lines whose answers are not read; the same, read, but with a piece of one left over each time.
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
#ifndef __SANITIZE_ADDRESS__  // which keeps what is given free
    EXPECT_LT(most, before + 50'000'000) << lines;
#endif
  }
}

}  // namespace
}  // namespace orven::test
