// SPDX-License-Identifier: GPL-3.0-or-later
// What no caller should send. Whatever comes, the line lives and takes the next call.
#include <fstream>
#include <random>

#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;

const std::string kInvite =
    "INVITE sip:line@127.0.0.1 SIP/2.0\r\n"
    "Via: SIP/2.0/UDP 127.0.0.1:9;branch=z9hG4bK-NUMBER;rport\r\n"
    "From: \"Eve\" <sip:eve@127.0.0.1>;tag=1\r\n"
    "To: <sip:line@127.0.0.1>\r\n"
    "Call-ID: hostile-NUMBER\r\n"
    "CSeq: 1 INVITE\r\n"
    "Contact: <sip:eve@127.0.0.1:9>\r\n"
    "Content-Type: application/sdp\r\n\r\n"
    "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN IP4 127.0.0.1\r\nt=0 0\r\nm=audio 4000 RTP/AVP 0\r\n";

/// The INVITE of a call of its own, with `from` replaced by `to`.
std::string Invite(const std::string& from = "", const std::string& to = "") {
  static int number = 1000;
  std::string text = kInvite;
  text.replace(text.find(from), from.size(), to);
  ++number;
  for (std::size_t at = 0; (at = text.find("NUMBER")) != text.npos;)
    text.replace(at, 6, std::to_string(number));
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

  /// Drops the calls that have come, one after the other, and then has a whole one.
  void ExpectACallWorks() {
    while (events.Wait("Ring " + std::to_string(++call) + " 1", milliseconds(50)))
      Play("drop 1,Idle " + std::to_string(call));
    const std::string next = std::to_string(call);
    Play("caller last,> INVITE,Ring " + next + " 1,answer 1,< 200,> ACK,Connected " + next +
         ",hears,> BYE,< 200");
  }
};

TEST_F(SipHostileTest, InvitesAreTakenWhereTheyCanBeAndElseRefused) {
  const std::string length = "\r\nContent-Length: ", multipart = "multipart/mixed;boundary=b\r\n\r\n--b\r\n";
  const struct {
    std::string from;
    std::string to;
    std::string status;
  } kRows[] = {
      {"", "", "180"},
      {"From: \"Eve\" <sip:eve@127.0.0.1>;tag=1\r\n", "", "400"},
      {"To: <sip:line@127.0.0.1>\r\n", "", "400"},
      {"Call-ID: hostile-NUMBER\r\n", "", "400"},
      {"CSeq: 1 INVITE\r\n", "", "400"},
      {"Contact: <sip:eve@127.0.0.1:9>\r\n", "", "400"},
      {"<sip:eve@127.0.0.1:9>", "<nothing>", "400"},
      {"1 INVITE", "1 BYE", "400"},
      {";tag=1", "", "400"},
      {"\r\n\r\n", length + "99999\r\n\r\n", "400"},
      {"\r\n\r\n", length + "-1\r\n\r\n", "400"},
      {"Contact:", "X-Long: " + std::string(9'000, 'x') + "\r\nContact:", "180"},
      {"Contact:", "Require: 100rel\r\nContact:", "420"},
      {"application/sdp", "text/plain", "415"},
      {"application/sdp", multipart + "content-type:\r\n application/sdp", "180"},
      {"application/sdp", multipart + "Content-Type: text/plain", "415"},
      {"RTP/AVP 0", "RTP/AVP 18", "488"},
  };
  for (const auto& row : kRows) {
    const Socket eve = Socket::Udp();
    eve.SendTo(port, Invite(row.from, row.to));
    const std::string reply = eve.ReceiveText(milliseconds(2000));
    EXPECT_TRUE(reply.starts_with("SIP/2.0 " + row.status)) << row.from << " as " << row.to << ": " << reply;
    if (row.status[0] == '1')
      Play("Ring " + std::to_string(call + 1) + " 1,drop 1,Idle " + std::to_string(call + 1));
  }
  ExpectACallWorks();
}

TEST_F(SipHostileTest, AFloodOfBrokenMessagesEndsInAFreeLine) {
  std::mt19937 random(7);
  const Socket attacker = Socket::Udp();
  for (int i = 0; i < 3000; ++i) {
    std::string text = Invite();
    if (i % 3 == 0) text.resize(1 + random() % text.size());
    // With few bytes replaced some are still good enough for a call.
    for (int flips = 0; flips < (i % 3 == 1 ? 300 : 3); ++flips)
      text[random() % text.size()] = static_cast<char>(random());
    attacker.SendTo(port, text);
  }
  // When this is answered all has been read; the flood may push the question out.
  bool answered = false;
  for (int attempt = 0; attempt < 20 && !answered; ++attempt) {
    caller->Request("OPTIONS");
    answered = !caller->Take("200", milliseconds(500)).empty();
  }
  EXPECT_TRUE(answered);
  ExpectACallWorks();
}

TEST_F(SipHostileTest, BrokenTcpStreamsAreClosedCostNoMemoryAndOthersAreServed) {
  std::vector<Socket> idle;
  idle.reserve(90);
  while (idle.size() < 50) idle.push_back(Socket::TcpTo(port));
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
  const Socket by_tcp = Socket::TcpTo(port);
  by_tcp.Send(Invite("Type: application/sdp", "Length: 0"));
  EXPECT_NE(by_tcp.ReceiveText(milliseconds(8000)), "");
  Play("Ring 1 1");
  while (idle.size() < 90) idle.push_back(Socket::TcpTo(port));
  for (std::size_t i = 0; i < 50; ++i)
    EXPECT_FALSE(idle[i].Receive(milliseconds(2000))) << "an old idle one stays";
  Play("drop 1");
  EXPECT_NE(by_tcp.ReceiveText(milliseconds(8000)).find("486"), std::string::npos)
      << "the call's own is closed";
}

}  // namespace
}  // namespace orven::test
