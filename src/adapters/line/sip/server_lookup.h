// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/server_records.h"

namespace orven {

/// Finds a server's addresses (FindServers). That may take long, so each search has its own thread; the
/// result of a cancelled search is dropped. SIP thread.
class ServerLookup {
 public:
  /// The best address first; empty when the name is unknown.
  using Found = std::function<void(std::vector<ServerAddress> servers)>;

  ServerLookup();
  ServerLookup(const ServerLookup&) = delete;
  ServerLookup& operator=(const ServerLookup&) = delete;
  ~ServerLookup();

  /// Calls `found` later, or at once when there is nothing to search for. Cancels an earlier search.
  void Find(const ServerName& server, Found found);

  void GiveUp();

 private:
  struct Shared;

  bool Begin();
  static void Answered(int id, void* data, void* self);

  std::shared_ptr<Shared> shared_;
  LibrePtr<mqueue> queue_;
  Found found_;
};

}  // namespace orven
