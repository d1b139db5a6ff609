// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/channel/message_link.h"

namespace orven {

/// The helper's end of the link `uDat`. Needs a QCoreApplication; one thread.
class ExchangeClient {
 public:
  /// The event loop calls `handlers`; see MessageLink.
  explicit ExchangeClient(MessageLink::Handlers handlers) : handlers_(std::move(handlers)) {}

  /// Connects to the socket at `path`; blocks and retries until `limit` has passed. Returns the reason when
  /// that fails. Refuses a socket of another user. To be called once.
  std::optional<std::string> Connect(const std::string& path, std::chrono::milliseconds limit);

  /// As MessageLink::Send.
  bool Send(std::string_view text) { return link_ && link_->Send(text); }

 private:
  MessageLink::Handlers handlers_;
  std::unique_ptr<MessageLink> link_;
};

}  // namespace orven
