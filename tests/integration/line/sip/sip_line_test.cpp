// SPDX-License-Identifier: GPL-3.0-or-later
// A call's way through the line, as a caller and the line's owner see it.
#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

using Texts = std::vector<std::string>;

TEST_F(SipLineTest, TellsACallInOrderFromOfferToIdle) {
  OpenLine();
  SipCaller caller(port);
  caller.Invite();
  EXPECT_TRUE(caller.WaitStatus(180));
  ASSERT_TRUE(events.Wait("Ring 1 2"));
  line->Answer(1, 7);
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Ack();
  ASSERT_TRUE(events.Wait("Connected 1"));
  caller.Request("BYE");
  EXPECT_TRUE(caller.WaitStatus(200));
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith|5551234", "Ring 1 1", "Ring 1 2",
                                 "RequestDone 7 0", "Connected 1", "Disconnected 1", "Idle 1"}));
}

TEST_F(SipLineTest, ACallCancelledBeforeTheAnswerOnlyBecomesIdle) {
  OpenLine();
  SipCaller caller(port);
  caller.Invite();
  ASSERT_TRUE(events.Wait("Ring 1 1"));
  caller.Cancel();
  EXPECT_TRUE(caller.WaitStatus(487));
  caller.Ack();
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith|5551234", "Ring 1 1", "Idle 1"}));
  line->Answer(1, 3);
  line->Drop(1, 4);
  ASSERT_TRUE(events.Wait("RequestDone 4 0"));
  EXPECT_TRUE(events.Wait("RequestDone 3 " + std::to_string(kTelephonyNoCall)));
  SipCaller next(port);
  next.Invite();
  EXPECT_TRUE(events.Wait("Ring 2 1"));
}

TEST_F(SipLineTest, DroppingRejectsARingingCallAndHangsUpAnAnsweredOne) {
  OpenLine();
  SipCaller rejected(port);
  rejected.Invite();
  ASSERT_TRUE(events.Wait("Ring 1 1"));
  line->Drop(1, 1);
  EXPECT_TRUE(rejected.WaitStatus(486));
  rejected.Ack();
  ASSERT_TRUE(events.Wait("Idle 1"));

  SipCaller answered(port);
  answered.Invite();
  ASSERT_TRUE(events.Wait("Ring 2 1"));
  line->Answer(2, 2);
  ASSERT_TRUE(answered.TakeAnswer());
  answered.Ack();
  ASSERT_TRUE(events.Wait("Connected 2"));
  line->Answer(2, 3);
  line->Drop(2, 4);
  const auto bye = answered.WaitRequest("BYE");
  ASSERT_TRUE(bye);
  answered.ReplyOk(*bye);
  ASSERT_TRUE(events.Wait("Idle 2"));
  const Texts all = events.All();
  EXPECT_EQ(
      Texts(all.end() - 3, all.end()),
      (Texts{"RequestDone 3 " + std::to_string(kTelephonyAlreadyAnswered), "RequestDone 4 0", "Idle 2"}));
}

TEST_F(SipLineTest, DroppingRightAfterTheAnswerEndsTheCallOnBothSides) {
  OpenLine();
  SipCaller caller(port);
  caller.Invite();
  ASSERT_TRUE(events.Wait("Ring 1 1"));
  line->Answer(1, 1);
  line->Drop(1, 2);
  ASSERT_TRUE(events.Wait("Idle 1"));
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Ack();
  const auto bye = caller.WaitRequest("BYE");
  ASSERT_TRUE(bye) << "the caller would believe in the call for ever";
  caller.ReplyOk(*bye);
  EXPECT_EQ(events.All(), (Texts{"Offered 1", "CallerId 1 Ann Smith|5551234", "Ring 1 1", "RequestDone 1 0",
                                 "RequestDone 2 0", "Idle 1"}));
}

TEST_F(SipLineTest, ASecondCallerIsBusyAndDisturbsNothing) {
  OpenLine();
  SipCaller first(port);
  Connect(first);
  const Texts before = events.All();
  SipCaller second(port);
  second.Invite();
  EXPECT_TRUE(second.WaitStatus(486));
  second.Ack();
  EXPECT_TRUE(first.Rtp().Receive(milliseconds(1000)));
  EXPECT_EQ(events.All(), before);
  first.Request("BYE");
  ASSERT_TRUE(events.Wait("Idle 1"));
  SipCaller third(port);
  third.Invite();
  EXPECT_TRUE(events.Wait("Ring 2 1"));
}

