// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "adapters/mail/cancellation.h"
#include "adapters/mail/envelope.h"
#include "adapters/mail/mail_settings.h"
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

}  // namespace orven
