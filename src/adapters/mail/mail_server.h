// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// Where mails are handed in.
struct MailServer {
  std::string url;   ///< "smtp://name:25" or "smtps://name:465"
  std::string name;  ///< for people: the name and, unless it is the usual one, the port
};

/// Reads "name", "name:port", "smtp://…" or "smtps://…" (the ports 25 and 465 where none is given; an
/// IPv6 address in brackets). Nothing when the text is none of these.
std::optional<MailServer> ParseMailServer(std::string_view text);

}  // namespace orven
