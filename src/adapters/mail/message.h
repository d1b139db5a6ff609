// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "adapters/mail/attachment.h"
#include "adapters/mail/curl_library.h"
#include "adapters/mail/envelope.h"

namespace orven {

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
