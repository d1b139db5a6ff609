// SPDX-License-Identifier: GPL-3.0-or-later
// A line with an account: it keeps itself registered, whatever becomes of the server.
#include "integration/line/sip/registrar.h"
#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

class SipRegistrationTest : public SipLineTest {
 protected:
  void Start(SipCaller::Over over = SipCaller::Over::kUdp, const std::string& password = "secret") {
    registrar = std::make_unique<Registrar>(over);
    settings.account = "sip:100@127.0.0.1:" + std::to_string(registrar->Port());
    settings.transport = over == SipCaller::Over::kUdp ? "udp" : "tcp";
    settings.password = password;
    settings.timers.registration_retry_first = milliseconds(200);
    settings.timers.registration_retry_longest = milliseconds(400);
  }

  std::unique_ptr<Registrar> registrar;
};

TEST_F(SipRegistrationTest, RegistersRefreshesAndLeavesWhenClosed) {
  Start();
  registrar->SetLife(2);
  OpenLine();
  const std::string contact = registrar->NextRegistration();
  EXPECT_NE(contact.find("<sip:100@127.0.0.1:" + std::to_string(port) + ">"), std::string::npos) << contact;
  EXPECT_FALSE(registrar->NextRegistration().empty()) << "the registration was not refreshed";
  SipCaller caller(port);
  caller.Invite();
  EXPECT_TRUE(events.Wait("Ring 1 1"));
  line->Close();
  std::string last;
  for (std::string next = "-"; !next.empty(); next = registrar->NextRegistration(milliseconds(300)))
    last = next;
  EXPECT_NE(last.find("expires=0"), std::string::npos) << last;
  EXPECT_EQ(registrar->WrongAnswers(), 0);
}

TEST_F(SipRegistrationTest, ComesBackAfterTheServerRefusedOrWasSilent) {
  Start();
  registrar->SetMood(Registrar::Mood::kRefusing);
  registrar->SetLife(1);
  OpenLine();
  while (registrar->Requests() < 3) std::this_thread::yield();
  registrar->SetMood(Registrar::Mood::kServing);
  EXPECT_FALSE(registrar->NextRegistration().empty());
  registrar->SetMood(Registrar::Mood::kSilent);
  const int before = registrar->Requests();
  while (registrar->Requests() < before + 2) std::this_thread::yield();
  registrar->SetMood(Registrar::Mood::kServing);
  EXPECT_FALSE(registrar->NextRegistration().empty());
}

TEST_F(SipRegistrationTest, ComesBackWhenTheConnectionBreaks) {
  Start(SipCaller::Over::kTcp);
  OpenLine();
  const std::string contact = registrar->NextRegistration();
  EXPECT_NE(contact.find(";transport=tcp"), std::string::npos) << contact;
  registrar->Disconnect();
  EXPECT_FALSE(registrar->NextRegistration().empty()) << "calls would be lost until the next refresh";
}

TEST_F(SipRegistrationTest, AWrongPasswordIsNotTriedWithoutEnd) {
  Start(SipCaller::Over::kUdp, "wrong");
  settings.timers.registration_retry_first = settings.timers.registration_retry_longest =
      std::chrono::minutes(1);
  OpenLine();
  EXPECT_EQ(registrar->NextRegistration(milliseconds(1000)), "");
  EXPECT_GE(registrar->WrongAnswers(), 1);
  EXPECT_LE(registrar->Requests(), 6);
  SipCaller caller(port);
  caller.Invite();
  EXPECT_TRUE(events.Wait("Ring 1 1")) << "direct calls need no account";
}

TEST_F(SipRegistrationTest, AnAccountThatIsNoneFailsTheOpening) {
  settings.account = "100 at home";
  line = MakeSipLine(settings);
  EXPECT_EQ(line->Open(events), kTelephonyDeviceFailed);
  EXPECT_NE(line->LastError().find("100 at home"), std::string::npos);
  settings.account = "sip:100@127.0.0.1";
  settings.transport = "pigeon";
  line = MakeSipLine(settings);
  EXPECT_EQ(line->Open(events), kTelephonyDeviceFailed);
  EXPECT_NE(line->LastError().find("pigeon"), std::string::npos);
}

}  // namespace
}  // namespace orven::test
