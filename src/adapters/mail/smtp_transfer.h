// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "adapters/mail/cancellation.h"
#include "adapters/mail/envelope.h"
#include "adapters/mail/mail_settings.h"

namespace orven {

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
