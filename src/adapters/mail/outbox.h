// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// The folder with one small file for each mail that has been taken and is neither sent nor given up.
/// The files' names sort as the mails were taken. Failures throw RuntimeError naming the path. Taking
/// and listing belong to one thread, the rest to any.
class Outbox {
 public:
  /// The folder is made with the first mail.
  explicit Outbox(std::string folder) : folder_(std::move(folder)) {}

  /// Keeps a mail, durable on return, readable by this user alone; returns the file's path. The attached file
  /// gets a second name here where its disk allows, and is sent whole even if it is moved or deleted before.
  std::string Keep(const Envelope& envelope);

  /// The files of all mails, the oldest first. None when there is no folder.
  std::vector<std::string> Waiting() const;

  /// The mail in a file; nothing when the file is damaged.
  static std::optional<Envelope> Read(const std::string& path);

  /// Where the attachment `attachment` of the mail in the file `path` is read: from its second name, else
  /// from its own. `path` is empty for a mail that could not be kept.
  static std::string SourceOf(const std::string& attachment, const std::string& path);

  /// Sets a damaged file aside; returns its new path.
  static std::string SetAside(const std::string& path);

  /// Forgets a mail, durable on return.
  static void Remove(const std::string& path);

 private:
  std::string folder_;
  unsigned last_ = 0;  ///< the number in the newest file's name
};

}  // namespace orven
