// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace orven {

/// How texts are written in a mail's header: whole header fields without the final CR LF, folded with
/// CR LF and a blank. Whatever the texts hold, nothing of them begins a header field of its own.

/// `text` as one line of well-formed UTF-8: control characters become blanks, bytes that are no UTF-8
/// become U+FFFD.
std::string OneLine(std::string_view text);

/// RFC 4648, padded.
std::string Base64(std::string_view bytes);

/// "name: value", in encoded words (RFC 2047) unless the value is plain ASCII and short enough for one
/// line of 78 characters (RFC 5322, 2.1.1).
std::string TextField(std::string_view name, std::string_view value);

/// "name: "display" <address>". `address` is one that IsMailAddress accepts.
std::string MailboxField(std::string_view name, std::string_view display, std::string_view address);

/// The Content-Disposition field of an attached file; names that are long or not plain ASCII as
/// RFC 2231 continues and encodes them.
std::string AttachmentField(std::string_view file_name);

/// "Sat, 21 Nov 2026 08:53:31 +0000" (RFC 5322, 3.3) in the time zone of this computer, in English
/// whatever the locale.
std::string MailDate(std::time_t time);

/// Whether `text` can stand as the one address of an SMTP command and of a header field: not empty, no
/// blank, no control character, nothing that ends an address or begins another.
bool IsMailAddress(std::string_view text);

}  // namespace orven
