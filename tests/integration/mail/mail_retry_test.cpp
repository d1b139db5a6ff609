// SPDX-License-Identifier: GPL-3.0-or-later
#include <set>

#include "adapters/mail/smtp_tests.h"
#include "integration/mail/mail_test.h"

namespace orven::testing {
namespace {

TEST_F(MailTest, TwentyMailsToAServerThatIsAwayForAnHourArriveOnceAndInOrderAlsoAcrossARestart) {
  const TestServer server("CONNECT away");
  PutFile(server.folder_ / "away", "");
  for (int number = 1; number <= 20; ++number) {
    Send(server.Address(), std::to_string(number));
    Pass(std::chrono::minutes(3));
    if (number != 10) continue;
    Start();
    mail_->Resume();
    Send(server.Address(), "7");  // the run before was killed after this mail and did not know
  }
  EXPECT_EQ(mail_->State().waiting, 20U);
  EXPECT_THAT(mail_->State().reason.English(), HasSubstr(server.Address() + " was lost"));
  EXPECT_THAT(told_, ::testing::Each(StartsWith("error me@example.org: ")));
  std::filesystem::remove(server.folder_ / "away");
  Pass(std::chrono::hours(4));
  std::set<std::string> ids;
  for (int number = 1; number <= 20; ++number) {
    auto mail = server.Mail(number);
    EXPECT_EQ(mail["Subject"], std::to_string(number));
    ids.insert(mail["Message-ID"]);
  }
  EXPECT_TRUE(ids.size() == 20 && !server.Has("21.fields"));
  EXPECT_EQ(std::ranges::count(told_, "done me@example.org"), 20);
  EXPECT_TRUE(std::filesystem::is_empty(outbox_));
}

TEST_F(MailTest, IsTriedWithGrowingPausesForThreeDaysAndThenKept) {
  const TestServer server("CONNECT away");
  PutFile(server.folder_ / "away", "");
  Send(server.Address());
  std::vector<int> tries;
  for (int minute = 0; mail_->State().failed == 0 && minute < 5000; ++minute) {
    ASSERT_TRUE(loop_.RunUntil([this] { return !mail_->State().sending; }));
    if (tries.size() < told_.size()) tries.push_back(minute);
    Pass(std::chrono::minutes(1));
  }
  EXPECT_EQ(tries,
            (std::vector<int>{0,    1,    3,    7,    15,   31,   63,   127,  255,  495,  735,  975, 1215,
                              1455, 1695, 1935, 2175, 2415, 2655, 2895, 3135, 3375, 3615, 3855, 4095}));
  EXPECT_EQ(told_.size(), 26U);
  EXPECT_THAT(told_.back(), HasSubstr("; after three days it is not tried again but kept as " + outbox_));
  EXPECT_EQ(ContentOf(outbox_ + "/000000001.failed").find("ORVEN mail 2\n"), 0U);

  Send(server.Address());
  Pass(std::chrono::minutes(1));
  loop_.time.TurnClock(std::chrono::hours(240));
  Pass(std::chrono::minutes(1));
  EXPECT_EQ(mail_->State().waiting, 1U) << "a clock that is set forward ends nothing";
  loop_.time.TurnClock(std::chrono::hours(-480));
  const auto before = told_.size();
  Pass(std::chrono::minutes(1));
  EXPECT_GT(told_.size(), before) << "a clock that is set back delays nothing";
}

TEST_F(MailTest, ATestSaysWhatWorksOrWhatIsWrongAndTheRemedy) {
  MailLimits limits = limits_;
  MailTestResult result;
  const auto tested = [&](bool mail, const MailAccount& account) {
    result = {};
    const auto done = [&](const MailTestResult& told) { result = told; };
    SmtpTests tests(
        loop_, [](const Words& words) { return words.English(); }, limits);
    const auto running = mail ? tests.SendTestMail(account, "desk@example.org", "me@example.org", done)
                              : tests.TryServer(account, done);
    EXPECT_TRUE(loop_.RunUntil([&] { return !result.text.Empty(); }));
    return (result.passed ? "+" : "-") + result.text.English();
  };
  const TestServer refusing("RCPT '550 not to you'"), silent("EHLO stall"), server("starttls");
  const MailAccount trusted{server.Address(), "desk", "s3cret+\u00FC", true};
  EXPECT_EQ(tested(true, {.server = "mail:x"}).find("-That does not work: \"mail:x\" is not a mail server"),
            0U);
  EXPECT_THAT(tested(true, {.server = refusing.Address()}),
              HasSubstr("550 not to you (RCPT failed: 550). Check the rec"));
  EXPECT_EQ(tested(true, {.server = refusing.Address()}),
            "+" + refusing.Address() +
                " has accepted the mail to me@example.org. If it does not arrive within some "
                "minutes, look among the unwanted mails.");
  EXPECT_EQ(refusing.Mail(1)["Subject"], "Test mail from ORVEN");
  EXPECT_EQ(tested(false, {.server = refusing.Address()}), "+" + refusing.Address() + " answers.");
  EXPECT_THAT(tested(false, trusted), HasSubstr("is not trusted"));
  limits.ca_file = server.folder_ / "cert.pem";
  EXPECT_THAT(tested(false, trusted), HasSubstr("+" + server.Address() + " answers and accepts the login."));
  EXPECT_THAT(tested(false, {server.Address(), "desk", "wrong", true}),
              HasSubstr(". Check user and password."));

  auto running = SmtpTests(loop_, {}).TryServer({.server = silent.Address()},
                                                [](const auto&) { FAIL() << "it was cancelled"; });
  ASSERT_TRUE(Eventually([&] { return silent.Has("stalled"); }));
  running.reset();
  loop_.Run();
  EXPECT_FALSE(refusing.Has("2.fields"));
}

}  // namespace
}  // namespace orven::testing
