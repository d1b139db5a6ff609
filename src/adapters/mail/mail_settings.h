// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// The login at the mail server.
struct MailAccount {
  std::string user;  ///< empty: no login
  std::string password;
  /// Whether a mail is given up rather than sent without encryption. Otherwise STARTTLS is used where
  /// the server offers it (a stranger on the way can hide that offer).
  bool require_encryption = false;
};

struct MailLimits {
  std::chrono::milliseconds connect{std::chrono::seconds(10)};     ///< resolving, connecting, TLS of smtps://
  std::chrono::milliseconds inactivity{std::chrono::seconds(60)};  ///< without a reply or a byte taken
  std::string ca_file;  ///< PEM file of trusted certificates; empty: the system's
};

/// Where mails are handed in.
struct MailServer {
  std::string url;   ///< "smtp://name:25" or "smtps://name:465"
  std::string name;  ///< for people: the name and, unless it is the usual one, the port
};

/// Reads "name", "name:port", "smtp://…" or "smtps://…" (the ports 25 and 465 where none is given; an
/// IPv6 address in brackets). Nothing when the text is none of these.
std::optional<MailServer> ParseMailServer(std::string_view text);

}  // namespace orven
