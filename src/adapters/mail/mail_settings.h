// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// Time limits and trust of a transfer.
struct MailLimits {
  std::chrono::milliseconds connect{std::chrono::seconds(10)};     ///< resolving, connecting, TLS of smtps://
  std::chrono::milliseconds inactivity{std::chrono::seconds(60)};  ///< without a reply or progress
  std::string ca_file;  ///< PEM file of trusted certificates; empty: the system's
};

/// The address of a mail server.
struct MailServer {
  std::string url;   ///< "smtp://name:25" or "smtps://name:465"
  std::string name;  ///< for people: the name, and the port unless it is the default
};

/// Parses "name", "name:port", "smtp://…" or "smtps://…" (default ports 25 and 465; an IPv6 address in
/// brackets). Nothing when the text is none of these.
std::optional<MailServer> ParseMailServer(std::string_view text);

}  // namespace orven
