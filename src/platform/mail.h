// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orven {

/// Events of the mail control, one mail after the other.
class MailEvents {
 public:
  virtual ~MailEvents() = default;

  /// `sent` of `total` bytes of the current mail have been sent; `total` may be 0 while it is unknown.
  virtual void Progress(std::int32_t total, std::int32_t sent) = 0;

  /// The server has accepted the mail to `recipient`.
  virtual void Done(const std::string& recipient) = 0;

  /// The mail to `recipient` could not be sent, for the reason in `description`; it will not be retried.
  virtual void Error(const std::string& recipient, const std::string& description) = 0;
};

/// The mail control (`Mail1`). User-interface thread; Send returns at once, events arrive later, never
/// inside it.
class MailControl {
 public:
  virtual ~MailControl() = default;

  /// The receiver of the events; it outlives the control's last event. nullptr: no receiver.
  virtual void SetEvents(MailEvents* events) = 0;

  /// Sends one mail with the file at `attachment` attached through the SMTP server `server` ("name",
  /// "name:port", "smtp://…" or "smtps://…"), after the mails before it. A file that does not exist
  /// (a call without a message) is not attached. A mail that cannot be sent raises Error. An accepted mail is
  /// kept on disk until it is sent or has failed: a later run of the program sends it, at least
  /// once, always with the same Message-ID.
  virtual void Send(const std::string& server, const std::string& sender, const std::string& sender_name,
                    const std::string& recipient, const std::string& subject,
                    const std::string& attachment) = 0;
};

}  // namespace orven
