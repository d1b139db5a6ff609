// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "adapters/mail/mail_settings.h"

namespace orven {

/// Follows the replies and the progress of one SMTP connection, and how long it has been idle. One thread.
class SmtpDialogue {
 public:
  using Clock = std::chrono::steady_clock;

  explicit SmtpDialogue(const MailLimits& limits) : limits_(limits) {}

  /// One line from the server. False when it has sent more than a mail can need.
  bool Heard(std::string_view line);
  /// `sent` bytes of the mail so far.
  void Sent(std::int64_t sent);
  void Connected();

  /// The server has accepted the mail and is responsible for it (RFC 5321, 4.2.5), whatever follows.
  bool Accepted() const { return accepted_; }

  /// Whether the connection has been idle for too long; false before it is established.
  bool Stalled(Clock::time_point now = Clock::now()) const;

  /// The last reply, its code first, as one line; empty when there was none.
  const std::string& Reply() const { return reply_; }
  int ReplyCode() const { return code_; }

 private:
  const MailLimits& limits_;
  Clock::time_point active_ = Clock::now();
  bool connected_ = false;
  bool accepted_ = false;
  bool data_ = false;  ///< the server waits for the mail itself
  bool more_ = false;  ///< the last line was not its reply's last
  int code_ = 0;
  int lines_ = 0;
  std::int64_t sent_ = 0;
  std::string reply_;
};

}  // namespace orven
