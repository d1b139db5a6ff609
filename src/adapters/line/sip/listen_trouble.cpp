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
      return Tr("Another program uses port %1: end it, or choose another port in Options, Devices");
    case EADDRNOTAVAIL:
      return Tr("The address for calls %2 is not there: connect its network, or use * in Options, Devices");
    case ENOENT: return Tr("The address for calls %2 is not found: choose another one in Options, Devices");
    case EACCES: return Tr("ORVEN may not use port %1: choose a port above 1023 in Options, Devices");
    default: return Tr("ORVEN cannot wait for calls at %2 (%3): choose another address in Options, Devices");
  }
}

}  // namespace

LineTrouble CannotListen(const std::string& text, const ListenAddress& listen, int error) {
  const auto reason = Reason(listen, error);
  return {Words(Sentence(error)).Arg(listen.port).Arg(text).Arg(reason),
          "cannot listen on " + text + ": " + reason};
}

Words NoNetwork() {
  return Words("This computer has no network: connect its cable or Wi-Fi");
}

}  // namespace orven