TEST_F(SipLineTest, LostAcknowledgementsCostNoMessageWhenSoundComes) {
  OpenLine();
  SipCaller caller(port);
  caller.Invite();
  ASSERT_TRUE(events.Wait("Ring 1 1"));
  line->Answer(1, 1);
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Rtp().SendTo(caller.LineRtpPort(), RtpPacketBytes(0, true, 1, 160, 9, NoiseBytes(1, 1)));
  EXPECT_TRUE(events.Wait("Connected 1"));
}

TEST_F(SipLineTest, AnAnswerThatIsNeverAcknowledgedEndsTheCall) {
  settings.timers.no_ack = milliseconds(700);
  OpenLine();
  SipCaller caller(port);
  caller.Invite();
  ASSERT_TRUE(events.Wait("Ring 1 1"));
  line->Answer(1, 1);
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_TRUE(events.Wait("Disconnected 1"));
  SipCaller next(port);
  next.Invite();
  EXPECT_TRUE(events.Wait("Ring 2 1"));
}

TEST_F(SipLineTest, AnswersACallThatLeavesTheOfferToUs) {
  OpenLine();
  SipCaller caller(port);
  caller.Invite(std::nullopt);
  ASSERT_TRUE(events.Wait("Ring 1 1"));
  line->Answer(1, 1);
  ASSERT_TRUE(caller.TakeAnswer());
  caller.Ack(caller.Sdp({.formats = "8"}));
  ASSERT_TRUE(events.Wait("Connected 1"));
  const auto packet = caller.Rtp().Receive(milliseconds(2000));
  ASSERT_TRUE(packet);
  EXPECT_EQ(packet->bytes[1] & 0x7F, 8);
}

TEST_F(SipLineTest, HoldAndResumeAreAnsweredAndAHeldPeerIsNotLost) {
  settings.timers.lost_media = milliseconds(600);
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  for (const auto& [direction, answer] :
       {std::pair{"sendonly", "a=recvonly"}, std::pair{"inactive", "a=inactive"}}) {
    caller.Invite(Offer{.direction = direction});
    const auto held = caller.WaitStatus(200);
    ASSERT_TRUE(held);
    EXPECT_NE(held->Body().find(answer), std::string::npos) << held->Body();
    caller.Ack();
    while (caller.Rtp().Receive(milliseconds(100))) {
    }
    EXPECT_FALSE(caller.Rtp().Receive(milliseconds(900))) << "sound is sent to a caller on hold";
  }
  EXPECT_EQ(events.All().back(), "Connected 1");
  caller.Invite();
  const auto resumed = caller.WaitStatus(200);
  ASSERT_TRUE(resumed);
  EXPECT_NE(resumed->Body().find("a=sendrecv"), std::string::npos);
  caller.Ack();
  EXPECT_TRUE(caller.Rtp().Receive(milliseconds(2000)));
  EXPECT_TRUE(events.Wait("Idle 1")) << "no sound after the resumption: the peer is lost";
  EXPECT_TRUE(caller.WaitRequest("BYE"));
}

TEST_F(SipLineTest, ARefusedReInviteLeavesTheCallAsItWas) {
  OpenLine();
  SipCaller caller(port);
  Connect(caller);
  caller.Invite(Offer{.formats = "18"});
  EXPECT_TRUE(caller.WaitStatus(488));
  caller.Ack();
  while (caller.Rtp().Receive(milliseconds(1))) {
  }
  EXPECT_TRUE(caller.Rtp().Receive(milliseconds(1000)));
  caller.Request("BYE");
  EXPECT_TRUE(events.Wait("Idle 1"));
}

TEST_F(SipLineTest, OptionsAreAnsweredAndOtherMethodsRefused) {
  OpenLine();
  SipCaller caller(port);
  caller.Request("OPTIONS");
  const auto options = caller.WaitStatus(200);
  ASSERT_TRUE(options);
  EXPECT_NE(options->Header("Allow").find("INVITE"), std::string::npos);
  caller.Request("MESSAGE", "", "hello");
  EXPECT_TRUE(caller.WaitStatus(405));
  EXPECT_TRUE(events.All().empty());
}

