// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "adapters/mail/mail_queue.h"
#include "adapters/mail/mail_settings.h"
#include "adapters/mail/smtp_transfer.h"
#include "base/words.h"
#include "platform/mail.h"

namespace orven {

/// What became of one try.
struct TriedMail {
  enum class State { Sent, Waits, Failed };
  State state = State::Sent;
  Envelope envelope;
  Words problem;
  std::string file;  ///< where a failed mail is kept
};

/// Sends mails and keeps the outbox true; on the worker's thread, which it may outlive in a thread that
/// hangs.
class MailSender {
 public:
  /// Called on the worker's thread.
  struct Reports {
    std::function<void(std::int64_t total, std::int64_t sent)> progress;
    std::function<void(const TriedMail&)> tried;
    std::function<void(const std::string& text)> warn;  ///< about the disk
  };

  MailSender(MailLimits limits, Reports reports) : limits_(std::move(limits)), reports_(std::move(reports)) {}

  /// Sends `mail`, which counts this try already; after its `last` try it is given up whatever the reason.
  /// Nothing is reported after Cancel.
  void Send(QueuedMail mail, const MailAccount& account, bool last);

  void Acknowledge(const std::vector<std::string>& files);

  /// The mail being sent, and those that wait, stay in the outbox. Any thread.
  void Cancel() { cancellation_.Cancel(); }

 private:
  void Accepted(const QueuedMail& mail);
  TriedMail Refused(QueuedMail mail, const MailFailure& failure, bool last);
  void OnDisk(const char* what, const std::function<void()>& work);

  const MailLimits limits_;
  const Reports reports_;
  Cancellation cancellation_;
};

}  // namespace orven
