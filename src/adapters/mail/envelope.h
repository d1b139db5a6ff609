// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// Everything that one mail is made of, except the login at the server.
struct Envelope {
  std::string message_id;  ///< with its angle brackets (RFC 5322, 3.6.4)
  std::string date;        ///< as MailDate writes it
  std::string server;      ///< as the user has written it
  std::string sender;
  std::string sender_name;
  std::string recipient;
  std::string subject;
  std::string attachment;  ///< an absolute path; empty for none

  bool operator==(const Envelope&) const = default;
};

/// A Message-ID that no other mail has, in the domain of `sender` where that has one.
std::string NewMessageId(std::string_view sender);

/// The envelope as the text of a file in the outbox, and the way back: nothing when the text is not
/// what EnvelopeText has written, whole.
std::string EnvelopeText(const Envelope& envelope);
std::optional<Envelope> ParseEnvelope(std::string_view text);

}  // namespace orven
