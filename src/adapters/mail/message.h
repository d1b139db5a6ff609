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

/// Whether `path` leads to something that can be attached: a file. What cannot be told (no permission
/// to look) is taken for one, so that it is reported when it is read.
bool IsAttachable(const std::string& path);

/// A file that is read into a mail. It keeps the size that it had when it was opened.
class Attachment {
 public:
  /// The file `source`, which is called `path` where its owner reads of it. Throws RuntimeError naming
  /// `path`.
  Attachment(std::string path, const std::string& source);

  std::int64_t Size() const { return size_; }

  /// The next bytes; nothing once reading has failed, or the file has become shorter.
  std::optional<std::size_t> Read(std::span<char> buffer);
  bool Seek(std::int64_t position);

  /// Why Read gave nothing.
  const std::string& Failure() const { return failure_; }

 private:
  std::string path_;
  Descriptor file_;
  std::int64_t size_ = 0;
  std::int64_t position_ = 0;
  std::string failure_;
};

/// The mail itself, as a transfer's upload. Lives until the transfer is over; `attachment` (nullptr for
/// none) too.
class Message {
 public:
  Message(CURL* curl, const Envelope& envelope, Attachment* attachment);

  /// Makes it what the transfer sends, from and to whom the envelope says.
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