TEST_F(SipLineTest, TakesCallsOverTcp) {
  OpenLine();
  SipCaller caller(port, SipCaller::Over::kTcp);
  Connect(caller);
  EXPECT_TRUE(caller.Rtp().Receive(milliseconds(2000)));
  line->Drop(1, 2);
  const auto bye = caller.WaitRequest("BYE");
  ASSERT_TRUE(bye);
  caller.ReplyOk(*bye);
  EXPECT_TRUE(events.Wait("Idle 1"));
}

TEST_F(SipLineTest, ClosingDuringACallHangsUpAndTheLineOpensAgain) {
  OpenLine();
  {
    SipCaller caller(port);
    Connect(caller);
    std::thread peer([&] {
      if (const auto bye = caller.WaitRequest("BYE")) caller.ReplyOk(*bye);
    });
    const auto start = std::chrono::steady_clock::now();
    line->Close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    peer.join();
  }
  EXPECT_EQ(events.All().back(), "Idle 1");
  ASSERT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  SipCaller silent(port);
  silent.Invite();
  ASSERT_TRUE(events.Wait("Ring 1 2"));
  const auto start = std::chrono::steady_clock::now();
  line->Close();  // nobody acknowledges the refusal
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(SipLineTest, OpeningSaysWhatIsWrong) {
  const Socket taken = Socket::Udp(port);
  line = MakeSipLine(settings);
  EXPECT_EQ(line->Open(events), kTelephonyLineInUse);
  EXPECT_NE(line->LastError().find(settings.listen), std::string::npos) << line->LastError();
  EXPECT_NE(line->LastError().find("in use"), std::string::npos) << line->LastError();
  for (const char* listen : {"here", "127.0.0.1:99999", "203.0.113.7:5999"}) {
    settings.listen = listen;
    line = MakeSipLine(settings);
    EXPECT_EQ(line->Open(events), kTelephonyDeviceFailed) << listen;
    EXPECT_NE(line->LastError().find(listen), std::string::npos) << line->LastError();
  }
}

TEST_F(SipLineTest, AFailedOpenCanBeRepeatedAndTwoLinesWorkSideBySide) {
  auto taken = std::make_unique<Socket>(Socket::TcpListening(port));
  line = MakeSipLine(settings);
  EXPECT_EQ(line->Open(events), kTelephonyLineInUse);
  taken.reset();
  ASSERT_EQ(line->Open(events), kTelephonyOk) << line->LastError();

  RecordedEvents other_events;
  SipLineSettings other = settings;
  const std::uint16_t other_port = FreePort();
  other.listen = "0.0.0.0:" + std::to_string(other_port);
  const auto other_line = MakeSipLine(other);
  ASSERT_EQ(other_line->Open(other_events), kTelephonyOk) << other_line->LastError();
  SipCaller here(port);
  SipCaller there(other_port);
  here.Invite();
  there.Invite();
  const auto ringing = there.WaitStatus(180);
  ASSERT_TRUE(ringing);
  EXPECT_NE(ringing->Header("Contact").find("@127.0.0.1:"), std::string::npos) << ringing->text;
  EXPECT_TRUE(events.Wait("Ring 1 1"));
  other_line->Answer(1, 1);
  ASSERT_TRUE(there.TakeAnswer());
  there.Ack();
  EXPECT_TRUE(other_events.Wait("Connected 1"));
  EXPECT_TRUE(there.Rtp().Receive(milliseconds(2000)));
  other_line->Close();
  EXPECT_EQ(other_events.All().back(), "Idle 1");
}

TEST_F(SipLineTest, CapabilitiesNameTheLine) {
  line = MakeSipLine(settings);
  const DeviceCapabilities& capabilities = line->Capabilities();
  EXPECT_EQ(capabilities.device_name, "Desk");
  EXPECT_TRUE(capabilities.caller_id && capabilities.monitor_digits && capabilities.automated_voice);
}

}  // namespace
}  // namespace orven::test
