// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/server_lookup.h"

#include <arpa/nameser.h>
#include <netdb.h>
#include <resolv.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace orven {
namespace {

/// The maximum number of concurrent searches: name servers that do not answer delay each one by half a
/// minute.
constexpr int kMostSearches = 4;

/// A host of an SRV record.
struct Host {
  std::string name;
  std::uint16_t port = 0;
  unsigned priority = 0, weight = 0;
};

/// Orders hosts by priority, and those of one priority at random by their weight (RFC 2782).
void SortByWeight(std::vector<Host>& hosts) {
  std::ranges::sort(hosts, {}, &Host::priority);
  for (auto next = hosts.begin(); next != hosts.end(); ++next) {
    const auto end =
        std::find_if(next, hosts.end(), [&](const Host& h) { return h.priority != next->priority; });
    unsigned sum = 0;
    for (auto host = next; host != end; ++host) sum += host->weight + 1;
    unsigned chosen = rand_u32() % sum;
    auto host = next;
    for (; chosen > host->weight; ++host) chosen -= host->weight + 1;
    std::rotate(next, host, host + 1);
  }
}

/// The hosts of the SRV records of `name`, from the current name servers.
std::vector<Host> ServiceHosts(const std::string& name) {
  struct __res_state resolver {};
  if (res_ninit(&resolver) != 0) return {};
  // Two tries of 1 s and 2 s: even if no name server answers, the name may be in /etc/hosts.
  resolver.retrans = 1;
  resolver.retry = 2;
  std::array<unsigned char, NS_MAXMSG> answer{};
  const int size = res_nquery(&resolver, name.c_str(), ns_c_in, ns_t_srv, answer.data(), answer.size());
  res_nclose(&resolver);
  ns_msg message{};
  std::vector<Host> hosts;
  if (size < 0 || ns_initparse(answer.data(), size, &message) != 0) return hosts;
  for (int i = 0; i < ns_msg_count(message, ns_s_an); ++i) {
    ns_rr record{};
    std::array<char, NS_MAXDNAME> host{};
    if (ns_parserr(&message, ns_s_an, i, &record) != 0 || ns_rr_type(record) != ns_t_srv ||
        ns_rr_rdlen(record) < 7) {
      continue;
    }
    const unsigned char* const data = ns_rr_rdata(record);
    if (dn_expand(ns_msg_base(message), ns_msg_end(message), data + 6, host.data(), host.size()) < 0)
      continue;
    hosts.push_back(
        {host.data(), static_cast<std::uint16_t>(ns_get16(data + 4)), ns_get16(data), ns_get16(data + 2)});
  }
  SortByWeight(hosts);
  return hosts;
}

std::vector<Host> HostsOf(const ServerName& server) {
  const bool secure = server.transport == "tls";
  const std::uint16_t usual = secure ? SIP_PORT_TLS : SIP_PORT;
  if (server.port != 0) return {{server.host, server.port}};
  const std::string service = secure ? "_sips._tcp." : "_sip._" + server.transport + '.';
  auto hosts = ServiceHosts(service + server.host);
  if (hosts.empty()) hosts.push_back({server.host, usual});
  return hosts;
}

std::vector<sa> Search(const ServerName& server) {
  std::vector<sa> addresses;
  for (const Host& host : HostsOf(server)) {
    addrinfo wanted{}, *first = nullptr;
    wanted.ai_family = server.family;
    wanted.ai_socktype = SOCK_DGRAM;  // one result for each address
    if (::getaddrinfo(host.name.c_str(), nullptr, &wanted, &first) != 0) continue;
    for (const addrinfo* one = first; one != nullptr; one = one->ai_next) {
      sa address{};
      if (sa_set_sa(&address, one->ai_addr) != 0) continue;
      sa_set_port(&address, host.port);
      addresses.push_back(address);
    }
    ::freeaddrinfo(first);
  }
  return addresses;
}

}  // namespace

/// Outlives the lookup while a search is running.
struct ServerLookup::Shared {
  std::mutex mutex;
  mqueue* queue = nullptr;    ///< guarded; nullptr: the lookup is destroyed
  unsigned wanted = 0;        ///< guarded; the number of the latest search
  int under_way = 0;          ///< guarded
  std::vector<sa> addresses;  ///< guarded; found by the latest search
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
  sa address{};
  if (sa_set_str(&address, server.host.c_str(), server.port) == 0) {
    if (server.port == 0) sa_set_port(&address, server.transport == "tls" ? SIP_PORT_TLS : SIP_PORT);
    return found({address});
  }
  if (!Begin()) return found({});
  found_ = std::move(found);
  try {
    std::thread([shared = shared_, server, number = shared_->wanted] {
      const sched_param ordinary{};
      (void)pthread_setschedparam(pthread_self(), SCHED_OTHER, &ordinary);
      auto addresses = Search(server);
      const std::lock_guard lock(shared->mutex);
      --shared->under_way;
      if (shared->queue == nullptr || shared->wanted != number) return;
      shared->addresses = std::move(addresses);
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
  std::vector<sa> addresses;
  {
    const std::lock_guard lock(lookup.shared_->mutex);
    if (lookup.shared_->wanted != static_cast<unsigned>(id)) return;
    addresses = std::move(lookup.shared_->addresses);
  }
  if (lookup.found_) std::exchange(lookup.found_, nullptr)(std::move(addresses));
}

}  // namespace orven
