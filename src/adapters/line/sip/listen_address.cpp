// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/listen_address.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "adapters/line/sip/server_records.h"

namespace orven {
namespace {

using Hosts = ListenAddress::Hosts;

constexpr std::chrono::milliseconds kSoon{500};

bool IsNumeric(int family, std::string_view text) {
  std::array<unsigned char, sizeof(in6_addr)> address{};
  return ::inet_pton(family, std::string(text).c_str(), address.data()) == 1;
}

/// Letters, digits, "-" and "."; the last part is not a number, so that a mistyped address is not a name.
bool IsName(std::string_view text) {
  const auto is_part = [](unsigned char letter) {
    return std::isalnum(letter) != 0 || letter == '-' || letter == '.';
  };
  const std::string_view last = text.substr(text.rfind('.') + 1);
  return std::ranges::all_of(text, is_part) && last.find_first_not_of("0123456789") != last.npos;
}

std::optional<Hosts> HostsOf(std::string_view host, bool bracketed) {
  if (bracketed) {
    if (host == "::") return Hosts::kEveryIpv6;
    const bool valid = IsNumeric(AF_INET6, host.substr(0, host.find('%'))) && !host.ends_with('%');
    return valid ? std::optional(Hosts::kAddress) : std::nullopt;
  }
  if (host.empty() || host == "*") return Hosts::kEvery;
  if (host == "0.0.0.0") return Hosts::kEveryIpv4;
  if (IsNumeric(AF_INET, host)) return Hosts::kAddress;
  return IsName(host) ? std::optional(Hosts::kName) : std::nullopt;
}

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
  const auto colon = text.rfind(':');
  if (colon == text.npos) return std::nullopt;
  std::string_view host = text.substr(0, colon);
  const bool bracketed = host.size() > 2 && host.starts_with('[') && host.ends_with(']');
  if (bracketed) host = host.substr(1, host.size() - 2);
  const auto hosts = HostsOf(host, bracketed);
  std::uint16_t port = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data() + colon + 1, end, port);
  if (!hosts || error != std::errc() || last != end || port == 0) return std::nullopt;
  return ListenAddress{*hosts, std::string(host), port};
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
