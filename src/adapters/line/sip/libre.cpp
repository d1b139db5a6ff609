// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/libre.h"

#include <array>
#include <system_error>

namespace orven {

std::string ErrorWords(int error) {
  return std::generic_category().message(error);
}

std::string AddressText(const sa& address) {
  std::array<char, 64> text{};
  re_snprintf(text.data(), text.size(), "%J", &address);
  return text.data();
}

sa LocalAddressTowards(const sa& peer) {
  sa local{};
  sa_init(&local, sa_af(&peer));
  udp_sock* raw = nullptr;
  if (udp_listen(&raw, &local, nullptr, nullptr) != 0) return local;
  const LibrePtr<udp_sock> socket(raw);
  const int fd = udp_sock_fd(socket.get(), sa_af(&peer));
  sa found{};
  found.len = sizeof(found.u);
  if (::connect(fd, &peer.u.sa, peer.len) != 0 || ::getsockname(fd, &found.u.sa, &found.len) != 0) {
    return local;
  }
  sa_set_port(&found, 0);
  return found;
}

}  // namespace orven
