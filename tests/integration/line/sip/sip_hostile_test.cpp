// SPDX-License-Identifier: GPL-3.0-or-later
// What no caller should send. Whatever comes, the line lives and takes the next call.
#include <algorithm>
#include <fstream>
#include <random>

#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;

constexpr std::string_view kInvite =
    "INVITE sip:line@127.0.0.1 SIP/2.0\r\n"
    "Via: SIP/2.0/UDP 127.0.0.1:9;branch=z9hG4bK-number;rport\r\n"
    "From: \"Eve\" <sip:eve@127.0.0.1>;tag=1\r\n"
    "To: <sip:line@127.0.0.1>\r\n"
    "Call-ID: hostile-number\r\n"
    "CSeq: 1 INVITE\r\n"
    "Contact: <sip:eve@127.0.0.1:9>\r\n"
    "Content-Type: application/sdp\r\n\r\n"
    "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN IP4 127.0.0.1\r\nt=0 0\r\nm=audio 4000 RTP/AVP "
    "0\r\na=sendrecv\r\n";

/// The INVITE of a call of its own, with `from` replaced by `to`.
std::string Invite(const std::string& from = "", const std::string& to = "") {
  static int number = 0;
  ++number;
  std::string text(kInvite);
  if (text.find(from) == std::string::npos) throw std::invalid_argument(from);
  text.replace(text.find(from), from.size(), to);
  for (std::size_t at = 0; (at = text.find("-number")) != std::string::npos;) {
    text.replace(at, 7, std::to_string(number));
  }
  return text;
}

/// What this process has in memory.
std::size_t ResidentBytes() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * 4096;
}

class SipHostileTest : public SipLineTest {
 protected:
  void SetUp() override { OpenLine(); }

  void ExpectACallWorks() {
    SipCaller caller(port);
    Connect(caller);
    EXPECT_TRUE(caller.HearsMore());
    HangUp(caller);
  }
};

