// SPDX-License-Identifier: GPL-3.0-or-later
#include <dlfcn.h>
#include <netdb.h>

#include <atomic>
#include <ctime>

#include "integration/mail/mail_test.h"

namespace orven::testing {
namespace {

std::atomic<bool> names_hang = false;  ///< a lookup of "hanging.invalid" does not return
std::atomic<int> names_asked = 0;

TEST_F(MailTest, ArrivesInOrderAndCompleteAndOnlyExistingFilesAreAttached) {
  ::setenv("TZ", "XXX3:30", 1);  // west of Greenwich
  const TestServer server;
  const std::string name = "Anruf von Zo\u00EB \"mobil\" 2026-11-21 08-53-31 Nummer 0301234567.wav";
  PutFile(folder_ / name, Recording());
  Send("smtp://" + server.Address(), "one", "a@example.org", folder_ / "");
  Send(" SMTP://" + server.Address() + "/", "two", "b@example.org", folder_ / "none.wav");
  Send(server.Address(), "New Call From Zo\u00EB - 0301234567", "c@example.org", folder_ / name);
  for (const std::string recipient : {"a", "b", "c"}) EXPECT_EQ(Told(), "done " + recipient + "@example.org");
  auto first = server.Mail(1), mail = server.Mail(3);
  EXPECT_EQ(first["Parts"] + first["Subject"] + server.Mail(2)["Subject"], "text/plainonetwo");
  EXPECT_THAT(mail["From"], AllOf(HasSubstr("B\u00FCro"), HasSubstr("<desk@example.org>")));
  EXPECT_EQ(mail["To"] + mail["MIME-Version"], "c@example.org1.0");
  EXPECT_EQ(mail["Parts"] + mail["File"], "text/plain audio/x-wav" + name);
  EXPECT_TRUE(mail["Content"] == Recording());
  EXPECT_THAT(mail["Message-ID"],
              AllOf(StartsWith("<"), HasSubstr("@example.org>"), Not(first["Message-ID"])));
  EXPECT_NEAR(std::stod(mail["Seconds"]), static_cast<double>(std::time(nullptr)), 120);
  EXPECT_GT(progress_.first, 400'000);
  EXPECT_EQ(progress_.first, progress_.second);
  EXPECT_TRUE(std::filesystem::is_empty(outbox_));
}

TEST_F(MailTest, TheSubjectStaysInItsFieldWhateverACallerSends) {
  const TestServer server;
  std::string xs(2000, 'x'), umlauts;
  for (int i = 0; i < 1000; ++i) umlauts += "\u00E4";
  int number = 0;
  const std::map<std::string, std::string> subjects{
      {"a\r\nBcc: you@example.org\r\n\r\nbody", "a  Bcc: you@example.org    body"},
      {"=?UTF-8?B?QQ==?=", "=?UTF-8?B?QQ==?="},
      {"\u65E5\u672C \U0001F4DE\x01!", "\u65E5\u672C \U0001F4DE !"},
      {"broken \xC3", "broken \uFFFD"},
      {xs, xs},
      {umlauts, umlauts}};
  for (const auto& [asked, expected] : subjects) {
    ASSERT_EQ(Sent(server.Address(), asked), "done me@example.org");
    auto mail = server.Mail(++number);
    EXPECT_EQ(mail["Subject"], expected);
    EXPECT_EQ(mail["Body"], "utf-8 " + expected.substr(0, expected.find("  ")) + "||.|Bcc: x@y.zz");
    EXPECT_EQ(mail["Bcc"] + mail["Defects"], "None0");
    EXPECT_LE(std::stoi(mail["Longest"]), 90);  // libcurl folds at about 80
  }
}

TEST_F(MailTest, IsEncryptedAndSentOnlyWithTheRightCertificateAndPassword) {
  for (const std::string kind : {"starttls", "smtps"}) {
    const TestServer server(kind);
    const std::string address = (kind == "smtps" ? "smtps://" : "") + server.Address();
    account_ = {"", "desk", "s3cret+\u00FC", true};
    limits_.ca_file.clear();
    Start();
    EXPECT_THAT(Sent(address), HasSubstr("the certificate of " + server.Address() + " is not trusted"));
    limits_.ca_file = server.folder_ / "cert.pem";
    Start();
    EXPECT_EQ(Sent(address), "done me@example.org");
    account_.password = "wr0ng-one";
    EXPECT_THAT(Sent(address), AllOf(HasSubstr("refused the login: 535"), Not(HasSubstr("wr0ng-one"))));
    account_ = {};
    Start();
    EXPECT_THAT(Sent(address), HasSubstr("refused the login: 530"));
  }
}

TEST_F(MailTest, AFailureThatMayPassIsTriedAgainBeforeTheNextMailAndARefusedMailIsNot) {
  limits_.inactivity = std::chrono::seconds(2);
  account_ = {.user = "desk", .password = "**"};
  PutFile(folder_ / "a.wav", Recording());
  const std::map<std::string, std::string> faults{
      {"CONNECT '421 4.3.2 closed\\x07 today'", "refused the mail: 421 4.3.2 closed  today"},
      {"MAIL '550-no\\r\\n550 mail from you'", "550-no mail from you"},
      {"RCPT '550 no ** for you'", "refused the mail: 550 no *** for you"},  // the password looks masked
      {"BODY '559 too long'", "mail: 559 too long"},
      {"CONNECT stall", "stopped answering (timed out)"},
      {"BODY stall", "stopped answering (timed out)"},
      {"RCPT garbage", "does not answer as a mail server"},
      {"BODY close", "was lost"},
      {"CONNECT pause", "done a@example.org"},  // too short a pause to give up
      {"QUIT stall", "done a@example.org"}};    // the mail has been accepted by then
  for (const auto& [fault, told] : faults) {
    const TestServer server(fault);
    std::filesystem::remove_all(outbox_);
    Start();
    Send(server.Address(), "one", "a@example.org", folder_ / "a.wav");
    EXPECT_THAT(Told(), HasSubstr(told)) << fault;
    Send(server.Address(), "two", "b@example.org");
    Pass(std::chrono::minutes(1));
    const bool refused = told.find(": 55") != told.npos || told.find("550-") != told.npos;
    if (!refused && !told.starts_with("done")) {
      EXPECT_EQ(Told(), "done a@example.org") << fault;
    }
    EXPECT_EQ(Told(), "done b@example.org") << fault;
    EXPECT_EQ(mail_->State().failed, refused ? 1U : 0U) << fault;
    EXPECT_EQ(Files("1.failed"), refused ? 1 : 0);
    EXPECT_EQ(Files(".mail"), 0);
  }
}

TEST_F(MailTest, AMailThatCannotBeSentIsReportedWithTheCause) {
  EXPECT_EQ(Sent("127.0.0.1:1"), "error me@example.org: 127.0.0.1:1 refuses connections");
  for (const char* server :
       {"http://x", "smtp://", "a b", "x:0", "x:65536", "x:25x", "user@x", "::1", "[::1"}) {
    EXPECT_EQ(Sent(server),
              "error me@example.org: \"" + std::string(server) +
                  "\" is not a mail server: name, name:port, smtp://name or smtps://name is expected");
  }
  for (const char* recipient : {"", "a@b.cc>\r\nRCPT TO:<c@d.ee", "a@b.cc, c@d.ee"}) {
    EXPECT_THAT(Sent("127.0.0.1:2", "s", recipient), HasSubstr("recipient address"));
  }
  EXPECT_EQ(ParseMailServer("mail.example.org")->url, "smtp://mail.example.org:25");
  EXPECT_EQ(ParseMailServer("smtps://[::1]/")->url, "smtps://[::1]:465");
  EXPECT_EQ(ParseMailServer("x:65535")->name, "x:65535");
  EXPECT_THAT(Sent("unknown.invalid"), HasSubstr("the server's name unknown.invalid is not known"));
  const TestServer server;
  EXPECT_EQ(Sent(server.Address()), "done me@example.org") << "mails to other servers do not wait";
  EXPECT_EQ(mail_->State().waiting, 2U);
  account_.server = server.Address();  // corrected
  mail_->TryNow();
  EXPECT_EQ(Told() + Told(), "done me@example.orgdone me@example.org");
  EXPECT_EQ(mail_->State().waiting, 0U);
}

TEST_F(MailTest, ANameServerThatHangsTimesOutAndDoesNotDelayTheExit) {
  names_hang = true;
  EXPECT_EQ(Sent("hanging.invalid"), "error me@example.org: connecting to hanging.invalid timed out");
  const int asked = names_asked;
  mail_->TryNow();
  ASSERT_TRUE(Eventually([&] { return names_asked > asked; }));
  mail_.reset();
  EXPECT_GT(names_asked, asked) << "the exit waited for the answer";
  EXPECT_TRUE(std::filesystem::exists(outbox_ + "/000000001.mail"));
  names_hang = false;
  EXPECT_TRUE(Eventually([] { return names_asked == 0; }));
}

TEST_F(MailTest, AnAttachmentThatShrinksOrDisappearsIsReported) {
  const TestServer server("DATA pause");
  const std::string file = folder_ / "a.wav", gone = folder_ / "b.wav";
  PutFile(file, Recording());
  PutFile(gone, "RIFF");
  Send(server.Address(), "shrinks", "a@example.org", file);
  Send(server.Address(), "vanishes", "b@example.org", gone);
  std::filesystem::remove(outbox_ + "/000000002.sound");  // as on a disk without hard links
  ASSERT_TRUE(Eventually([&] { return server.Has("stalled"); }));
  std::filesystem::resize_file(file, 1000);
  std::filesystem::remove(gone);
  EXPECT_EQ(Told(), "error a@example.org: " + file + " became shorter while it was being sent");
  EXPECT_THAT(Told(), AllOf(StartsWith("error b@example.org: File not found"), HasSubstr(gone)));
  EXPECT_EQ(mail_->State().failed, 2U);
  Start();
  mail_->Resume();
  ASSERT_TRUE(loop_.RunUntil([&] { return mail_->State().failed == 2; })) << "until it is acknowledged";
  EXPECT_THAT(mail_->State().reason.English(), HasSubstr(gone));
  mail_->Acknowledge();
  EXPECT_EQ(mail_->State().failed, 0U);
  EXPECT_TRUE(Eventually([&] { return Files(".failed.seen-") == 2; }));
  EXPECT_TRUE(Eventually([&] { return Files(".sound") == 0; }));
}

TEST_F(MailTest, AfterAStalledExitTheNextStartSendsWithTheSameIdAndSetsDamagedMailsAside) {
  const TestServer server("BODY stall");
  account_ = {.user = "desk", .password = "s3cret"};
  const auto message = folder_ / "a%.wav", first = outbox_ + "/000000001.mail",
             second = outbox_ + "/000000002.mail";
  PutFile(message, Recording());
  Send(server.Address(), "one\r\n100 %", "a@example.org", message);
  Send(server.Address(), "two", "b@example.org");
  Send(server.Address(), "three", "c@example.org");
  ASSERT_TRUE(Eventually([&] { return server.Has("stalled"); }));
  std::filesystem::remove(message);  // the user has heard and deleted it
  const std::string kept = ContentOf(first), whole = ContentOf(second);
  EXPECT_EQ(std::filesystem::status(first).permissions(), std::filesystem::perms(0600));
  EXPECT_THAT(kept, Not(HasSubstr("s3cret")));
  mail_.reset();
  PutFile(second, whole.substr(0, whole.size() - 4));
  std::string third = ContentOf(outbox_ + "/000000003.mail");  // as written by a version that tried once
  third.replace(third.find("text="), third.npos, "end\n").replace(0, 12, "ORVEN mail 1");
  PutFile(outbox_ + "/000000003.mail", third);
  Start();
  mail_->Resume();
  const std::string damaged = Told();
  EXPECT_EQ(Told(), "done a@example.org");
  EXPECT_THAT(damaged, StartsWith("error : the waiting mail " + second + " is damaged and was set aside as " +
                                  second));
  EXPECT_EQ(ContentOf(damaged.substr(damaged.rfind(' ') + 1)) + "end\n", whole);
  EXPECT_EQ(Told(), "done c@example.org");
  auto mail = server.Mail(2);  // the server has received it twice
  EXPECT_EQ(mail["Subject"] + mail["File"], "one  100 %a%.wav");
  EXPECT_TRUE(mail["Content"] == Recording());
  EXPECT_THAT(kept, HasSubstr("message-id=" + mail["Message-ID"]));
}

TEST_F(MailTest, IsSentEvenWhenTheOutboxCannotBeWritten) {
  const TestServer server;
  PutFile(outbox_, "a file where the folder belongs");
  EXPECT_THAT(Sent(server.Address()), StartsWith("warning: a mail is not kept for the next start: "));
  EXPECT_EQ(Told(), "done me@example.org");
  Send("127.0.0.1:1");
  std::filesystem::remove(outbox_);
  Pass(std::chrono::minutes(1));
  EXPECT_EQ(Files(".mail"), 1) << "it is kept as soon as possible";
}

}  // namespace

/// Takes precedence over the C library's function of the same name.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
  if (std::string_view(name) == "unknown.invalid") return EAI_NONAME;  // at once, in any network
  if (std::string_view(name) == "hanging.invalid") {
    ++names_asked;
    Eventually([] { return !names_hang; });
    --names_asked;
    return EAI_AGAIN;
  }
  static const auto real = reinterpret_cast<decltype(&::getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  return real(name, service, hints, result);
}

}  // namespace orven::testing
