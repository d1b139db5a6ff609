// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_mail.h"

#include <ctime>
#include <exception>
#include <filesystem>
#include <utility>

#include "adapters/mail/attachment.h"
#include "adapters/mail/mail_text.h"

namespace orven {
namespace {

std::string Absolute(const std::string& path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

}  // namespace

SmtpMail::SmtpMail(EventLoop& loop, std::string outbox_folder, Account account, Warning warning,
                   MailLimits limits)
    : account_(account ? std::move(account) : [] { return MailAccount{}; }),
      warning_(warning ? std::move(warning) : [](const std::string&) {}),
      outbox_(std::move(outbox_folder)) {
  MailQueue::Listener listener;
  listener.tell = [this, &loop](MailQueue::Event event) {
    loop.Post(lifeline_.Bind([this, event = std::move(event)] {
      if (events_ != nullptr) event(*events_);
    }));
  };
  listener.warn = [this, &loop](std::string text) {
    loop.Post(lifeline_.Bind([this, text = std::move(text)] { warning_(text); }));
  };
  queue_ = std::make_shared<MailQueue>(std::move(limits), std::move(listener));
}

SmtpMail::~SmtpMail() {
  queue_->End();
}

void SmtpMail::Send(const std::string& server, const std::string& sender, const std::string& sender_name,
                    const std::string& recipient, const std::string& subject, const std::string& attachment) {
  Envelope envelope{NewMessageId(sender),
                    MailDate(std::time(nullptr)),
                    server,
                    sender,
                    sender_name,
                    recipient,
                    subject,
                    IsAttachable(attachment) ? Absolute(attachment) : ""};
  std::string file = Keep(envelope);
  queue_->Add({std::move(file), std::move(envelope), account_()});
}

std::string SmtpMail::Keep(const Envelope& envelope) {
  try {
    return outbox_.Keep(envelope);
  } catch (const std::exception& failure) {
    warning_(std::string("a mail is not kept for the next start: ") + failure.what());
    return {};
  }
}

void SmtpMail::Resume() {
  try {
    for (std::string& file : outbox_.Waiting()) queue_->Add({std::move(file), {}, account_()});
  } catch (const std::exception& failure) {
    warning_(std::string("the outbox cannot be read: ") + failure.what());
  }
}

}  // namespace orven
