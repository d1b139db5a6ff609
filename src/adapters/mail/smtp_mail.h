// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/mail/mail_queue.h"
#include "adapters/mail/mail_sender.h"
#include "adapters/mail/mail_settings.h"
#include "adapters/mail/outbox.h"
#include "base/worker.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/mail.h"

namespace orven {

/// The mail control over SMTP (RFC 5321): on its own thread, one mail at a time, as MailQueue orders them.
/// STARTTLS is used when the server offers it; certificates are verified.
class SmtpMail final : public MailControl {
 public:
  /// The login, and the server where all mails go; an empty server: each to the one it was handed over with.
  /// Called on the user-interface thread before each try: what is corrected there helps mails that wait.
  using Account = std::function<MailAccount()>;
  /// Called on the user-interface thread, also inside this object's functions, when the outbox fails; the
  /// mail itself may still be sent.
  using Warning = std::function<void(const std::string& text)>;

  /// `outbox_folder` is created when it is needed; `loop` and `clock` outlive this object.
  SmtpMail(EventLoop& loop, const Clock& clock, std::string outbox_folder, Account account,
           Warning warning = {}, MailLimits limits = {});

  /// Returns within a second, whatever the server does. Mails that are not sent yet stay in the outbox.
  ~SmtpMail() override;
  SmtpMail(const SmtpMail&) = delete;
  SmtpMail& operator=(const SmtpMail&) = delete;

  void SetEvents(MailEvents* events) override { events_ = events; }

  /// Writes the mail's details (not the attachment) to the outbox before it returns. When that fails
  /// (a full disk), `warning` is called and the mail is sent all the same; while it waits, writing is tried
  /// again. A mail that an earlier run left is not sent again: that run was killed before it could note that
  /// it had handed the mail over.
  void Send(const std::string& server, const std::string& sender, const std::string& sender_name,
            const std::string& recipient, const std::string& subject, const std::string& attachment,
            const std::string& text) override;

  MailState State() const override;
  void TryNow() override;
  void Acknowledge() override;

  /// Reads what earlier runs left in the outbox and sends it before all other mails: once, after start,
  /// before the first Send. A damaged file is set aside and raises Error without a recipient, inside this
  /// call.
  void Resume();

 private:
  MailSender::Reports Reports();
  std::string Keep(const Envelope& envelope);
  void KeepOthers();
  bool Start(std::function<void(MailSender&)> task);
  void Load(const std::string& file);
  void SendNext();
  void LookAgain();
  void ShowProgress(std::int64_t total, std::int64_t sent);
  void Tried(const TriedMail& tried);
  void ShowState();

  EventLoop& loop_;
  const Clock& clock_;
  Account account_;
  Warning warning_;
  Outbox outbox_;
  MailEvents* events_ = nullptr;
  MailQueue queue_;
  QueuedMail* current_ = nullptr;    ///< the mail being sent; it stays in the queue
  std::vector<std::string> failed_;  ///< files of failed mails that are not acknowledged; empty: without one
  Words reason_;                     ///< why the latest try failed
  std::unique_ptr<Timer> look_;      ///< runs while mails wait
  Lifeline lifeline_;
  Worker worker_;
  std::shared_ptr<MailSender> sender_;  ///< shared with the worker's tasks
};

}  // namespace orven
