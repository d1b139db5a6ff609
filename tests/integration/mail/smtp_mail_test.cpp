// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <ctime>
#include <random>

#include "adapters/mail/mail_settings.h"
#include "adapters/mail/mail_text.h"
#include "integration/mail/mail_fixture.h"
#include "integration/mail/unreachable.h"

namespace orven::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

/// Bytes like a recording's, with what SMTP treats specially among them.
std::string Recording() {
  std::string bytes = "RIFF\r\n.\r\n..\r\n";
  std::minstd_rand random(1);
  while (bytes.size() < 300'000) bytes += static_cast<char>(random() & 0xFFU);
  return bytes;
}

TEST_F(MailTest, ArrivesPartByPart) {
  const TestServer server("real");
  const std::string file = folder_ / "Anruf von Zo\u00EB \"mobil\" 2026-11-21 08-53-31 Nummer 0301234567.wav";
  test::PutFile(file, Recording());
  Send(server.Address(), "New Call From Zo\u00EB - 0301234567", "me@example.org", file);
  EXPECT_EQ(Told(), "done me@example.org");
  auto mail = server.Mail(1);
  EXPECT_EQ(mail["From"], "ORVEN <desk@example.org>");
  EXPECT_EQ(mail["To"], "me@example.org");
  EXPECT_EQ(mail["Subject"], "New Call From Zo\u00EB - 0301234567");
  EXPECT_EQ(mail["Body"], mail["Subject"]);
  EXPECT_EQ(mail["Parts"], "text/plain audio/x-wav");
  EXPECT_EQ(mail["Charset"], "utf-8");
  EXPECT_EQ(mail["File"], std::filesystem::path(file).filename().string());
  EXPECT_TRUE(mail["Content"] == Recording());
  EXPECT_EQ(mail["MIME-Version"], "1.0");
  EXPECT_THAT(mail["Message-ID"], AllOf(StartsWith("<"), HasSubstr("@example.org>")));
  EXPECT_NEAR(std::stod(mail["Seconds"]), static_cast<double>(std::time(nullptr)), 120);
  EXPECT_EQ(mail["Defects"], "0");
  EXPECT_GT(progress_.first, 400'000);
  EXPECT_EQ(progress_.first, progress_.second);
  EXPECT_THAT(Waiting(), IsEmpty());
}

TEST_F(MailTest, SendsInOrderWithoutWhatIsNoFile) {
  const TestServer server("real");
  Send("smtp://" + server.Address(), "first", "a@example.org", folder_ / "");
  Send(" SMTP://" + server.Address() + "/", "second", "b@example.org", folder_ / "none.wav");
  Send(server.Address(), "third", "c@example.org");
  for (const char* recipient : {"a", "b", "c"})
    EXPECT_EQ(Told(), std::string("done ") + recipient + "@example.org");
  auto first = server.Mail(1);
  auto third = server.Mail(3);
  EXPECT_EQ(first["Parts"], "text/plain");
  EXPECT_EQ(first["Subject"] + server.Mail(2)["Subject"] + third["Subject"], "firstsecondthird");
  EXPECT_NE(first["Message-ID"], third["Message-ID"]);
}

TEST_F(MailTest, SubjectsOfStrangersStayInTheirField) {
  const TestServer server("real");
  const std::string bell(2000, 'x');
  std::string umlauts;
  for (int i = 0; i < 1000; ++i) umlauts += "\u00E4";
  const std::vector<std::pair<std::string, std::string>> subjects{
      {"a\r\nBcc: you@example.org\r\n\r\nbody", "a  Bcc: you@example.org    body"},
      {bell, bell},
      {umlauts, umlauts},
      {"=?UTF-8?B?QQ==?=", "=?UTF-8?B?QQ==?="},
      {"\u65E5\u672C \U0001F4DE\x01!", "\u65E5\u672C \U0001F4DE !"},
      {"broken \xC3", "broken \uFFFD"},
      {"", ""},
  };
  int number = 0;
  for (const auto& [asked, expected] : subjects) {
    Send(server.Address(), asked);
    ASSERT_EQ(Told(), "done me@example.org");
    auto mail = server.Mail(++number);
    EXPECT_EQ(mail["Subject"], expected);
    EXPECT_EQ(mail["Body"], expected);
    EXPECT_EQ(mail["Bcc"], "None");
    EXPECT_EQ(mail["Defects"], "0");
    EXPECT_LE(std::stoi(mail["Longest"]), 80);
  }
  mail_->Send(server.Address(), "desk@example.org", "B\u00FCro \"1\"\r\nBcc: x@y.zz", "me@example.org", "s",
              "");
  EXPECT_EQ(Told(), "done me@example.org");
  EXPECT_THAT(server.Mail(++number)["From"], AllOf(HasSubstr("B\u00FCro"), HasSubstr("<desk@example.org>")));
}

class EncryptedMail : public MailTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(EncryptedMail, IsSentOnlyWithTheRightCertificateAndPassword) {
  const TestServer server(std::string("real ") + GetParam());
  const std::string address = (std::string(GetParam()) == "smtps" ? "smtps://" : "") + server.Address();
  account_ = {"desk", kPassword, true};
  Send(address);
  EXPECT_THAT(Told(), HasSubstr("the certificate of " + server.Address() + " is not to be trusted"));
  limits_.ca_file = server.Certificate();
  Start();
  Send(address, "secret");
  EXPECT_EQ(Told(), "done me@example.org");
  EXPECT_EQ(server.Mail(1)["Subject"], "secret");
  account_.password = "wr0ng-one";
  Send(address);
  EXPECT_THAT(Told(), AllOf(HasSubstr("refused the login: 535"), Not(HasSubstr("wr0ng-one"))));
  account_ = {};
  Send(address);
  EXPECT_THAT(Told(), HasSubstr("refused the mail: 530"));
}
INSTANTIATE_TEST_SUITE_P(, EncryptedMail, ::testing::Values("starttls", "smtps"));

struct Fault {
  const char* step;
  const char* action;
  const char* told;
};

class FaultyServer : public MailTest, public ::testing::WithParamInterface<Fault> {};

TEST_P(FaultyServer, GivesTheMailUpWithTheCauseAndTheNextMailGoes) {
  const TestServer server(std::string("fault ") + GetParam().step + " '" + GetParam().action + "' once");
  limits_.inactivity = std::chrono::milliseconds(800);
  Start();
  test::PutFile(folder_ / "a.wav", Recording());
  Send(server.Address(), "one", "a@example.org", folder_ / "a.wav");
  EXPECT_THAT(Told(), HasSubstr(GetParam().told));
  Send(server.Address(), "two", "b@example.org");
  EXPECT_EQ(Told(), "done b@example.org");
  EXPECT_THAT(Waiting(), IsEmpty());
}
INSTANTIATE_TEST_SUITE_P(
    , FaultyServer,
    ::testing::Values(
        Fault{"CONNECT", "421 4.3.2 closed\\x07 today", "refused the mail: 421 4.3.2 closed  today"},
        Fault{"CONNECT", "554 go away", "554 go away"},
        Fault{"MAIL", "451 4.7.1 later", "refused the mail: 451 4.7.1 later"},
        Fault{"MAIL", "550-no\\r\\n550 mail from you", "550-no mail from you"},
        Fault{"RCPT", "450 full", "refused the mail: 450 full"},
        Fault{"RCPT", "550 no such person", "error a@example.org: 127.0.0.1:"},
        Fault{"DATA", "452 no room", "452 no room"}, Fault{"DATA", "554 no", "554 no"},
        Fault{"BODY", "451 try again", "451 try again"}, Fault{"BODY", "552 too long", "552 too long"},
        Fault{"CONNECT", "stall", "stopped answering (timed out)"},
        Fault{"MAIL", "stall", "stopped answering (timed out)"},
        Fault{"BODY", "stall", "stopped answering (timed out)"},
        Fault{"CONNECT", "garbage", "does not answer as a mail server"},
        Fault{"RCPT", "garbage", "does not answer as a mail server"}, Fault{"CONNECT", "close", "broke off"},
        Fault{"BODY", "close", "broke off"},
        // Not the mail's fault any more, and no reason to give up:
        Fault{"CONNECT", "pause", "done a@example.org"}, Fault{"QUIT", "stall", "done a@example.org"},
        Fault{"QUIT", "close", "done a@example.org"}, Fault{"EHLO", "502 no", "done a@example.org"}));

TEST_F(MailTest, WhatCannotBeSentIsNamed) {
  DeadPort port;
  Send(port.Address());
  EXPECT_EQ(Told(), "error me@example.org: " + port.Address() + " refuses connections");
  for (const char* server :
       {"", "http://x", "smtp://", "a b", "x:0", "x:65536", "x:25x", "user@x", "x/y", "::1", "[::1"}) {
    Send(server);
    EXPECT_EQ(Told(), "error me@example.org: \"" + std::string(server) +
                          "\" is no mail server: name, name:port, smtp://name or smtps://name is expected");
  }
  for (const char* recipient : {"", "a@b.cc>\r\nRCPT TO:<c@d.ee", "a@b.cc, c@d.ee"}) {
    Send(port.Address(), "s", recipient);
    EXPECT_THAT(Told(), HasSubstr("recipient address"));
  }
  Send("unknown.invalid");
  EXPECT_THAT(Told(), HasSubstr("the server's name unknown.invalid is not known"));
}

TEST_F(MailTest, ServerOutOfReachTimesOutAndHoldsNoExit) {
  HangingNameServer names;
  DeadPort full;
  full.Fill();
  DeadPort silent;
  silent.Listen();
  for (const std::string& server :
       {std::string("hanging.invalid"), full.Address(), "smtps://" + silent.Address()}) {
    Send(server);
    EXPECT_THAT(Told(), AllOf(HasSubstr("connecting to "), HasSubstr(" timed out"))) << server;
    Send(server);
    ASSERT_TRUE(Eventually([&] { return server != "hanging.invalid" || HangingNameServer::Asked(); }));
    EXPECT_TRUE(ExitsInTime());
    EXPECT_EQ(Waiting().size(), 1U);
    std::filesystem::remove_all(Outbox());
    Start();
  }
}

TEST_F(MailTest, AttachmentThatShrinksOrVanishesUnkeptIsNamed) {
  const TestServer server("fault DATA pause once");
  const std::string file = folder_ / "a.wav";
  const std::string gone = folder_ / "b.wav";
  test::PutFile(file, Recording());
  test::PutFile(gone, "RIFF");
  Send(server.Address(), "shrinks", "a@example.org", file);
  Send(server.Address(), "vanishes", "b@example.org", gone);
  std::filesystem::remove(Outbox() + "/000000002.sound");  // as on a disk without second names
  ASSERT_TRUE(Eventually([&] { return server.Stalls(); }));
  std::filesystem::resize_file(file, 1000);
  std::filesystem::remove(gone);
  EXPECT_EQ(Told(), "error a@example.org: " + file + " became shorter while it was being sent");
  EXPECT_THAT(Told(), AllOf(StartsWith("error b@example.org: File not found"), HasSubstr(gone)));
  EXPECT_FALSE(server.Received(1));
  EXPECT_THAT(Waiting(), IsEmpty());
}

TEST(MailTexts, DatesAreEnglishAndServersHaveTheirPorts) {
  ::setenv("TZ", "XXX-5:30", 1);
  EXPECT_EQ(MailDate(0), "Thu, 01 Jan 1970 05:30:00 +0530");
  ::setenv("TZ", "XXX3:30", 1);
  EXPECT_EQ(MailDate(0), "Wed, 31 Dec 1969 20:30:00 -0330");
  ::unsetenv("TZ");
  EXPECT_EQ(ParseMailServer("mail.example.org")->url, "smtp://mail.example.org:25");
  EXPECT_EQ(ParseMailServer("smtp://mail.example.org:587")->url, "smtp://mail.example.org:587");
  EXPECT_EQ(ParseMailServer("smtps://[::1]/")->url, "smtps://[::1]:465");
}

class StalledExit : public MailTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(StalledExit, IsQuickAndTheNextStartSendsUnderTheSameId) {
  const TestServer server(std::string("fault ") + GetParam() + " stall once");
  account_ = {"desk", kPassword};
  const auto message = folder_ / "a%.wav";
  test::PutFile(message, Recording());
  Send(server.Address(), "one\r\n100 %", "a@example.org", message);
  Send(server.Address(), "two", "b@example.org");
  ASSERT_TRUE(Eventually([&] { return server.Stalls(); }));
  ASSERT_EQ(Waiting().size(), 2U);
  std::filesystem::remove(message);  // its owner has heard it
  std::string first;
  for (const std::string& file : Waiting()) {
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
    const std::string text = test::ContentOf(file);
    EXPECT_THAT(text, Not(HasSubstr(kPassword)));
    if (text.find("a@example.org") != text.npos) first = text;
  }
  EXPECT_TRUE(ExitsInTime());
  EXPECT_THAT(told_, IsEmpty());
  Start();
  mail_->Resume();
  EXPECT_EQ(Told(), "done a@example.org");
  EXPECT_EQ(Told(), "done b@example.org");
  const int again = std::string(GetParam()) == "BODY" ? 2 : 1;
  auto mail = server.Mail(again);
  EXPECT_EQ(mail["Subject"], "one  100 %");
  EXPECT_EQ(mail["File"], "a%.wav");
  EXPECT_TRUE(mail["Content"] == Recording());
  EXPECT_THAT(first, HasSubstr("message-id=" + mail["Message-ID"]));
  EXPECT_EQ(server.Mail(1)["Message-ID"], mail["Message-ID"]);
  EXPECT_TRUE(std::filesystem::is_empty(Outbox()));
}
INSTANTIATE_TEST_SUITE_P(, StalledExit, ::testing::Values("CONNECT", "RCPT", "BODY"));

TEST_F(MailTest, DamagedMailIsSetAsideAndTheOthersGo) {
  const TestServer server("fault CONNECT stall once");
  Send(server.Address(), "one", "a@example.org");
  Send(server.Address(), "two", "b@example.org");
  ASSERT_TRUE(Eventually([&] { return server.Stalls(); }));
  mail_.reset();
  const std::string damaged = Outbox() + "/000000001.mail";
  const std::string half = test::ContentOf(damaged).substr(0, 150);
  test::PutFile(damaged, half);
  Start();
  mail_->Resume();
  EXPECT_THAT(Told(),
              AllOf(StartsWith("error : "), HasSubstr(damaged + " is damaged, set aside as " + damaged)));
  EXPECT_EQ(Told(), "done b@example.org");
  ASSERT_EQ(Waiting().size(), 1U);
  EXPECT_EQ(test::ContentOf(Waiting()[0]), half);
}

TEST_F(MailTest, IsSentEvenWhenTheOutboxCannotBeWritten) {
  const TestServer server("real");
  test::PutFile(Outbox(), "a file where the folder belongs");
  Send(server.Address());
  EXPECT_THAT(Told(), StartsWith("warning: a mail is not kept for the next start: "));
  EXPECT_EQ(Told(), "done me@example.org");
}

TEST_F(MailTest, PasswordThatTheServerRepeatsIsHidden) {
  const TestServer server(std::string("fault RCPT '550 you are desk with hunter22'"));
  account_ = {"desk", "hunter22"};
  Send(server.Address());
  EXPECT_THAT(Told(), HasSubstr("550 you are desk with ***"));
}

TEST_F(MailTest, APasswordLikeTheMaskIsMaskedOnceAndForAll) {
  const TestServer server(std::string("fault RCPT '550 no ** for you'"));
  account_ = {"desk", "*"};
  Send(server.Address());
  EXPECT_THAT(Told(), HasSubstr("550 no ****** for you"));
}

}  // namespace
}  // namespace orven::testing
