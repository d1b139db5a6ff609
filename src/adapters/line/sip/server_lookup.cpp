// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/server_lookup.h"

#include <sched.h>

#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace orven {
namespace {

/// The maximum number of concurrent searches: name servers that do not answer delay each one by half a
/// minute.
constexpr int kMostSearches = 4;

}  // namespace

/// Outlives the lookup while a search is running.
struct ServerLookup::Shared {
  std::mutex mutex;
  mqueue* queue = nullptr;             ///< guarded; nullptr: the lookup is destroyed
  unsigned wanted = 0;                 ///< guarded; the number of the latest search
  int under_way = 0;                   ///< guarded
  std::vector<ServerAddress> servers;  ///< guarded; found by the latest search
};

ServerLookup::ServerLookup()
    : shared_(std::make_shared<Shared>()), queue_(Made(mqueue_alloc, &ServerLookup::Answered, this)) {
  shared_->queue = queue_.get();
}

ServerLookup::~ServerLookup() {
  const std::lock_guard lock(shared_->mutex);
  shared_->queue = nullptr;
}

void ServerLookup::Find(const ServerName& server, Found found) {
  GiveUp();
  if (auto servers = ServersAt(server); !servers.empty()) return found(std::move(servers));
  if (!Begin()) return found({});
  found_ = std::move(found);
  try {
    std::thread([shared = shared_, server, number = shared_->wanted] {
      const sched_param ordinary{};
      (void)pthread_setschedparam(pthread_self(), SCHED_OTHER, &ordinary);
      auto servers = FindServers(server);
      const std::lock_guard lock(shared->mutex);
      --shared->under_way;
      if (shared->queue == nullptr || shared->wanted != number) return;
      shared->servers = std::move(servers);
      (void)mqueue_push(shared->queue, static_cast<int>(number), nullptr);
    }).detach();
  } catch (const std::system_error&) {
    {
      const std::lock_guard lock(shared_->mutex);
      --shared_->under_way;
    }
    std::exchange(found_, nullptr)({});
  }
}

/// Counts a search; false when too many are running.
bool ServerLookup::Begin() {
  const std::lock_guard lock(shared_->mutex);
  if (shared_->under_way == kMostSearches) return false;
  ++shared_->under_way;
  return true;
}

void ServerLookup::GiveUp() {
  const std::lock_guard lock(shared_->mutex);
  ++shared_->wanted;
  found_ = nullptr;
}

void ServerLookup::Answered(int id, void* /*data*/, void* self) {
  auto& lookup = *static_cast<ServerLookup*>(self);
  std::vector<ServerAddress> servers;
  {
    const std::lock_guard lock(lookup.shared_->mutex);
    if (lookup.shared_->wanted != static_cast<unsigned>(id)) return;
    servers = std::move(lookup.shared_->servers);
  }
  if (lookup.found_) std::exchange(lookup.found_, nullptr)(std::move(servers));
}

}  // namespace orven
