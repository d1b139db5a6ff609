// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// One mail, except the login at the server, and what became of it so far.
struct Envelope {
  std::string message_id;  ///< with its angle brackets (RFC 5322, 3.6.4)
  std::string date;        ///< as MailDate writes it
  std::string server;      ///< as the user wrote it
  std::string sender;
  std::string sender_name;
  std::string recipient;
  std::string subject;
  std::string attachment;  ///< an absolute path; empty for none
  std::string text;        ///< lines that end with LF

  std::int64_t tries = 0;      ///< that failed
  std::int64_t first_try = 0;  ///< the first of them, in seconds since 1970
  std::string problem;         ///< why the latest of them failed

  bool operator==(const Envelope&) const = default;
};

/// A unique Message-ID, in the domain of `sender` if that has a valid one.
std::string NewMessageId(std::string_view sender);

/// Convert an envelope to the text of a file in the outbox, and back. ParseEnvelope returns nothing unless
/// the text is complete and exactly as EnvelopeText writes it.
std::string EnvelopeText(const Envelope& envelope);
std::optional<Envelope> ParseEnvelope(std::string_view text);

/// The folder with one small file for each mail that has not been sent: "000000007.mail", or
/// "000000007.failed" when it will not be tried again. The names sort in the order of the mails. Failures
/// throw RuntimeError naming the path. Keep belongs to one thread, the other functions to any.
class Outbox {
 public:
  /// The first mail creates the folder.
  explicit Outbox(std::string folder) : folder_(std::move(folder)) {}

  /// Keeps a mail, durable on return, readable only by this user; returns the file's path. The attached file
  /// gets a hard link here if its disk allows, so that it is sent even if it is moved or deleted before.
  std::string Keep(const Envelope& envelope);

  /// The files of the mails to be sent, and of those that failed and are not acknowledged; the oldest first,
  /// none without a folder.
  std::vector<std::string> Waiting() const;
  std::vector<std::string> Failed() const;

  /// The mail in a file; nothing when the file is damaged.
  static std::optional<Envelope> Read(const std::string& path);

  /// Writes a mail anew, atomically and durable on return.
  static void Update(const std::string& path, const Envelope& envelope);

  /// Takes a mail out of those that are sent; returns its new path.
  static std::string Fail(const std::string& path);

  /// Keeps the file of a failed mail under a name that is not looked at again, without the sound.
  static void Acknowledge(const std::string& path);

  /// The path from which the attachment `attachment` of the mail in the file `path` is read: its hard link,
  /// or else its own. `path` is empty for a mail that could not be kept.
  static std::string SourceOf(const std::string& attachment, const std::string& path);

  /// Sets a damaged file aside; returns its new path.
  static std::string SetAside(const std::string& path);

  /// Removes a mail, durable on return.
  static void Remove(const std::string& path);

 private:
  std::vector<std::string> Mails(std::string_view ending) const;

  std::string folder_;
  unsigned last_ = 0;  ///< the number in the newest file's name
};

}  // namespace orven
