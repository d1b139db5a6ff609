// SPDX-License-Identifier: GPL-3.0-or-later
// What no caller should send. Whatever comes, the line lives and takes the next call.
#include <random>

#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

constexpr std::string_view kSoundInvite =
    "INVITE sip:line@127.0.0.1 SIP/2.0\r\n"
    "Via: SIP/2.0/UDP 127.0.0.1:9;branch=z9hG4bKx\r\n"
    "From: \"Eve\" <sip:eve@127.0.0.1>;tag=1\r\n"
    "To: <sip:line@127.0.0.1>\r\n"
    "Call-ID: hostile\r\n"
    "CSeq: 1 INVITE\r\n"
    "Contact: <sip:eve@127.0.0.1:9>\r\n"
    "Content-Type: application/sdp\r\n"
    "Content-Length: 99\r\n\r\n"
    "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN IP4 127.0.0.1\r\nt=0 0\r\nm=audio 4000 RTP/AVP "
    "0\r\na=sendrecv\r\n";

std::string Without(std::string text, const std::string& header) {
  const auto begin = text.find("\r\n" + header + ":") + 2;
  return text.erase(begin, text.find("\r\n", begin) + 2 - begin);
}

std::string With(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

class SipHostileTest : public SipLineTest {
 protected:
  void SetUp() override { OpenLine(); }

  /// By the answer to this all earlier messages have been read. A flood may wash the question away.
  static void ExpectOptionsAnswered(SipCaller& caller) {
    bool answered = false;
    for (int attempt = 0; attempt < 20 && !answered; ++attempt) {
      caller.Request("OPTIONS");
      answered = caller.WaitStatus(200, milliseconds(500)).has_value();
    }
    EXPECT_TRUE(answered);
  }

  /// The line still answers, and what came before was no call.
  void ExpectTheLineLives() {
    SipCaller caller(port);
    caller.Invite();
    ASSERT_TRUE(events.Wait("Ring 1 1"));
    EXPECT_EQ(events.All().front(), "Offered 1");
    line->Answer(1, 1);
    ASSERT_TRUE(caller.TakeAnswer());
    caller.Ack();
    ASSERT_TRUE(events.Wait("Connected 1"));
    EXPECT_TRUE(caller.Rtp().Receive(milliseconds(2000)));
    caller.Request("BYE");
    EXPECT_TRUE(events.Wait("Idle 1"));
  }
};

TEST_F(SipHostileTest, IncompleteInvitesAreNoCalls) {
  const std::string sound(kSoundInvite);
  SipCaller caller(port);
  caller.SendRaw(Without(sound, "Via"));
  for (const char* header : {"From", "To", "Call-ID", "CSeq", "Contact"}) {
    caller.SendRaw(With(Without(sound, header), "127.0.0.1:9;", "127.0.0.1:9;rport;"));
    EXPECT_TRUE(caller.WaitStatus(400, milliseconds(2000))) << "without " << header;
  }
  for (const auto& [from, to] : {std::pair{"1 INVITE", "1 BYE"}, std::pair{";tag=1", ""},
                                 std::pair{"Content-Length: 99", "Content-Length: 99999"},
                                 std::pair{"Content-Length: 99", "Content-Length: -1"},
                                 std::pair{"<sip:eve@127.0.0.1:9>", "<nothing>"}}) {
    caller.SendRaw(With(With(sound, from, to), "127.0.0.1:9", "127.0.0.1:9;rport"));
    EXPECT_TRUE(caller.WaitStatus(400, milliseconds(2000))) << from << " as " << to;
  }
  ExpectTheLineLives();
}

TEST_F(SipHostileTest, OffersThatCannotBeTakenAreRefused) {
  for (const Offer& offer : {Offer{.formats = "18 3"}, Offer{.address = "::1", .address_type = "IP6"},
                             Offer{.address = "example.org"}, Offer{.formats = "101"},
                             Offer{.formats = "0", .address = "127.0.0.1\r\nm=nonsense"}}) {
    SipCaller caller(port);
    caller.Invite(offer);
    EXPECT_TRUE(caller.WaitStatus(488, milliseconds(2000))) << offer.formats << " at " << offer.address;
    caller.Ack();
  }
  SipCaller caller(port);
  caller.Request("INVITE", "Content-Type: text/plain\r\n", "hello");
  EXPECT_TRUE(caller.WaitStatus(415));
  SipCaller demanding(port);
  demanding.Invite(Offer{}, "Require: 100rel, nothing\r\n");
  const auto refused = demanding.WaitStatus(420);
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->Header("Unsupported"), "100rel, nothing");
  ExpectTheLineLives();
}

