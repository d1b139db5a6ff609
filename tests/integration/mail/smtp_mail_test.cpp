// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_mail.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <netdb.h>

#include <atomic>
#include <ctime>
#include <map>
#include <random>

#include "adapters/mail/mail_settings.h"
#include "adapters/mail/smtp_tests.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::testing {
namespace {

using test::ContentOf;
using test::PutFile;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

std::atomic<bool> names_hang = false;  ///< a lookup of "hanging.invalid" does not return
std::atomic<int> names_asked = 0;

/// Returns bytes like those of a recording, including sequences that SMTP treats specially.
std::string Recording() {
  std::string bytes = "RIFF\r\n.\r\n..\r\n";
  std::minstd_rand random(1);
  while (bytes.size() < 300'000) bytes += static_cast<char>(random() & 0xFFU);
  return bytes;
}

/// Runs mail_server.py, which ends with this object.
class TestServer {
 public:
  explicit TestServer(const std::string& arguments = "") {
    const std::string script = ORVEN_SOURCE_DIR "/tests/integration/mail/mail_server.py ";
    input_.reset(
        ::popen(("exec /usr/bin/python3 -B " + script + folder_ / "" + " " + arguments).c_str(), "w"));
    EXPECT_TRUE(Eventually([this] { return Has("port"); }));
  }

  std::string Address() const { return "127.0.0.1:" + ContentOf(folder_ / "port"); }
  /// Returns whether the server has written this file.
  bool Has(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

  /// Waits for the `number`-th mail and returns its fields, with the content of the attached file as
  /// "Content".
  std::map<std::string, std::string> Mail(int number) const {
    const std::string name = std::to_string(number);
    EXPECT_TRUE(Eventually([&] { return Has(name + ".fields"); }));
    std::map<std::string, std::string> mail{{"Content", ContentOf(folder_ / name + ".wav")}};
    std::ifstream fields(folder_ / name + ".fields");
    for (std::string field, value; std::getline(fields, field, '=') && std::getline(fields, value);)
      mail[field] = value;
    return mail;
  }

  test::ScratchFolder folder_;

 private:
  std::unique_ptr<FILE, int (*)(FILE*)> input_{nullptr, ::pclose};
};

/// The mail control, and a list of its events.
class MailTest : public ::testing::Test, public MailEvents {
 protected:
  MailTest() { Start(); }

  void Progress(std::int32_t total, std::int32_t sent) override { progress_ = {total, sent}; }
  void Done(const std::string& recipient) override { told_.push_back("done " + recipient); }
  void Error(const std::string& recipient, const std::string& description) override {
    told_.push_back("error " + recipient + ": " + description);
  }

  void Start() {
    mail_ = std::make_unique<SmtpMail>(
        loop_, outbox_, [this] { return account_; },
        [this](const std::string& text) { told_.push_back("warning: " + text); }, limits_);
    mail_->SetEvents(this);
  }

  void Send(const std::string& server, const std::string& subject = "New Call",
            const std::string& recipient = "me@example.org", const std::string& file = "") {
    mail_->Send(server, "desk@example.org", "B\u00FCro \"1\"\r\nBcc: x@y.zz", recipient, subject, file);
  }

  /// Waits for the next event and returns it; the test fails if none comes in time.
  std::string Told() {
    EXPECT_TRUE(loop_.RunUntil([this] { return told_.size() > heard_; }));
    return heard_ < told_.size() ? told_[heard_++] : "nothing";
  }

  /// Sends a mail and returns the next event.
  std::string Sent(const std::string& server, const std::string& subject = "New Call",
                   const std::string& recipient = "me@example.org") {
    Send(server, subject, recipient);
    return Told();
  }

  test::ScratchFolder folder_;
  const std::string outbox_ = folder_ / "Outbox";
  TestLoop loop_;
  MailAccount account_;
  MailLimits limits_{std::chrono::milliseconds(700), std::chrono::seconds(20), ""};
  std::pair<int, int> progress_;
  std::vector<std::string> told_;
  std::size_t heard_ = 0;
  std::unique_ptr<SmtpMail> mail_;
};

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
    EXPECT_EQ(mail["Subject"] + "/" + mail["Body"], expected + "/utf-8 " + expected);
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
    EXPECT_THAT(Sent(address), HasSubstr("refused the mail: 530"));
  }
}

TEST_F(MailTest, AMailToAFaultyServerIsGivenUpWithTheCauseAndTheNextOneIsSent) {
  limits_.inactivity = std::chrono::milliseconds(800);
  account_ = {.user = "desk", .password = "**"};
  Start();
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
    Send(server.Address(), "one", "a@example.org", folder_ / "a.wav");
    EXPECT_THAT(Told(), HasSubstr(told)) << fault;
    EXPECT_EQ(Sent(server.Address(), "two", "b@example.org"), "done b@example.org") << fault;
    EXPECT_TRUE(std::filesystem::is_empty(outbox_));
  }
}

