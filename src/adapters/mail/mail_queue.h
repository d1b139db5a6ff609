// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <deque>
#include <string>

#include "adapters/mail/outbox.h"
#include "platform/clock.h"

namespace orven {

/// A mail that is not sent yet.
struct QueuedMail {
  std::string file;  ///< in the outbox; empty when it could not be written
  Envelope envelope;
  bool older = false;       ///< an earlier run left it
  Clock::WallTime tried{};  ///< the latest try of this run that failed
};

/// The mails that are not sent yet, the oldest first, and when they are due. A mail that waits holds up the
/// younger ones to its server, so that none overtakes another. The wall clock may jump. No thread, no disk.
class MailQueue {
 public:
  using WallTime = Clock::WallTime;

  /// The time between a try that failed and the next: 1 min, doubling, 4 h at most. `tries` is 1 or more.
  static std::chrono::minutes PauseAfter(std::int64_t tries);

  /// Whether a mail that failed now, once more, is given up: for three days and in ten tries at least,
  /// because the computer may have been off meanwhile, or its clock wrong.
  static bool IsGivenUp(const Envelope& envelope, WallTime now);

  void Add(QueuedMail mail) { mails_.push_back(std::move(mail)); }

  /// Whether an earlier run left a mail with this text, which says who called and when.
  bool HasOlder(const std::string& text) const;

  /// All mails go to this server from now on.
  void Redirect(const std::string& server);

  /// The oldest mail that is due; nullptr when none is.
  QueuedMail* Due(WallTime now);

  /// Another try may succeed: all mails are due, but those tried within the `least` time.
  void Hurry(WallTime now, std::chrono::minutes least);

  /// Removes a mail that Due returned, perhaps some time ago. No other mail may have been removed meanwhile.
  void Remove(const QueuedMail& mail);

  /// The oldest mail without a file; nullptr when there is none.
  QueuedMail* Unkept();

  bool Empty() const { return mails_.empty(); }

  /// The number of mails to servers whose oldest mail has failed.
  std::size_t Waiting() const;

 private:
  std::deque<QueuedMail> mails_;
};

}  // namespace orven