TEST_F(SipHostileTest, RequestsOutsideOfAnyCallAreAnswered) {
  SipCaller caller(port);
  for (const char* method : {"BYE", "INFO"}) {
    caller.Request(method);
    EXPECT_TRUE(caller.WaitStatus(481)) << method;
  }
  caller.Request("CANCEL");
  EXPECT_TRUE(caller.WaitStatus(481));
  caller.Ack();
  ExpectTheLineLives();
}

TEST_F(SipHostileTest, AFloodOfBrokenMessagesChangesNothing) {
  std::mt19937 random(7);
  const std::string sound(kSoundInvite);
  SipCaller caller(port);
  const auto any = [&](std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random);
  };
  for (int i = 0; i < 3000; ++i) {
    std::string text = sound;
    switch (i % 4) {
      case 0:  // cut off before the end of its headers
        text.resize(any(text.find("\r\n\r\n")));
        break;
      case 1:  // noise
        for (char& c : text) c = static_cast<char>(random());
        text.resize(any(1400));
        break;
      case 2:  // a header line with no end of it
        text.insert(text.find("\r\n") + 2, std::string(any(3000), "<>\";:@%\\,"[any(9)]));
        text = Without(text, "Contact");
        break;
      default:  // its parts swapped
        text = text.substr(any(text.size())) + text.substr(0, any(text.size()));
    }
    caller.SendRaw(text);
  }
  ExpectOptionsAnswered(caller);
  EXPECT_TRUE(events.All().empty());
  ExpectTheLineLives();
}

TEST_F(SipHostileTest, BrokenCallsFloodTheLineAndItIsFreeAgainAfterEach) {
  std::mt19937 random(11);
  const std::string text(kSoundInvite);
  Socket attacker = Socket::Udp();
  int mutations = 0;
  for (int i = 0; i < 1500; ++i) {
    std::string broken = With(text, "Call-ID: hostile", "Call-ID: hostile" + std::to_string(i));
    broken = With(broken, "z9hG4bKx", "z9hG4bK" + std::to_string(i));
    for (int flips = 0; flips < 3; ++flips) {
      broken[std::uniform_int_distribution<std::size_t>(0, broken.size() - 1)(random)] =
          static_cast<char>(random());
    }
    attacker.SendTo(port, broken);
    ++mutations;
  }
  SipCaller caller(port);
  ExpectOptionsAnswered(caller);
  // Those that were still good enough for a call ring; refuse them until the line is quiet.
  for (CallNumber call = 1; events.Wait("Offered " + std::to_string(call), milliseconds(50)); ++call) {
    line->Drop(call, static_cast<std::int32_t>(call));
    ASSERT_TRUE(events.Wait("Idle " + std::to_string(call)));
  }
  const auto before = events.All().size();
  caller.Invite();
  EXPECT_TRUE(caller.WaitStatus(180));
  EXPECT_GT(events.All().size(), before);
  EXPECT_EQ(mutations, 1500);
}

TEST_F(SipHostileTest, BrokenTcpStreamsAreClosedAndOthersServed) {
  std::vector<Socket> idle;
  idle.reserve(50);
  for (int i = 0; i < 50; ++i) idle.push_back(Socket::TcpTo(port));
  Socket noise = Socket::TcpTo(port);
  noise.Send(std::string(200'000, 'x'));
  Socket endless = Socket::TcpTo(port);
  endless.Send("OPTIONS sip:a SIP/2.0\r\nContent-Length: 4000000000\r\n\r\n" + std::string(100'000, 'y'));
  SipCaller caller(port, SipCaller::Over::kTcp);
  caller.Request("OPTIONS");
  EXPECT_TRUE(caller.WaitStatus(200));
  ExpectTheLineLives();
}

TEST_F(SipHostileTest, BrokenSoundAndMessagesInACallDoNotEndIt) {
  SipCaller caller(port);
  Connect(caller);
  std::mt19937 random(3);
  for (int i = 0; i < 2000; ++i) {
    std::vector<std::uint8_t> bytes(random() % 300);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    if (bytes.size() > 2 && i % 2 == 0) {
      bytes[0] = static_cast<std::uint8_t>(0x80 | (bytes[0] & 0x3F));
      bytes[1] = i % 4 == 0 ? 0 : 101;
    }
    caller.Rtp().SendTo(caller.LineRtpPort(), bytes);
  }
  caller.Request("INVITE", "Content-Type: application/sdp\r\n", "v=0\r\nm=");
  EXPECT_TRUE(caller.WaitStatus(488));
  caller.Ack();
  caller.Request("OPTIONS");
  EXPECT_TRUE(caller.WaitStatus(200));
  EXPECT_EQ(events.All().back(), "Connected 1");
  caller.Request("BYE");
  EXPECT_TRUE(events.Wait("Idle 1"));
}

}  // namespace
}  // namespace orven::test