TEST_F(MailTest, AMailThatCannotBeSentIsReportedWithTheCause) {
  EXPECT_EQ(Sent("127.0.0.1:1"), "error me@example.org: 127.0.0.1:1 refuses connections");
  for (const char* server :
       {"", "http://x", "smtp://", "a b", "x:0", "x:65536", "x:25x", "user@x", "::1", "[::1"}) {
    EXPECT_EQ(Sent(server),
              "error me@example.org: \"" + std::string(server) +
                  "\" is not a mail server: name, name:port, smtp://name or smtps://name is expected");
  }
  for (const char* recipient : {"", "a@b.cc>\r\nRCPT TO:<c@d.ee", "a@b.cc, c@d.ee"}) {
    EXPECT_THAT(Sent("127.0.0.1:1", "s", recipient), HasSubstr("recipient address"));
  }
  EXPECT_EQ(ParseMailServer("mail.example.org")->url, "smtp://mail.example.org:25");
  EXPECT_EQ(ParseMailServer("smtps://[::1]/")->url, "smtps://[::1]:465");
  EXPECT_EQ(ParseMailServer("x:65535")->name, "x:65535");
  EXPECT_THAT(Sent("unknown.invalid"), HasSubstr("the server's name unknown.invalid is not known"));
}

TEST_F(MailTest, ANameServerThatHangsTimesOutAndDoesNotDelayTheExit) {
  names_hang = true;
  EXPECT_EQ(Sent("hanging.invalid"), "error me@example.org: connecting to hanging.invalid timed out");
  const int asked = names_asked;
  Send("hanging.invalid");
  ASSERT_TRUE(Eventually([&] { return names_asked > asked; }));
  mail_.reset();
  EXPECT_GT(names_asked, asked) << "the exit waited for the answer";
  EXPECT_TRUE(std::filesystem::exists(outbox_ + "/000000002.mail"));
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
  EXPECT_TRUE(std::filesystem::is_empty(outbox_));
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
  Start();
  mail_->Resume();
  EXPECT_EQ(Told(), "done a@example.org");
  const std::string damaged = Told();
  EXPECT_THAT(damaged, StartsWith("error : the waiting mail " + second + " is damaged and was set aside as " +
                                  second));
  EXPECT_EQ(ContentOf(damaged.substr(damaged.rfind(' ') + 1)) + "end\n", whole);
  EXPECT_EQ(Told(), "done c@example.org");
  auto mail = server.Mail(2);  // the server has received it twice
  EXPECT_EQ(mail["Subject"] + mail["File"], "one  100 %a%.wav");
  EXPECT_TRUE(mail["Content"] == Recording());
  EXPECT_THAT(kept, HasSubstr("message-id=" + mail["Message-ID"]));
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

TEST_F(MailTest, IsSentEvenWhenTheOutboxCannotBeWritten) {
  const TestServer server;
  PutFile(outbox_, "a file where the folder belongs");
  EXPECT_THAT(Sent(server.Address()), StartsWith("warning: a mail is not kept for the next start: "));
  EXPECT_EQ(Told(), "done me@example.org");
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
