// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/listen_trouble.h"

#include <cerrno>

#include "adapters/line/sip/libre.h"

namespace orven {
namespace {

std::string Reason(const ListenAddress& listen, int error) {
  const bool named = listen.hosts == ListenAddress::Hosts::kName;
  if (error == EINVAL) return "a link-local address needs its network, as in [fe80::5%eth0]:5060";
  if (named && error == ENOENT) return "its address cannot be found";
  if (named && error == EADDRNOTAVAIL) return "it has no address of this computer";
  return ErrorText(error);
}

const char* Sentence(int error) {
  switch (error) {
    case EADDRINUSE:
      return Tr(
          "Port %1 is taken by another program: end that program, or choose another address for calls in "
          "Options, Devices, Lines");
    case EADDRNOTAVAIL:
      return Tr(
          "The address for calls %2 is not an address of this computer now: connect its network, or choose "
          "* as address in Options, Devices, Lines");
    case ENOENT:
      return Tr(
          "The name in the address for calls %2 is not found: choose another address in Options, Devices, "
          "Lines");
    case EACCES:
      return Tr(
          "ORVEN may not use port %1: choose an address for calls with a port above 1023 in Options, "
          "Devices, "
          "Lines");
    default:
      return Tr(
          "ORVEN cannot wait for calls at %2 (%3): choose another address for calls in Options, Devices, "
          "Lines");
  }
}

}  // namespace

LineTrouble CannotListen(const std::string& text, const ListenAddress& listen, int error) {
  const auto reason = Reason(listen, error);
  return {Words(Sentence(error)).Arg(listen.port).Arg(text).Arg(reason),
          "cannot listen on " + text + ": " + reason};
}

Words NoNetwork() {
  return Words("This computer has no network: connect its cable or its Wi-Fi, and calls can come in again");
}

}  // namespace orven
