// SPDX-License-Identifier: GPL-3.0-or-later
// A call's way through the line, as a caller and the line's owner see it.
#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

using Texts = std::vector<std::string>;

TEST_F(SipLineTest, TellsACallInOrderFromOfferToIdle) {
  OpenLine();
  SipCaller caller(port);
  Ring(caller);
  EXPECT_TRUE(caller.Wait("180"));
  ASSERT_TRUE(events.Wait("Ring 1 2"));
  line->Answer(1, 7);
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Request("ACK");
  ASSERT_TRUE(events.Wait("Connected 1"));
  HangUp(caller);
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith|5551234", "Ring 1 1", "Ring 1 2",
                                 "RequestDone 7 0", "Connected 1", "Disconnected 1", "Idle 1"}));
}

TEST_F(SipLineTest, ACallCancelledBeforeTheAnswerOnlyBecomesIdle) {
  OpenLine();
  SipCaller caller(port);
  Ring(caller);
  caller.Request("CANCEL");
  EXPECT_TRUE(caller.Wait("487"));
  caller.Request("ACK");
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith|5551234", "Ring 1 1", "Idle 1"}));
  line->Answer(1, 3);
  line->Drop(1, 4);
  EXPECT_TRUE(events.Wait("RequestDone 3 " + std::to_string(kTelephonyNoCall)));
  EXPECT_TRUE(events.Wait("RequestDone 4 0"));
  SipCaller next(port);
  Ring(next);
}

TEST_F(SipLineTest, DroppingEndsTheCallOnBothSidesAtEveryMoment) {
  OpenLine();
  SipCaller ringing(port);
  Ring(ringing);
  line->Drop(1, 1);
  EXPECT_TRUE(ringing.Wait("486"));
  ringing.Request("ACK");
  ASSERT_TRUE(events.Wait("Idle 1"));

  SipCaller answered(port);
  Ring(answered);
  line->Answer(2, 2);
  line->Drop(2, 3);
  ASSERT_TRUE(events.Wait("Idle 2"));
  ASSERT_TRUE(answered.TakeAnswer());
  answered.Request("ACK");
  EXPECT_TRUE(answered.TakeBye()) << "the caller would believe in the call for ever";

  SipCaller connected(port);
  Connect(connected);
  line->Answer(3, 5);
  line->Drop(3, 6);
  EXPECT_TRUE(connected.TakeBye());
  ASSERT_TRUE(events.Wait("Idle 3"));
  const Texts all = events.All();
  EXPECT_EQ(std::ranges::count(all, "RequestDone 5 " + std::to_string(kTelephonyAlreadyAnswered)), 1);
  EXPECT_TRUE(std::ranges::none_of(all, [](const auto& event) { return event.starts_with("Disconn"); }));
}

TEST_F(SipLineTest, ASecondCallerIsBusyAndDisturbsNothing) {
  OpenLine();
  SipCaller first(port);
  Connect(first);
  const Texts before = events.All();
  SipCaller second(port);
  second.Invite();
  EXPECT_TRUE(second.Wait("486"));
  second.Request("ACK");
  EXPECT_TRUE(first.HearsMore());
  EXPECT_EQ(events.All(), before);
  HangUp(first);
  SipCaller third(port);
  Ring(third);
}

TEST_F(SipLineTest, AnswersACallThatLeavesTheOfferToUs) {
  OpenLine();
  SipCaller caller(port);
  caller.Request("INVITE");
  ASSERT_TRUE(events.Wait("Ring 1 1"));
  line->Answer(1, 1);
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Request("ACK", "application/sdp", caller.Sdp("8"));
  ASSERT_TRUE(events.Wait("Connected 1"));
  const auto packet = caller.Rtp().Receive(milliseconds(2000));
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->at(1) & 0x7F, 8);
}

