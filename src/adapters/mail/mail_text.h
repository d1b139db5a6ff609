// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace orven {

/// Header fields of a mail, without the final CR LF, folded with CR LF and a blank. No text can start another
/// header field, whatever it contains.

/// `text` as one line of well-formed UTF-8: control characters become blanks, invalid bytes become
/// U+FFFD.
std::string OneLine(std::string_view text);

/// Base64 as in RFC 4648, padded.
std::string Base64(std::string_view bytes);

/// "name: value", in encoded words (RFC 2047) unless the value is plain ASCII and short enough for one
/// line of 78 characters (RFC 5322, 2.1.1).
std::string TextField(std::string_view name, std::string_view value);

/// "name: "display" <address>"; IsMailAddress(address) holds.
std::string MailboxField(std::string_view name, std::string_view display, std::string_view address);

/// The Content-Disposition field of an attached file; names that are long or not plain ASCII are
/// split and encoded as in RFC 2231.
std::string AttachmentField(std::string_view file_name);

/// "Sat, 21 Nov 2026 08:53:31 +0000" (RFC 5322, 3.3) in the local time zone, in English in every
/// locale.
std::string MailDate(std::time_t time);

/// Whether `text` can be the only address in an SMTP command and a header field: not empty, no blanks, no
/// control characters, nothing that ends an address or begins another.
bool IsMailAddress(std::string_view text);

}  // namespace orven
