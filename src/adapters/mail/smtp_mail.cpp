// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_mail.h"

#include <ctime>
#include <exception>
#include <filesystem>
#include <limits>
#include <utility>

#include "adapters/mail/mail_text.h"
#include "adapters/mail/message.h"
#include "adapters/mail/smtp_transfer.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// The program's exit waits at most a second.
constexpr auto kPatience = 800ms;

using Event = std::function<void(MailEvents&)>;

std::string Absolute(const std::string& path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

}  // namespace

/// Sends mails on the worker's thread. It may outlive the mail control, in a thread that hangs.
class SmtpMail::Sender {
 public:
  struct Mail {
    std::string file;                  ///< in the outbox; empty when it could not be written
    std::optional<Envelope> envelope;  ///< nothing: it is in the file
    MailAccount account;
  };

  /// `tell` and `warn` pass an event or a warning to the user-interface thread.
  Sender(MailLimits limits, Worker::Reporter report, std::function<void(Event)> tell,
         std::function<void(std::string)> warn)
      : limits_(std::move(limits)),
        report_(std::move(report)),
        tell_(std::move(tell)),
        warn_(std::move(warn)) {}

  /// The mail being sent, and those that wait, stay in the outbox. Any thread.
  void Cancel() { cancellation_.Cancel(); }

  void Send(const Mail& mail) {
    if (cancellation_.Cancelled()) return;
    const auto envelope = mail.envelope ? mail.envelope : Load(mail.file);
    if (envelope) Transmit(*envelope, mail);
  }

 private:
  std::optional<Envelope> Load(const std::string& file) {
    try {
      auto envelope = Outbox::Read(file);
      if (envelope) return envelope;
      TellError("",
                "the waiting mail " + file + " is damaged and was set aside as " + Outbox::SetAside(file));
    } catch (const std::exception& failure) {
      TellError("", failure.what());
    }
    return {};
  }

  void Transmit(const Envelope& envelope, const Mail& mail) {
    const std::string source = Outbox::SourceOf(envelope.attachment, mail.file);
    const auto progress = [this](std::int64_t total, std::int64_t sent) { TellProgress(total, sent); };
    const MailOutcome outcome = SendMail(envelope, source, mail.account, limits_, cancellation_, progress);
    if (outcome.state == MailOutcome::State::Cancelled) return;
    // The disk before the event: a mail that was reported must not be sent again.
    if (!mail.file.empty()) Forget(mail.file);
    if (outcome.state != MailOutcome::State::Accepted)
      return TellError(envelope.recipient, outcome.failure.what.English());
    Tell([recipient = envelope.recipient](MailEvents& events) { events.Done(recipient); });
  }

  void Forget(const std::string& file) {
    try {
      Outbox::Remove(file);
    } catch (const std::exception& failure) {
      report_([&] { warn_(std::string("a finished mail stays in the outbox: ") + failure.what()); });
    }
  }

  void TellProgress(std::int64_t total, std::int64_t sent) {
    while (total > std::numeric_limits<std::int32_t>::max()) {
      total /= 2;
      sent /= 2;
    }
    Tell([total, sent](MailEvents& events) {
      events.Progress(static_cast<std::int32_t>(total), static_cast<std::int32_t>(sent));
    });
  }

  void TellError(const std::string& recipient, const std::string& description) {
    Tell([recipient, description](MailEvents& events) { events.Error(recipient, description); });
  }

  void Tell(const Event& event) {
    report_([&] { tell_(event); });
  }

  const MailLimits limits_;
  const Worker::Reporter report_;
  const std::function<void(Event)> tell_;
  const std::function<void(std::string)> warn_;
  Cancellation cancellation_;
};

SmtpMail::SmtpMail(EventLoop& loop, std::string outbox_folder, Account account, Warning warning,
                   MailLimits limits)
    : account_(account ? std::move(account) : [] { return MailAccount{}; }),
      warning_(warning ? std::move(warning) : [](const std::string&) {}),
      outbox_(std::move(outbox_folder)),
      worker_(Worker::AtStop::Drop, kPatience) {
  const auto tell = [this, &loop](Event event) {
    loop.Post(lifeline_.Bind([this, event = std::move(event)] {
      if (events_ != nullptr) event(*events_);
    }));
  };
  const auto warn = [this, &loop](std::string text) {
    loop.Post(lifeline_.Bind([this, text = std::move(text)] { warning_(text); }));
  };
  sender_ = std::make_shared<Sender>(std::move(limits), worker_.Reports(), tell, warn);
}

SmtpMail::~SmtpMail() {
  sender_->Cancel();
  worker_.Stop();
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
  Queue(std::move(file), std::move(envelope));
}

std::string SmtpMail::Keep(const Envelope& envelope) {
  try {
    return outbox_.Keep(envelope);
  } catch (const std::exception& failure) {
    warning_(std::string("a mail is not kept for the next start: ") + failure.what());
    return {};
  }
}

void SmtpMail::Queue(std::string file, std::optional<Envelope> envelope) {
  Sender::Mail mail{std::move(file), std::move(envelope), account_()};
  const bool posted = worker_.Post([sender = sender_, mail = std::move(mail)] { sender->Send(mail); });
  if (!posted) warning_("a mail waits for the next start: no thread can be started");
}

void SmtpMail::Resume() {
  try {
    for (std::string& file : outbox_.Waiting()) Queue(std::move(file), {});
  } catch (const std::exception& failure) {
    warning_(std::string("the outbox cannot be read: ") + failure.what());
  }
}

}  // namespace orven
