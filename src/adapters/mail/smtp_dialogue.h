// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "adapters/mail/mail_settings.h"

namespace orven {

/// What has been heard and sent in one SMTP connection, and for how long nothing has. One thread.
class SmtpDialogue {
 public:
  using Clock = std::chrono::steady_clock;

  explicit SmtpDialogue(const MailLimits& limits) : limits_(limits) {}

  /// One line from the server. False when it has sent more than any mail needs.
  bool Heard(std::string_view line);
  /// `sent` bytes of the mail have gone so far.
  void Sent(std::int64_t sent);
  void Connected();

  /// The server has taken the mail over: it is responsible now (RFC 5321, 4.2.5), whatever follows.
  bool Accepted() const { return accepted_; }

  /// Whether the time limit is over; that of a connection that is not there yet is watched elsewhere.
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

/// How libcurl's transfer came to its end.
struct CurlFailure {
  CURLcode code;
  int os_error;      ///< errno of the connection, 0 for none
  const char* text;  ///< libcurl's own words; may be empty
  bool stalled;      ///< ended by the limit on inactivity
};

/// In words, for the user: what went wrong with the server `server`, and what the server said of it. The
/// account's password is not in it, even when the server's reply repeats it.
std::string DescribeFailure(const CurlFailure& failure, const std::string& server, const MailAccount& account,
                            const SmtpDialogue& dialogue);

}  // namespace orven
