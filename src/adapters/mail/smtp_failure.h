// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <curl/curl.h>

#include <string>

#include "adapters/mail/mail_settings.h"
#include "adapters/mail/smtp_dialogue.h"

namespace orven {

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
