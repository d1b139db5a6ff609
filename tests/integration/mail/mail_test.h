// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>

#include "adapters/line/sim/virtual_time.h"
#include "adapters/mail/mail_settings.h"
#include "adapters/mail/smtp_mail.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::testing {

using test::ContentOf;
using test::PutFile;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// Returns bytes like those of a recording, including sequences that SMTP treats specially.
inline std::string Recording() {
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

/// Posts from any thread; time passes only in the test.
class MailLoop : public TestLoop {
 public:
  VirtualTime time{Clock::WallTime(std::chrono::hours(24 * 365 * 50))};
  std::unique_ptr<Timer> MakeTimer(Task tick) override { return time.MakeTimer(std::move(tick)); }
};

/// The mail control, and a list of its events.
class MailTest : public ::testing::Test, public MailEvents {
 protected:
  MailTest() { Start(); }

  void Progress(std::int32_t total, std::int32_t sent) override { progress_ = {total, sent}; }
  void Done(const std::string& recipient) override { told_.push_back("done " + recipient); }
  void Error(const std::string& recipient, const Words& description) override {
    told_.push_back("error " + recipient + ": " + description.English());
  }
  void StateChanged() override {}

  void Start() {
    mail_.reset();
    mail_ = std::make_unique<SmtpMail>(
        loop_, loop_.time, outbox_, [this] { return account_; },
        [this](const std::string& text) { told_.push_back("warning: " + text); }, limits_);
    mail_->SetEvents(this);
  }

  void Send(const std::string& server, const std::string& subject = "New Call",
            const std::string& recipient = "me@example.org", const std::string& file = "") {
    mail_->Send(server, "desk@example.org", "B\u00FCro \"1\"\r\nBcc: x@y.zz", recipient, subject, file,
                subject.substr(0, subject.find('\r')) + "\n\n.\nBcc: x@y.zz\n");
  }

  /// Lets time pass, at least as fast as mails are sent.
  void Pass(std::chrono::seconds duration) {
    for (std::chrono::seconds passed(0); passed < duration; passed += std::chrono::seconds(20)) {
      loop_.time.RunFor(std::chrono::seconds(20));
      ASSERT_TRUE(loop_.RunUntil([this] { return !mail_->State().sending; }));
    }
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

  /// Counts the outbox's files whose names contain `part`.
  std::ptrdiff_t Files(const std::string& part) const {
    return std::ranges::count_if(std::filesystem::directory_iterator(outbox_), [&](const auto& entry) {
      return entry.path().filename().string().find(part) != part.npos;
    });
  }

  test::ScratchFolder folder_;
  const std::string outbox_ = folder_ / "Outbox";
  MailLoop loop_;
  MailAccount account_;
  MailLimits limits_{std::chrono::seconds(2), std::chrono::seconds(20), ""};
  std::pair<int, int> progress_;
  std::vector<std::string> told_;
  std::size_t heard_ = 0;
  std::unique_ptr<SmtpMail> mail_;
};

}  // namespace orven::testing
