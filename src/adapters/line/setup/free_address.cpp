// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/free_address.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "adapters/line/sip/listen_address.h"

namespace orven {
namespace {

/// The port above a SIP port belongs to its TLS (RFC 3261, section 19.1.2).
constexpr int kStep = 2;
constexpr int kTries = 500;

/// A name counts as every address, because to look it up takes time.
ListenAddress AtOnce(const std::string& listen) {
  auto where = ParseListen(listen).value_or(ListenAddress{});
  if (where.hosts == ListenAddress::Hosts::kName) where.hosts = ListenAddress::Hosts::kEvery;
  return where;
}

/// An errno value, or 0.
int ErrorOfBinding(const sa& address, int type) {
  const int socket = ::socket(sa_af(&address), type | SOCK_CLOEXEC, 0);
  if (socket < 0) return errno;
  // As the line does: a connection that has just ended does not keep its port.
  const int on = 1;
  if (type == SOCK_STREAM) (void)::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const int error = ::bind(socket, &address.u.sa, address.len) == 0 ? 0 : errno;
  ::close(socket);
  return error;
}

}  // namespace

int ErrorAt(const std::string& listen, const std::vector<std::string>& ours) {
  std::vector<sa> held;
  for (const auto& one : ours) std::ranges::copy(PresentAddresses(AtOnce(one), {}), std::back_inserter(held));
  const auto where = AtOnce(listen);
  const auto addresses = PresentAddresses(where, {});
  for (const sa& address : addresses) {
    const auto is_it = [&address](const sa& one) { return sa_cmp(&one, &address, SA_ALL); };
    if (std::ranges::any_of(held, is_it)) continue;
    for (const int type : {SOCK_DGRAM, SOCK_STREAM}) {
      const int error = ErrorOfBinding(address, type);
      // An IPv6 address of a network that has just come up is not ready yet.
      const bool later = error == EADDRNOTAVAIL && where.IsEverywhere();
      if (error != 0 && !later) return error;
    }
  }
  return addresses.empty() && !where.IsEverywhere() ? EADDRNOTAVAIL : 0;
}

std::optional<std::string> NextFree(const std::string& listen, const std::vector<std::string>& ours) {
  const auto given = ParseListen(listen);
  const auto host = listen.substr(0, listen.rfind(':') + 1);
  for (int i = 0, port = given ? given->port : 0; given && i < kTries && port <= 65535; ++i, port += kStep) {
    const auto address = host + std::to_string(port);
    const int error = ErrorAt(address, ours);
    if (error == 0) return address;
    if (error != EADDRINUSE && error != EACCES) return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace orven
