// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <string>

#include "adapters/mail/mail_settings.h"
#include "adapters/mail/outbox.h"

namespace orven {

/// Ends transfers from another thread at once, whatever they wait for on their connections. Any thread.
class Cancellation {
 public:
  /// From now on transfers fail; connections that are open are shut down.
  void Cancel();
  bool Cancelled() const;

  /// Opens a connection's socket: the arguments of socket(2). It is not inherited by programs that are
  /// started. -1 when it cannot be opened.
  int Open(int family, int type, int protocol);
  /// Closes a socket that Open gave.
  void Close(int socket);

 private:
  mutable std::mutex mutex_;
  bool cancelled_ = false;
  std::set<int> sockets_;
};

struct MailOutcome {
  enum class State {
    Accepted,
    Failed,
    Cancelled,  ///< before the server had accepted it
  };
  State state = State::Accepted;
  std::string description;  ///< why it failed; the password is not in it
};

/// `total` and `sent` bytes of the mail, at most about ten times a second; total 0 while not known.
using MailProgress = std::function<void(std::int64_t total, std::int64_t sent)>;

/// Sends one mail and returns when it is sent or has failed. The attachment, if there is one, is read from
/// `source` and keeps the name that it has in the envelope. `progress` is called on this thread, on which
/// SIGPIPE is blocked.
MailOutcome SendMail(const Envelope& envelope, const std::string& source, const MailAccount& account,
                     const MailLimits& limits, Cancellation& cancellation, const MailProgress& progress);

}  // namespace orven
