// SPDX-License-Identifier: GPL-3.0-or-later
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <netdb.h>

#include <atomic>
#include <ctime>
#include <random>

#include "adapters/mail/mail_settings.h"
#include "adapters/mail/mail_text.h"
#include "integration/mail/mail_fixture.h"

namespace orven::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

std::atomic<bool> names_hang = false;  ///< asking for the address of "hanging.invalid" does not return
std::atomic<int> names_asked = 0;

/// Bytes like a recording's, with what SMTP treats specially among them.
std::string Recording() {
  std::string bytes = "RIFF\r\n.\r\n..\r\n";
  std::minstd_rand random(1);
  while (bytes.size() < 300'000) bytes += static_cast<char>(random() & 0xFFU);
  return bytes;
}

TEST_F(MailTest, ArrivesPartByPartInOrderWithAttachedFilesOnly) {
  const TestServer server;
  const std::string name = "Anruf von Zo\u00EB \"mobil\" 2026-11-21 08-53-31 Nummer 0301234567.wav";
  test::PutFile(folder_ / name, Recording());
  Send("smtp://" + server.Address(), "one", "a@example.org", folder_ / "");
  Send(" SMTP://" + server.Address() + "/", "two", "b@example.org", folder_ / "none.wav");
  Send(server.Address(), "New Call From Zo\u00EB - 0301234567", "c@example.org", folder_ / name);
  for (const std::string recipient : {"a", "b", "c"}) EXPECT_EQ(Told(), "done " + recipient + "@example.org");
  auto first = server.Mail(1), mail = server.Mail(3);
  EXPECT_EQ(first["Parts"] + first["Subject"] + server.Mail(2)["Subject"], "text/plainonetwo");
  EXPECT_THAT(mail["From"], AllOf(HasSubstr("B\u00FCro"), HasSubstr("<desk@example.org>")));
  EXPECT_EQ(mail["To"], "c@example.org");
  EXPECT_EQ(mail["Parts"], "text/plain audio/x-wav");
  EXPECT_EQ(mail["File"], name);
  EXPECT_TRUE(mail["Content"] == Recording());
  EXPECT_EQ(mail["MIME-Version"], "1.0");
  EXPECT_THAT(mail["Message-ID"],
              AllOf(StartsWith("<"), HasSubstr("@example.org>"), Not(first["Message-ID"])));
  EXPECT_NEAR(std::stod(mail["Seconds"]), static_cast<double>(std::time(nullptr)), 120);
  EXPECT_GT(progress_.first, 400'000);
  EXPECT_EQ(progress_.first, progress_.second);
  EXPECT_THAT(Waiting(), IsEmpty());
}

TEST_F(MailTest, SubjectsOfStrangersStayInTheirField) {
  const TestServer server;
  const std::string xs(2000, 'x');
  std::string umlauts;
  for (int i = 0; i < 1000; ++i) umlauts += "\u00E4";
  int number = 0;
  for (const auto& [asked, expected] : std::map<std::string, std::string>{
           {"a\r\nBcc: you@example.org\r\n\r\nbody", "a  Bcc: you@example.org    body"},
           {xs, xs},
           {umlauts, umlauts},
           {"=?UTF-8?B?QQ==?=", "=?UTF-8?B?QQ==?="},
           {"", ""},
           {"\u65E5\u672C \U0001F4DE\x01!", "\u65E5\u672C \U0001F4DE !"},
           {"broken \xC3", "broken \uFFFD"}}) {
    Send(server.Address(), asked);
    ASSERT_EQ(Told(), "done me@example.org");
    auto mail = server.Mail(++number);
    EXPECT_EQ(mail["Subject"], expected);
    EXPECT_EQ(mail["Body"], "utf-8 " + expected);
    EXPECT_EQ(mail["Bcc"] + mail["Defects"], "None0");
    EXPECT_LE(std::stoi(mail["Longest"]), 80);
  }
}

class EncryptedMail : public MailTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(EncryptedMail, IsSentOnlyWithTheRightCertificateAndPassword) {
  const TestServer server(GetParam());
  const std::string address = (std::string(GetParam()) == "smtps" ? "smtps://" : "") + server.Address();
  account_ = {"desk", "s3cret+\u00FC", true};
  Send(address);
  EXPECT_THAT(Told(), HasSubstr("the certificate of " + server.Address() + " is not trusted"));
  limits_.ca_file = server.Certificate();
  Start();
  Send(address);
  EXPECT_EQ(Told(), "done me@example.org");
  account_.password = "wr0ng-one";
  Send(address);
  EXPECT_THAT(Told(), AllOf(HasSubstr("refused the login: 535"), Not(HasSubstr("wr0ng-one"))));
  account_ = {};
  Send(address);
  EXPECT_THAT(Told(), HasSubstr("refused the mail: 530"));
}
INSTANTIATE_TEST_SUITE_P(, EncryptedMail, ::testing::Values("starttls", "smtps"));

struct Fault {
  const char *step, *action, *told;
};
const Fault kFaults[]{
    {"CONNECT", "421 4.3.2 closed\\x07 today", "refused the mail: 421 4.3.2 closed  today"},
    {"MAIL", "451 4.7.1 later", "refused the mail: 451 4.7.1 later"},
    {"MAIL", "550-no\\r\\n550 mail from you", "550-no mail from you"},
    {"RCPT", "550 no ** for you", "refused the mail: 550 no *** for you"},  // the password is like its mask
    {"DATA", "452 no room", "452 no room"},
    {"BODY", "552 too long", "552 too long"},
    {"CONNECT", "stall", "stopped answering (timed out)"},
    {"BODY", "stall", "stopped answering (timed out)"},
    {"RCPT", "garbage", "does not answer as a mail server"},
    {"CONNECT", "close", "was lost"},
    {"BODY", "close", "was lost"},
    // Not the mail's fault any more, and no reason to give up:
    {"CONNECT", "pause", "done a@example.org"},
    {"QUIT", "stall", "done a@example.org"},
    {"QUIT", "close", "done a@example.org"},
    {"EHLO", "502 no", "done a@example.org"},
};

class FaultyServer : public MailTest, public ::testing::WithParamInterface<Fault> {};

TEST_P(FaultyServer, GivesTheMailUpWithTheCauseAndTheNextMailGoes) {
  const TestServer server(std::string(GetParam().step) + " '" + GetParam().action + "' once");
  limits_.inactivity = std::chrono::milliseconds(800);
  account_ = {"desk", "**"};
  Start();
  test::PutFile(folder_ / "a.wav", Recording());
  Send(server.Address(), "one", "a@example.org", folder_ / "a.wav");
  EXPECT_THAT(Told(), HasSubstr(GetParam().told));
  Send(server.Address(), "two", "b@example.org");
  EXPECT_EQ(Told(), "done b@example.org");
  EXPECT_THAT(Waiting(), IsEmpty());
}
INSTANTIATE_TEST_SUITE_P(, FaultyServer, ::testing::ValuesIn(kFaults));

TEST_F(MailTest, WhatCannotBeSentIsNamed) {
  Send("127.0.0.1:1");
  EXPECT_EQ(Told(), "error me@example.org: 127.0.0.1:1 refuses connections");
  for (const char* server :
       {"", "http://x", "smtp://", "a b", "x:0", "x:65536", "x:25x", "user@x", "x/y", "::1", "[::1"}) {
    Send(server);
    EXPECT_EQ(Told(),
              "error me@example.org: \"" + std::string(server) +
                  "\" is not a mail server: name, name:port, smtp://name or smtps://name is expected");
  }
  for (const char* recipient : {"", "a@b.cc>\r\nRCPT TO:<c@d.ee", "a@b.cc, c@d.ee"}) {
    Send("127.0.0.1:1", "s", recipient);
    EXPECT_THAT(Told(), HasSubstr("recipient address"));
  }
  Send("unknown.invalid");
  EXPECT_THAT(Told(), HasSubstr("the server's name unknown.invalid is not known"));
}

TEST_F(MailTest, AServerOutOfReachTimesOutAndDoesNotDelayTheExit) {
  const TestServer silent("CONNECT stall");
  names_hang = true;
  for (const std::string& server : {"smtps://" + silent.Address(), std::string("hanging.invalid")}) {
    Send(server);
    EXPECT_THAT(Told(), AllOf(HasSubstr("connecting to "), HasSubstr(" timed out"))) << server;
    const int asked = names_asked;
    Send(server);
    ASSERT_TRUE(Eventually([&] { return server != "hanging.invalid" || names_asked > asked; }));
    EXPECT_TRUE(ExitsInTime());
    EXPECT_EQ(Waiting().size(), 1U);
    std::filesystem::remove_all(Outbox());
    Start();
  }
  names_hang = false;
  names_hang.notify_all();
  EXPECT_TRUE(Eventually([] { return names_asked == 0; }));
}

TEST_F(MailTest, AttachmentThatShrinksOrVanishesUnkeptIsNamed) {
  const TestServer server("DATA pause once");
  const std::string file = folder_ / "a.wav", gone = folder_ / "b.wav";
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
  EXPECT_EQ(ParseMailServer("x:65535")->name, "x:65535");
}

class StalledExit : public MailTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(StalledExit, IsQuickAndTheNextStartSendsUnderTheSameIdAndSetsDamagedMailsAside) {
  const TestServer server(std::string(GetParam()) + " stall once");
  account_ = {"desk", "s3cret"};
  const auto message = folder_ / "a%.wav", first = Outbox() + "/000000001.mail",
             second = Outbox() + "/000000002.mail";
  test::PutFile(message, Recording());
  Send(server.Address(), "one\r\n100 %", "a@example.org", message);
  Send(server.Address(), "two", "b@example.org");
  Send(server.Address(), "three", "c@example.org");
  ASSERT_TRUE(Eventually([&] { return server.Stalls(); }));
  ASSERT_EQ(Waiting().size(), 3U);
  std::filesystem::remove(message);  // the user has heard it
  const std::string kept = test::ContentOf(first), whole = test::ContentOf(second);
  const std::string half =
      whole.substr(0, std::string(GetParam()) == "BODY" ? 150 : whole.size() - 4);  // "end\n"
  EXPECT_EQ(std::filesystem::status(first).permissions(), std::filesystem::perms(0600));
  EXPECT_THAT(kept, Not(HasSubstr("s3cret")));
  EXPECT_TRUE(ExitsInTime());
  EXPECT_THAT(told_, IsEmpty());
  test::PutFile(second, half);
  Start();
  mail_->Resume();
  EXPECT_EQ(Told(), "done a@example.org");
  EXPECT_THAT(Told(),
              StartsWith("error : the waiting mail " + second + " is damaged, set aside as " + second));
  EXPECT_EQ(Told(), "done c@example.org");
  auto mail = server.Mail(std::string(GetParam()) == "BODY" ? 2 : 1);  // received twice
  EXPECT_EQ(mail["Subject"], "one  100 %");
  EXPECT_EQ(mail["File"], "a%.wav");
  EXPECT_TRUE(mail["Content"] == Recording());
  EXPECT_THAT(kept, HasSubstr("message-id=" + mail["Message-ID"]));
  ASSERT_EQ(Waiting().size(), 1U);
  EXPECT_EQ(test::ContentOf(Waiting()[0]), half);
}
INSTANTIATE_TEST_SUITE_P(, StalledExit, ::testing::Values("CONNECT", "RCPT", "BODY"));

TEST_F(MailTest, IsSentEvenWhenTheOutboxCannotBeWritten) {
  const TestServer server;
  test::PutFile(Outbox(), "a file where the folder belongs");
  Send(server.Address());
  EXPECT_THAT(Told(), StartsWith("warning: a mail is not kept for the next start: "));
  EXPECT_EQ(Told(), "done me@example.org");
}

}  // namespace
}  // namespace orven::testing

/// Takes precedence over the C library's function of this name.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
  using namespace orven::testing;
  if (std::string_view(name) == "unknown.invalid") return EAI_NONAME;  // at once, in any network
  if (std::string_view(name) == "hanging.invalid") {
    ++names_asked;
    names_hang.wait(true);
    --names_asked;
    return EAI_AGAIN;
  }
  static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  return real(name, service, hints, result);
}
