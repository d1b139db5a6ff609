// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <curl/curl.h>

#include <string>

#include "adapters/mail/smtp_dialogue.h"
#include "base/words.h"
#include "platform/mail.h"

namespace orven {

/// Why a mail was not sent. The password is in none of the texts.
struct MailFailure {
  Words what;            ///< for the log; not a whole sentence
  Words remedy;          ///< what the user can do, one or two sentences; may be empty
  bool passing = false;  ///< another try may succeed although nothing is changed here
};

/// How libcurl's transfer failed.
struct CurlFailure {
  CURLcode code;
  int os_error;      ///< errno of the connection, 0 for none
  const char* text;  ///< libcurl's message; may be empty
  bool stalled;      ///< ended by the limit on inactivity
};

/// Describes what failed at the server `server` (its name for people), with the server's reply.
///
/// Final is only a refusal of the mail (a reply 5xx). A refused login passes, too: it is about the account,
/// and its mails need not be lost because a password has changed.
MailFailure DescribeFailure(const CurlFailure& failure, const std::string& server, const MailAccount& account,
                            const SmtpDialogue& dialogue);

}  // namespace orven