TEST_F(SipLineTest, ReInvitesHoldAndResumeAndOnlyASilentPeerIsLost) {
  settings.timers.lost_media = milliseconds(600);
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  for (const auto& [direction, answer] :
       {std::pair{"sendonly", "a=recvonly"}, std::pair{"inactive", "a=inactive"}}) {
    caller.Invite("0", direction);
    const auto held = caller.Wait("200");
    ASSERT_TRUE(held);
    EXPECT_NE(held->find(answer), std::string::npos) << *held;
    caller.Request("ACK");
    while (caller.Rtp().Receive(milliseconds(100))) {
    }
    EXPECT_FALSE(caller.HearsMore(milliseconds(900))) << "sound is sent to a caller on hold";
  }
  caller.Invite("18");
  EXPECT_TRUE(caller.Wait("488"));
  caller.Request("ACK");
  EXPECT_EQ(events.All().back(), "Connected 1") << "refusing an offer ends no call";
  caller.Invite();
  EXPECT_TRUE(caller.TakeAnswer());
  caller.Request("ACK");
  EXPECT_TRUE(caller.HearsMore());
  EXPECT_TRUE(events.Wait("Disconnected 1")) << "no sound after the resumption: the peer is lost";
  EXPECT_TRUE(events.Wait("Idle 1"));
  EXPECT_TRUE(caller.TakeBye());
}

TEST_F(SipLineTest, ACallForgottenOnHoldEnds) {
  settings.timers.lost_held = milliseconds(400);
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  caller.Invite("0", "sendonly");
  ASSERT_TRUE(caller.Wait("200"));
  caller.Request("ACK");
  EXPECT_TRUE(events.Wait("Disconnected 1"));
  EXPECT_TRUE(events.Wait("Idle 1"));
}

TEST_F(SipLineTest, ACallerWhosePortIsGoneOrWhoNeverAcknowledgesIsLost) {
  settings.timers.unreachable = milliseconds(300);
  settings.timers.no_ack = milliseconds(1500);
  OpenLine();
  SipCaller gone(port);
  Connect(gone);
  gone.Rtp().Close();
  ASSERT_TRUE(events.Wait("Idle 1")) << "the refusals went unnoticed";
  EXPECT_TRUE(gone.TakeBye());
  SipCaller silent(port);
  Ring(silent);
  line->Answer(2, 2);
  EXPECT_TRUE(events.Wait("Disconnected 2"));
  EXPECT_TRUE(events.Wait("Idle 2"));
}

TEST_F(SipLineTest, RequestsOutsideOfAnyCallAreAnswered) {
  OpenLine();
  SipCaller caller(port);
  caller.Request("OPTIONS");
  EXPECT_NE(Header(caller.Wait("200").value_or(""), "Allow").find("INVITE"), std::string::npos);
  caller.Request("MESSAGE");
  EXPECT_TRUE(caller.Wait("405"));
  caller.Request("BYE");
  EXPECT_TRUE(caller.Wait("481"));
}

TEST_F(SipLineTest, ClosingHangsUpAtOnceAndTheLineOpensAgain) {
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  std::jthread peer([&] { EXPECT_TRUE(caller.TakeBye()); });
  auto start = std::chrono::steady_clock::now();
  line->Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_EQ(events.All().back(), "Idle 1");
  peer.join();
  ASSERT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  SipCaller silent(port);
  silent.Invite();
  ASSERT_TRUE(events.Wait("Ring 1 2"));
  start = std::chrono::steady_clock::now();
  line->Close();  // nobody acknowledges the refusal
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(SipLineTest, OpeningSaysWhatIsWrongAndCanBeRepeated) {
  line = MakeSipLine(settings);
  for (const auto& make : {Socket::Udp, Socket::TcpListening}) {
    const Socket taken = make(port);
    EXPECT_EQ(line->Open(events), kTelephonyLineInUse);
    EXPECT_NE(line->LastError().find(settings.listen), std::string::npos) << line->LastError();
  }
  EXPECT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  line->Close();
  for (const char* listen : {"here", "127.0.0.1:99999", "203.0.113.7:5999"}) {
    settings.listen = listen;
    line = MakeSipLine(settings);
    EXPECT_EQ(line->Open(events), kTelephonyDeviceFailed) << listen;
    EXPECT_NE(line->LastError().find(listen), std::string::npos) << line->LastError();
  }
}

}  // namespace
}  // namespace orven::test