TEST_F(SipHostileTest, InvitesAreTakenWhereTheyCanBeAndElseRefused) {
  struct Case {
    std::string from;
    std::string to;
    std::string status;
  };
  for (const Case& one :
       {Case{"", "", "180"},
        Case{"From: \"Eve\" <sip:eve@127.0.0.1>;tag=1\r\n", "", "400"},
        Case{"To: <sip:line@127.0.0.1>\r\n", "", "400"},
        Case{"Call-ID: hostile-number\r\n", "", "400"},
        Case{"CSeq: 1 INVITE\r\n", "", "400"},
        Case{"Contact: <sip:eve@127.0.0.1:9>\r\n", "", "400"},
        Case{"<sip:eve@127.0.0.1:9>", "<nothing>", "400"},
        Case{"1 INVITE", "1 BYE", "400"},
        Case{";tag=1", "", "400"},
        Case{"\r\n\r\n", "\r\nContent-Length: 99999\r\n\r\n", "400"},
        Case{"\r\n\r\n", "\r\nContent-Length: -1\r\n\r\n", "400"},
        Case{"Contact:", "X-Long: " + std::string(9'000, 'x') + "\r\nContact:", "180"},
        Case{"application/sdp", "text/plain", "415"},
        Case{"application/sdp", "multipart/mixed;boundary=b\r\n\r\n--b\r\ncontent-type:\r\n application/sdp",
             "180"},
        Case{"application/sdp", "multipart/mixed;boundary=b\r\n\r\n--b\r\nContent-Type: text/plain", "415"},
        Case{"Contact:", "Require: 100rel\r\nContact:", "420"},
        Case{"RTP/AVP 0", "RTP/AVP 18 3", "488"},
        Case{"RTP/AVP 0", "RTP/AVP 101", "488"},
        Case{"t=0 0", "m=nonsense", "488"},
        Case{"c=IN IP4 127.0.0.1", "c=IN IP4 example.org", "180"},
        Case{"c=IN IP4 127.0.0.1", "c=IN IP6 2001:db8::1", "180"},
        Case{"a=sendrecv\r\n", "a=sendrecv", "180"},
        Case{"a=sendrecv",
             "a=fmtp:0\r\na=rtpmap:97 odd\r\nb=AS:\r\n\r\n \r\nm=video 9 X 98\r\na=rtcp:", "180"}}) {
    const Socket caller = Socket::Udp();
    caller.SendTo(port, Invite(one.from, one.to));
    const std::string reply = caller.ReceiveText(milliseconds(2000));
    EXPECT_TRUE(reply.starts_with("SIP/2.0 "s + one.status)) << one.from << " as " << one.to << ": " << reply;
    if (!reply.starts_with("SIP/2.0 180")) continue;
    line->Drop(++call, 1);
    ASSERT_TRUE(events.Wait("Idle " + std::to_string(call)));
  }
  EXPECT_EQ(std::ranges::count(events.All(), "Offered " + std::to_string(call + 1)), 0);
  ExpectACallWorks();
}

TEST_F(SipHostileTest, AFloodOfBrokenMessagesEndsInAFreeLine) {
  std::mt19937 random(7);
  const auto any = [&](std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random);
  };
  const Socket attacker = Socket::Udp();
  for (int i = 0; i < 3000; ++i) {
    std::string text = Invite();
    if (i % 3 == 0) text.resize(1 + any(text.size()));
    // With few bytes replaced some are still good enough for a call.
    for (int flips = 0; flips < (i % 3 == 1 ? 300 : 3); ++flips)
      text[any(text.size())] = static_cast<char>(random());
    attacker.SendTo(port, text);
  }
  // By the answer to this all has been read; the flood may wash the question away.
  SipCaller caller(port);
  bool answered = false;
  for (int attempt = 0; attempt < 20 && !answered; ++attempt) {
    caller.Request("OPTIONS");
    answered = caller.Wait("200", milliseconds(500)).has_value();
  }
  EXPECT_TRUE(answered);
  while (events.Wait("Offered " + std::to_string(call + 1), milliseconds(50))) {
    line->Drop(++call, 1);
    ASSERT_TRUE(events.Wait("Idle " + std::to_string(call)));
  }
  ExpectACallWorks();
}

TEST_F(SipHostileTest, BrokenTcpStreamsAreClosedCostNoMemoryAndOthersAreServed) {
  std::vector<Socket> idle;
  idle.reserve(50);
  for (int i = 0; i < 50; ++i) idle.push_back(Socket::TcpTo(port));
  const std::size_t before = ResidentBytes();
  // Empty lines whose answers are not read; the same, read, but with a piece of one left over each time.
  for (const char* lines :
       {"\r\n\r\n", "\n\r\n\r", "xxxx", "OPTIONS sip:a SIP/2.0\r\nContent-Length: 4000000000\r\n\r\n"}) {
    const Socket flood = Socket::TcpTo(port);
    flood.Send(lines[0] == '\n' ? "\r" : "");
    std::string piece;
    while (piece.size() < 8192) piece += lines;
    std::size_t most = 0, sent = 0;
    while (sent < 64'000'000 && flood.Send(piece)) {
      sent += piece.size();
      if (lines[0] == '\n') (void)flood.Receive(milliseconds(0));
      most = std::max(most, ResidentBytes());
    }
    EXPECT_LT(sent, 64'000'000U) << lines << " is listened to for ever";
#ifndef __SANITIZE_ADDRESS__  // which keeps what is given free
    EXPECT_LT(most, before + 50'000'000) << lines;
#endif
  }
  const Socket caller = Socket::TcpTo(port);
  caller.Send(Invite("Type: application/sdp", "Length: 0"));
  EXPECT_NE(caller.ReceiveText(milliseconds(8000)), "");
  ASSERT_TRUE(events.Wait("Offered 1"));
  for (int i = 0; i < 40; ++i) idle.push_back(Socket::TcpTo(port));
  for (int i = 0; i < 50; ++i)
    EXPECT_FALSE(idle[static_cast<std::size_t>(i)].Receive(milliseconds(2000))) << "the new ones push it out";
  line->Drop(1, 1);
  EXPECT_NE(caller.ReceiveText(milliseconds(8000)).find("486"), std::string::npos)
      << "the call's own is kept";
}

}  // namespace
}  // namespace orven::test
