// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_mail.h"

#include <csignal>
#include <ctime>
#include <exception>
#include <filesystem>
#include <limits>
#include <thread>
#include <utility>

#include "adapters/mail/mail_text.h"
#include "adapters/mail/message.h"
#include "adapters/mail/outbox.h"
#include "adapters/mail/smtp_transfer.h"

namespace orven {

namespace {

using namespace std::chrono_literals;

/// The program's end does not wait longer than a second.
constexpr auto kPatience = 800ms;

/// Threads inherit it: signals are the main thread's, and a connection that breaks must not raise
/// SIGPIPE.
void BlockSignals() {
  sigset_t all;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

void MailQueue::Add(QueuedMail mail) {
  const std::lock_guard lock(mutex_);
  mails_.push_back(std::move(mail));
  if (!std::exchange(started_, true)) {
    std::thread([self = shared_from_this()] {
      BlockSignals();
      self->Serve();
    }).detach();
  }
  changed_.notify_all();
}

void MailQueue::End() {
  std::unique_lock lock(mutex_);
  ending_ = true;
  cancellation_.Cancel();
  changed_.notify_all();
  if (started_) changed_.wait_for(lock, kPatience, [this] { return ended_; });
}

void MailQueue::Serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !mails_.empty(); });
    if (ending_) break;
    const QueuedMail mail = std::move(mails_.front());
    mails_.pop_front();
    lock.unlock();
    Handle(mail);
    lock.lock();
  }
  ended_ = true;
  changed_.notify_all();
}

void MailQueue::Handle(const QueuedMail& mail) {
  const auto envelope = mail.envelope ? mail.envelope : Load(mail.file);
  if (envelope) Transmit(*envelope, mail);
}

std::optional<Envelope> MailQueue::Load(const std::string& file) {
  try {
    auto envelope = Outbox::Read(file);
    if (envelope) return envelope;
    const std::string aside = Outbox::SetAside(file);
    Tell([text = "the waiting mail " + file + " is damaged, set aside as " + aside](MailEvents& events) {
      events.Error("", text);
    });
  } catch (const std::exception& failure) {
    Tell([text = std::string(failure.what())](MailEvents& events) { events.Error("", text); });
  }
  return {};
}

void MailQueue::Transmit(const Envelope& envelope, const QueuedMail& mail) {
  const auto progress = [this](std::int64_t total, std::int64_t sent) {
    while (total > std::numeric_limits<std::int32_t>::max()) {
      total /= 2;
      sent /= 2;
    }
    Tell([total, sent](MailEvents& events) {
      events.Progress(static_cast<std::int32_t>(total), static_cast<std::int32_t>(sent));
    });
  };
  const std::string source = Outbox::SourceOf(envelope.attachment, mail.file);
  const MailOutcome outcome = SendMail(envelope, source, mail.account, limits_, cancellation_, progress);
  if (outcome.state == MailOutcome::State::Cancelled) return;
  // First the disk, then the word: what has been told is not sent again.
  if (!mail.file.empty()) Forget(mail.file);
  Tell([outcome, recipient = envelope.recipient](MailEvents& events) {
    if (outcome.state == MailOutcome::State::Accepted) {
      events.Done(recipient);
    } else {
      events.Error(recipient, outcome.description);
    }
  });
}

void MailQueue::Forget(const std::string& file) {
  try {
    Outbox::Remove(file);
  } catch (const std::exception& failure) {
    Warn(std::string("a mail that is done stays in the outbox: ") + failure.what());
  }
}

void MailQueue::Tell(Event event) {
  const std::lock_guard lock(mutex_);
  if (!ending_) listener_.tell(std::move(event));
}

void MailQueue::Warn(const std::string& text) {
  const std::lock_guard lock(mutex_);
  if (!ending_) listener_.warn(text);
}

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
