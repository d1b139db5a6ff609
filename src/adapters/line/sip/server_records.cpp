// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/server_records.h"

#include <arpa/nameser.h>
#include <netdb.h>
#include <resolv.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <tuple>
#include <utility>

namespace orven {
namespace {

/// A transport in DNS: its service in NAPTR records (RFC 3263, section 4.1) and the beginning of its name in
/// SRV records. For accounts that leave it open, in the order of our preference.
struct Transport {
  std::string_view name;
  std::string_view service;
  std::string_view prefix;
  std::uint16_t port;
};
constexpr std::array kTransports{Transport{"udp", "SIP+D2U", "_sip._udp.", SIP_PORT},
                                 Transport{"tcp", "SIP+D2T", "_sip._tcp.", SIP_PORT},
                                 Transport{"tls", "SIPS+D2T", "_sips._tcp.", SIP_PORT_TLS}};

/// That of an account which leaves it open: UDP (RFC 3263, section 4.1), unless the records name another one.
const Transport& Named(std::string_view name) {
  const auto found = std::ranges::find(kTransports, name, &Transport::name);
  return found != kTransports.end() ? *found : kTransports.front();
}

/// A host of an SRV record.
struct Host {
  std::string name;
  std::uint16_t port = 0;
  std::string_view transport;
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

/// With name servers that do not answer, the few questions after this time are left out.
constexpr std::chrono::seconds kLongestSearch{5};

/// Asks the current name servers.
class Records {
 public:
  using Clock = std::chrono::steady_clock;
  using Take = std::function<void(const ns_msg& message, const unsigned char* data, std::size_t size)>;

  Records() : usable_(res_ninit(&resolver_) == 0) {
    // Two tries of 1 s and 2 s: even if no name server answers, the name may be in /etc/hosts.
    resolver_.retrans = 1;
    resolver_.retry = 2;
  }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
  ~Records() { res_nclose(&resolver_); }

  /// Calls `take` for each record of `name` that has this type.
  void Each(const std::string& name, ns_type type, const Take& take) {
    if (!usable_ || Clock::now() > last_question_) return;
    std::array<unsigned char, NS_MAXMSG> answer{};
    const int size = res_nquery(&resolver_, name.c_str(), ns_c_in, type, answer.data(), answer.size());
    ns_msg message{};
    if (size < 0 || ns_initparse(answer.data(), size, &message) != 0) return;
    for (int i = 0; i < ns_msg_count(message, ns_s_an); ++i) {
      ns_rr record{};
      if (ns_parserr(&message, ns_s_an, i, &record) != 0 || ns_rr_type(record) != type) continue;
      take(message, ns_rr_rdata(record), ns_rr_rdlen(record));
    }
  }

  /// The hosts of the SRV records of `name`. One without a name says that this transport is not offered (RFC
  /// 2782).
  std::vector<Host> Hosts(const std::string& name, std::string_view transport) {
    std::vector<Host> hosts;
    Each(name, ns_t_srv, [&](const ns_msg& message, const unsigned char* data, std::size_t size) {
      std::array<char, NS_MAXDNAME> host{};
      if (size < 7 ||
          dn_expand(ns_msg_base(message), ns_msg_end(message), data + 6, host.data(), host.size()) < 0) {
        return;
      }
      hosts.push_back({host.data(), static_cast<std::uint16_t>(ns_get16(data + 4)), transport, ns_get16(data),
                       ns_get16(data + 2)});
    });
    SortByWeight(hosts);
    return hosts;
  }

 private:
  struct __res_state resolver_ {};
  const bool usable_;
  const Clock::time_point last_question_ = Clock::now() + kLongestSearch;
};

/// Where SRV records are, for one transport, and the rank of this place among others.
struct Service {
  std::string name;
  std::string_view transport;
  unsigned order = 0, preference = 0;
};

/// Takes the next text of a record: its length and its letters.
std::string_view TakeText(const unsigned char*& data, std::size_t& size) {
  if (size == 0) return {};
  const std::size_t length = std::min<std::size_t>(*data, size - 1);
  const std::string_view text(reinterpret_cast<const char*>(data + 1), length);
  data += length + 1;
  size -= length + 1;
  return text;
}

/// The services of the NAPTR records of `host` that we can use, the best first (RFC 3403, section 4.1).
std::vector<Service> ServicesOf(Records& records, const std::string& host) {
  std::vector<Service> services;
  records.Each(host, ns_t_naptr, [&](const ns_msg& message, const unsigned char* data, std::size_t size) {
    if (size < 4) return;
    const unsigned order = ns_get16(data), preference = ns_get16(data + 2);
    data += 4, size -= 4;
    const std::string flags(TakeText(data, size)), service(TakeText(data, size));
    (void)TakeText(data, size);  // a substitution, which SIP does not use
    std::array<char, NS_MAXDNAME> name{};
    const auto known = std::ranges::find_if(kTransports, [&](const Transport& one) {
      return str_casecmp(std::string(one.service).c_str(), service.c_str()) == 0;
    });
    if (known == kTransports.end() || str_casecmp(flags.c_str(), "s") != 0 || size == 0 ||
        dn_expand(ns_msg_base(message), ns_msg_end(message), data, name.data(), name.size()) < 0) {
      return;
    }
    services.push_back({name.data(), known->name, order, preference});
  });
  std::ranges::sort(services, {}, [](const Service& one) { return std::tuple(one.order, one.preference); });
  return services;
}

std::vector<Host> HostsOf(const ServerName& server) {
  const bool open = server.transport == "auto";
  const Transport& transport = Named(server.transport);
  if (server.port != 0) return {{server.host, server.port, transport.name}};
  Records records;
  std::vector<Host> hosts;
  const auto services = open ? ServicesOf(records, server.host) : std::vector<Service>{};
  for (const Service& one : services) {
    std::ranges::move(records.Hosts(one.name, one.transport), std::back_inserter(hosts));
  }
  const auto is_offer = [](const Host& one) { return !one.name.empty(); };
  for (const Transport& one : kTransports) {
    if (std::ranges::none_of(hosts, is_offer) && (open || &one == &transport)) {
      std::ranges::move(records.Hosts(std::string(one.prefix) + server.host, one.name),
                        std::back_inserter(hosts));
    }
  }
  if (hosts.empty()) hosts.push_back({server.host, transport.port, transport.name});
  return hosts;
}

}  // namespace

std::vector<ServerAddress> ServersAt(const ServerName& server) {
  const Transport& transport = Named(server.transport);
  sa address{};
  if (sa_set_str(&address, server.host.c_str(), server.port != 0 ? server.port : transport.port) != 0)
    return {};
  return {{address, std::string(transport.name)}};
}

std::vector<ServerAddress> FindServers(const ServerName& server) {
  std::vector<ServerAddress> servers;
  for (const Host& host : HostsOf(server)) {
    addrinfo wanted{}, *first = nullptr;
    wanted.ai_socktype = SOCK_DGRAM;  // one result for each address
    if (::getaddrinfo(host.name.c_str(), nullptr, &wanted, &first) != 0) continue;
    for (const addrinfo* one = first; one != nullptr; one = one->ai_next) {
      ServerAddress found{{}, std::string(host.transport)};
      if (sa_set_sa(&found.address, one->ai_addr) != 0) continue;
      sa_set_port(&found.address, host.port);
      if (std::ranges::find(servers, found) == servers.end()) servers.push_back(std::move(found));
    }
    ::freeaddrinfo(first);
  }
  return servers;
}

}  // namespace orven
