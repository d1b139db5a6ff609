// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "adapters/mail/mail_settings.h"
#include "adapters/mail/outbox.h"
#include "adapters/mail/smtp_transfer.h"
#include "platform/event_loop.h"
#include "platform/mail.h"

namespace orven {

/// One mail that waits.
struct QueuedMail {
  std::string file;                  ///< in the outbox; empty when it could not be written
  std::optional<Envelope> envelope;  ///< nothing: it is in the file
  MailAccount account;
};

/// Sends mails one after the other on a thread of its own, which starts with the first.
class MailQueue : public std::enable_shared_from_this<MailQueue> {
 public:
  using Event = std::function<void(MailEvents&)>;
  struct Listener {
    std::function<void(Event)> tell;        ///< brings an event to the user-interface thread
    std::function<void(std::string)> warn;  ///< the outbox failed, though the mail may be sent
  };

  /// Both functions of `listener` are called on the queue's thread, never after End.
  MailQueue(MailLimits limits, Listener listener)
      : limits_(std::move(limits)), listener_(std::move(listener)) {}

  void Add(QueuedMail mail);

  /// Cancels the mail under way; it and the others stay in the outbox. Waits for the thread, but not
  /// long: what hangs then (a disk, a name server) is left behind and ends with the process.
  void End();

 private:
  void Serve();
  void Handle(const QueuedMail& mail);
  std::optional<Envelope> Load(const std::string& file);
  void Transmit(const Envelope& envelope, const QueuedMail& mail);
  void Forget(const std::string& file);
  void Tell(Event event);
  void Warn(const std::string& text);

  const MailLimits limits_;
  const Listener listener_;
  Cancellation cancellation_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<QueuedMail> mails_;
  bool started_ = false;
  bool ending_ = false;
  bool ended_ = false;
};

/// The mail control over SMTP (RFC 5321): on its own thread, one mail at a time, first in first out.
/// STARTTLS is used when the server offers it; certificates are verified. A mail that fails is given up,
/// for whatever reason.
class SmtpMail final : public MailControl {
 public:
  /// Asked on the user-interface thread when a mail is taken, and by Resume.
  using Account = std::function<MailAccount()>;
  /// Told on the user-interface thread, also inside Send and Resume, what went wrong with the outbox; the
  /// mail itself goes its way.
  using Warning = std::function<void(const std::string& text)>;

  /// `outbox_folder` is made when it is needed; `loop` outlives this object.
  SmtpMail(EventLoop& loop, std::string outbox_folder, Account account, Warning warning = {},
           MailLimits limits = {});

  /// Returns within a second, whatever the server does. What is not sent yet stays in the outbox.
  ~SmtpMail() override;
  SmtpMail(const SmtpMail&) = delete;
  SmtpMail& operator=(const SmtpMail&) = delete;

  void SetEvents(MailEvents* events) override { events_ = events; }

  /// Writes the mail's details (not the attachment) to the outbox before it returns. When that fails
  /// (a full disk), the mail is sent all the same, and `warning` is told.
  void Send(const std::string& server, const std::string& sender, const std::string& sender_name,
            const std::string& recipient, const std::string& subject, const std::string& attachment) override;

  /// Sends what earlier runs left in the outbox: once, after start, before the first Send. A damaged
  /// file is set aside and raises Error without a recipient.
  void Resume();

 private:
  std::string Keep(const Envelope& envelope);

  Account account_;
  Warning warning_;
  Outbox outbox_;
  MailEvents* events_ = nullptr;
  std::shared_ptr<MailQueue> queue_;  ///< with the thread
  Lifeline lifeline_;
};

}  // namespace orven
