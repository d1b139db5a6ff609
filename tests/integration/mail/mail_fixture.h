// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <vector>

#include "adapters/mail/smtp_mail.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::testing {

/// A server of mail_server.py, which ends with this object.
class TestServer {
 public:
  explicit TestServer(const std::string& arguments = "")
      : input_(
            ::popen(("exec /usr/bin/python3 -B " ORVEN_SOURCE_DIR "/tests/integration/mail/mail_server.py " +
                     folder_ / "" + " " + arguments)
                        .c_str(),
                    "w"),
            ::pclose) {
    EXPECT_TRUE(Eventually([this] { return std::filesystem::exists(folder_ / "port"); }));
  }

  std::string Address() const { return "127.0.0.1:" + test::ContentOf(folder_ / "port"); }
  std::string Certificate() const { return folder_ / "cert.pem"; }
  /// The server has come to its fault.
  bool Stalls() const { return std::filesystem::exists(folder_ / "stalled"); }

  /// The `number`-th mail, waited for: its fields, and the attached file's content as "Content".
  std::map<std::string, std::string> Mail(int number) const {
    const std::string name = folder_ / std::to_string(number);
    EXPECT_TRUE(Eventually([&] { return std::filesystem::exists(name + ".fields"); }));
    std::map<std::string, std::string> mail{{"Content", test::ContentOf(name + ".wav")}};
    std::istringstream fields(test::ContentOf(name + ".fields"));
    for (std::string field, value; std::getline(fields, field, '=') && std::getline(fields, value);)
      mail[field] = value;
    return mail;
  }

 private:
  test::ScratchFolder folder_;
  std::unique_ptr<FILE, int (*)(FILE*)> input_;
};

/// The mail control, and a list of what it tells.
class MailTest : public ::testing::Test, public MailEvents {
 protected:
  MailTest() { Start(); }

  void Progress(std::int32_t total, std::int32_t sent) override {
    EXPECT_LE(sent, total);
    progress_ = {total, sent};
  }
  void Done(const std::string& recipient) override { told_.push_back("done " + recipient); }
  void Error(const std::string& recipient, const std::string& description) override {
    told_.push_back("error " + recipient + ": " + description);
  }

  void Start() {
    mail_ = std::make_unique<SmtpMail>(
        loop_, Outbox(), [this] { return account_; },
        [this](const std::string& text) { told_.push_back("warning: " + text); }, limits_);
    mail_->SetEvents(this);
  }

  void Send(const std::string& server, const std::string& subject = "New Call",
            const std::string& recipient = "me@example.org", const std::string& file = "") {
    mail_->Send(server, "desk@example.org", "B\u00FCro \"1\"\r\nBcc: x@y.zz", recipient, subject, file);
  }

  /// What is told next; nothing within the limit fails the test.
  std::string Told() {
    EXPECT_TRUE(Eventually([this] {
      loop_.Run();
      return told_.size() > heard_;
    }));
    return heard_ < told_.size() ? told_[heard_++] : "nothing";
  }

  /// Ends the mail control; whether that took less than a second.
  bool ExitsInTime() {
    const auto start = std::chrono::steady_clock::now();
    mail_.reset();
    return std::chrono::steady_clock::now() - start < std::chrono::seconds(1);
  }

  std::string Outbox() const { return folder_ / "Outbox"; }
  std::vector<std::string> Waiting() const {
    std::vector<std::string> names;
    for (std::filesystem::directory_iterator entry(Outbox()), end; entry != end; ++entry)
      if (entry->path().extension() != ".sound") names.push_back(entry->path().string());
    return names;
  }

  test::ScratchFolder folder_;
  TestLoop loop_;
  MailAccount account_;
  MailLimits limits_{std::chrono::milliseconds(700), std::chrono::seconds(20), ""};
  std::pair<int, int> progress_;
  std::vector<std::string> told_;
  std::size_t heard_ = 0;
  std::unique_ptr<SmtpMail> mail_;
};

}  // namespace orven::testing
