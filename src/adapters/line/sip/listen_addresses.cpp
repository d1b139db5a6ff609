// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/listen_addresses.h"

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
  struct Search {
    const sa& listen;
    std::vector<sa> found;
  } search{listen, {}};
  (void)net_if_apply(
      [](const char*, const sa* address, void* arg) {
        auto& wanted = *static_cast<Search*>(arg);
        if (sa_af(address) != sa_af(&wanted.listen) || sa_is_linklocal(address)) return false;
        wanted.found.push_back(*address);
        sa_set_port(&wanted.found.back(), sa_port(&wanted.listen));
        return false;
      },
      &search);
  std::stable_partition(search.found.begin(), search.found.end(),
                        [](const sa& address) { return !sa_is_loopback(&address); });
  return search.found;
}

}  // namespace orven
