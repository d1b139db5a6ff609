// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/mail/curl_library.h"
#include "adapters/mail/outbox.h"
#include "base/durable_file.h"

namespace orven {

/// Whether `path` is a file, which can be attached. True also when that cannot be determined (no permission):
/// reading it then reports the failure.
bool IsAttachable(const std::string& path);

/// An attached file. Its size is the one at opening.
class Attachment {
 public:
  /// Opens the file `source`, which reports call `path`. Throws RuntimeError naming `path`.
  Attachment(std::string path, const std::string& source);

  std::int64_t Size() const { return size_; }

  /// The next bytes; nothing when reading failed or the file has shrunk (Failure).
  std::optional<std::size_t> Read(std::span<char> buffer);
  bool Seek(std::int64_t position);

  /// Why Read returned nothing.
  const std::string& Failure() const { return failure_; }

 private:
  std::string path_;
  Descriptor file_;
  std::int64_t size_ = 0;
  std::int64_t position_ = 0;
  std::string failure_;
};

/// The mail itself, as a transfer's upload. It and `attachment` (nullptr for none) must outlive the transfer.
class Message {
 public:
  Message(CURL* curl, const Envelope& envelope, Attachment* attachment);

  /// Sets it as the transfer's upload, and sender and recipient as in the envelope.
  void Use(const Envelope& envelope) const;

 private:
  using List = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

  void AddText(const std::string& subject);
  void AddAttachment(const std::string& path, Attachment* attachment);

  CURL* curl_;
  List recipients_{nullptr, Curl().slist_free_all};
  List fields_{nullptr, Curl().slist_free_all};
  std::unique_ptr<curl_mime, decltype(&curl_mime_free)> mime_;
};

}  // namespace orven
