// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/listen_address.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "adapters/line/sip/host_and_port.h"
#include "adapters/line/sip/server_records.h"

namespace orven {
namespace {

using Hosts = ListenAddress::Hosts;

constexpr std::chrono::milliseconds kSoon{500};

/// The system's parser, because only it knows the networks of link-local addresses; they come and go.
std::vector<sa> Numeric(const ListenAddress& listen) {
  addrinfo wanted{}, *first = nullptr;
  wanted.ai_flags = AI_NUMERICHOST;
  wanted.ai_socktype = SOCK_DGRAM;
  if (::getaddrinfo(listen.host.c_str(), nullptr, &wanted, &first) != 0) return {};
  sa address{};
  const bool known = sa_set_sa(&address, first->ai_addr) == 0;
  ::freeaddrinfo(first);
  sa_set_port(&address, listen.port);
  return known ? std::vector{address} : std::vector<sa>{};
}

bool IsWanted(const ListenAddress& listen, const std::vector<sa>& named, const sa& address) {
  switch (listen.hosts) {
    case Hosts::kEvery: return !sa_is_linklocal(&address);
    case Hosts::kEveryIpv4: return sa_af(&address) == AF_INET && !sa_is_linklocal(&address);
    case Hosts::kEveryIpv6: return sa_af(&address) == AF_INET6 && !sa_is_linklocal(&address);
    default:
      return std::ranges::any_of(named,
                                 [&address](const sa& one) { return sa_cmp(&one, &address, SA_ADDR); });
  }
}

}  // namespace

std::optional<ListenAddress> ParseListen(std::string_view text) {
  const auto port_at = text.starts_with('*') ? 1 : 0;
  const bool every = text.substr(port_at).starts_with(':');
  const auto given =
      every ? ParseHostAndPort("0.0.0.0" + std::string(text.substr(port_at))) : ParseHostAndPort(text);
  if (!given || given->port == 0) return std::nullopt;
  auto hosts = given->kind == HostAndPort::Kind::kName ? Hosts::kName : Hosts::kAddress;
  if (given->host == "0.0.0.0") hosts = every ? Hosts::kEvery : Hosts::kEveryIpv4;
  if (given->host == "::") hosts = Hosts::kEveryIpv6;
  return ListenAddress{hosts, given->host, given->port};
}

std::vector<sa> PresentAddresses(const ListenAddress& listen, const std::vector<sa>& named) {
  if (listen.hosts == Hosts::kAddress) return Numeric(listen);
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return {};
  std::vector<sa> found;
  for (const ifaddrs* one = first; one != nullptr; one = one->ifa_next) {
    constexpr unsigned kUsable = IFF_UP | IFF_RUNNING;
    sa address{};
    if (one->ifa_addr == nullptr || (one->ifa_flags & kUsable) != kUsable ||
        sa_set_sa(&address, one->ifa_addr) != 0 || !IsWanted(listen, named, address)) {
      continue;
    }
    sa_set_port(&address, listen.port);
    found.push_back(address);
  }
  ::freeifaddrs(first);
  std::stable_partition(found.begin(), found.end(),
                        [](const sa& address) { return !sa_is_loopback(&address); });
  return found;
}

/// All of 127.0.0.0/8 is this computer.
bool HasAddress(const sa& address) {
  return sa_is_loopback(&address) || !PresentAddresses({.hosts = Hosts::kName}, {address}).empty();
}

bool HasNetwork() {
  const auto addresses = PresentAddresses({.hosts = Hosts::kEvery}, {});
  return !addresses.empty() && !sa_is_loopback(&addresses.front());
}

std::vector<sa> LookUpSoon(const ListenAddress& listen) try {
  const auto answer = std::make_shared<std::promise<std::vector<sa>>>();
  std::thread([answer, name = listen.host, port = listen.port] {
    std::vector<sa> addresses;
    for (const ServerAddress& one : FindServers({name, port, "udp"})) addresses.push_back(one.address);
    answer->set_value(std::move(addresses));
  }).detach();
  auto addresses = answer->get_future();
  return addresses.wait_for(kSoon) == std::future_status::ready ? addresses.get() : std::vector<sa>{};
} catch (const std::system_error&) {
  return {};
}

}  // namespace orven
