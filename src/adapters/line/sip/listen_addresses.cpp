// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/listen_addresses.h"

#include <ifaddrs.h>
#include <net/if.h>

#include <algorithm>
#include <charconv>

namespace orven {

std::optional<sa> ParseListenAddress(const std::string& text) {
  const auto colon = text.rfind(':');
  if (colon == std::string::npos) return std::nullopt;
  std::uint16_t port = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data() + colon + 1, end, port);
  sa address{};
  if (error != std::errc() || last != end || port == 0 ||
      sa_decode(&address, text.data(), text.size()) != 0) {
    return std::nullopt;
  }
  return address;
}

std::vector<sa> ExpandListenAddress(const sa& listen) {
  if (!sa_is_any(&listen)) return {listen};
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return {};
  std::vector<sa> found;
  for (const ifaddrs* one = first; one != nullptr; one = one->ifa_next) {
    constexpr unsigned kUsable = IFF_UP | IFF_RUNNING;
    sa address{};
    if (one->ifa_addr == nullptr || (one->ifa_flags & kUsable) != kUsable ||
        sa_set_sa(&address, one->ifa_addr) != 0 || sa_af(&address) != sa_af(&listen) ||
        sa_is_linklocal(&address)) {
      continue;
    }
    sa_set_port(&address, sa_port(&listen));
    found.push_back(address);
  }
  ::freeifaddrs(first);
  std::stable_partition(found.begin(), found.end(),
                        [](const sa& address) { return !sa_is_loopback(&address); });
  return found;
}

}  // namespace orven
