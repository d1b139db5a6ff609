// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "adapters/line/driver/line_trouble.h"
#include "adapters/line/sip/sip_account.h"

namespace orven {

/// Why an account is not registered. The texts for the log begin in lower case and have no full stop; they
/// are also for the list of lines and their test. Any thread.
class ServerTrouble {
 public:
  /// `listen` is the line's address for calls.
  ServerTrouble(const SipAccount& account, const std::string& listen) : account_(account), listen_(listen) {}

  /// The server cannot be reached over `transport`: `error` is the errno value of the failure, `refusal`
  /// tells why the server's certificate was not accepted, or is empty.
  LineTrouble Unreachable(const std::string& transport, int error, const std::string& refusal) const;

  /// The server is silent, or becomes so again and again.
  Words Silent() const;
  LineTrouble ConnectionBroke() const;

  /// The server answered with this status (RFC 3261, section 21) and reason phrase. `more` continues the text
  /// for the log.
  LineTrouble Refused(int status, const std::string& reason, const std::string& more) const;

 private:
  LineTrouble NoRoute(int error) const;
  LineTrouble NoEncryption(int error, const std::string& refusal) const;

  const SipAccount& account_;
  const std::string& listen_;
};

}  // namespace orven
