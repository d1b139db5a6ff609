// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <string>

#include "adapters/mail/mail_failure.h"
#include "adapters/mail/mail_settings.h"
#include "adapters/mail/outbox.h"

namespace orven {

/// Ends transfers at once from another thread, even while their connections wait. Any thread.
class Cancellation {
 public:
  /// Shuts down open connections; all transfers fail from now on.
  void Cancel();
  bool Cancelled() const;

  /// Opens a connection's socket; arguments as for socket(2), SOCK_CLOEXEC is added. -1 when that fails.
  int Open(int family, int type, int protocol);
  /// Closes a socket that Open returned.
  void Close(int socket);

 private:
  mutable std::mutex mutex_;
  bool cancelled_ = false;
  std::set<int> sockets_;
};

/// The result of sending one mail, or of a try.
struct MailOutcome {
  enum class State {
    Accepted,
    Failed,
    Cancelled,  ///< before the server accepted it
  };
  State state = State::Accepted;
  MailFailure failure;  ///< why it failed
};

/// `total` and `sent` bytes of the mail, at most about ten times a second; total is 0 while unknown.
using MailProgress = std::function<void(std::int64_t total, std::int64_t sent)>;

/// Sends one mail to the server `envelope.server` with the login of `account`, and returns when it is sent or
/// has failed. The attachment, if any, is read from `source` and has its name from the envelope. Call it on a
/// thread that blocks SIGPIPE; `progress` is called on it.
MailOutcome SendMail(const Envelope& envelope, const std::string& source, const MailAccount& account,
                     const MailLimits& limits, Cancellation& cancellation, const MailProgress& progress = {});

/// Only connects to the server of `account` and logs in. Same thread rules.
MailOutcome TryMailServer(const MailAccount& account, const MailLimits& limits, Cancellation& cancellation);

}  // namespace orven
