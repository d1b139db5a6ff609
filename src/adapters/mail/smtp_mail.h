// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "adapters/mail/mail_settings.h"
#include "adapters/mail/outbox.h"
#include "base/worker.h"
#include "platform/event_loop.h"
#include "platform/mail.h"

namespace orven {

/// The mail control over SMTP (RFC 5321): on its own thread, one mail at a time, first in first out. STARTTLS
/// is used when the server offers it; certificates are verified. A mail that fails is not retried, whatever
/// the reason.
class SmtpMail final : public MailControl {
 public:
  /// Called on the user-interface thread by Send and Resume.
  using Account = std::function<MailAccount()>;
  /// Called on the user-interface thread, also inside Send and Resume, when the outbox fails; the mail
  /// itself may still be sent.
  using Warning = std::function<void(const std::string& text)>;

  /// `outbox_folder` is created when it is needed; `loop` outlives this object.
  SmtpMail(EventLoop& loop, std::string outbox_folder, Account account, Warning warning = {},
           MailLimits limits = {});

  /// Returns within a second, whatever the server does. Mails that are not sent yet stay in the outbox.
  ~SmtpMail() override;
  SmtpMail(const SmtpMail&) = delete;
  SmtpMail& operator=(const SmtpMail&) = delete;

  void SetEvents(MailEvents* events) override { events_ = events; }

  /// Writes the mail's details (not the attachment) to the outbox before it returns. When that fails
  /// (a full disk), `warning` is called and the mail is sent all the same.
  void Send(const std::string& server, const std::string& sender, const std::string& sender_name,
            const std::string& recipient, const std::string& subject, const std::string& attachment) override;

  /// Sends what earlier runs left in the outbox: once, after start, before the first Send. A damaged
  /// file is set aside and raises Error without a recipient.
  void Resume();

 private:
  class Sender;
  std::string Keep(const Envelope& envelope);
  void Queue(std::string file, std::optional<Envelope> envelope);

  Account account_;
  Warning warning_;
  Outbox outbox_;
  MailEvents* events_ = nullptr;
  Lifeline lifeline_;
  Worker worker_;
  std::shared_ptr<Sender> sender_;  ///< shared with the worker's tasks
};

}  // namespace orven
