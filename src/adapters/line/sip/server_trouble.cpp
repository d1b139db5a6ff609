// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/server_trouble.h"

#include <cerrno>

#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/listen_address.h"
#include "adapters/line/sip/listen_trouble.h"

namespace orven {
namespace {

bool IsNamed(const SipAccount& account) {
  return ServersAt(ServerOf(account)).empty();
}

/// With the places of server, user and answer. `unusual`: it does not refuse the password, but how it is
/// proved.
const char* RefusalSentence(int status, bool unusual) {
  switch (status) {
    case 401:
    case 407:
      if (unusual) return Tr("The server %1 asks for a login that ORVEN does not know: ask its operator");
      return Tr("The server %1 refuses the password of %2: correct it in Options, Devices");
    case 403:
      return Tr("The server %1 does not allow %2 here: correct user and password in Options, Devices");
    case 404:
    case 604: return Tr("The server %1 does not know the user %2: correct it in Options, Devices");
    default: break;
  }
  if (status >= 500) return Tr("The server %1 cannot register %2 now (%3): ORVEN tries again");
  return Tr("The server %1 does not accept %2 (%3): check the account in Options, Devices");
}

}  // namespace

LineTrouble ServerTrouble::Unreachable(const std::string& transport, int error,
                                       const std::string& refusal) const {
  switch (error) {
    // Results of the library and the resolver for an unknown name.
    case ENOENT:
    case EDESTADDRREQ:
    case EADDRNOTAVAIL:
      if (!IsNamed(account_)) return NoRoute(error);
      return {
          !HasNetwork()
              ? NoNetwork()
              : Words(
                    "The server %1 is not found: correct its name in Options, Devices, or check the network")
                    .Arg(WrittenServer(account_)),
          "there is no server named " + WrittenServer(account_) + ": its address cannot be found"};
    case ETIMEDOUT: return {Silent(), "there is no answer from " + WrittenServer(account_)};
    case ECONNREFUSED:
      return {
          Words("Nothing listens at the server %1 for %2: start it, or correct its port in Options, Devices")
              .Arg(WrittenServer(account_))
              .Arg(transport),
          "the connection to " + WrittenServer(account_) + " is refused: nothing listens there for " +
              transport + " at this port"};
    // EINVAL and EACCES: the socket is bound to this computer or one network, and the server is in another.
    case ENETUNREACH:
    case EHOSTUNREACH:
    case EINVAL:
    case EACCES: return NoRoute(error);
    default: break;
  }
  if (transport == "tls") return NoEncryption(error, refusal);
  return {Words("The server %1 cannot be reached (%2): check the network")
              .Arg(WrittenServer(account_))
              .Arg(ErrorText(error)),
          WrittenServer(account_) + " cannot be reached (" + ErrorText(error) + ")"};
}

Words ServerTrouble::Silent() const {
  if (!HasNetwork() && IsNamed(account_)) return NoNetwork();
  return Words("The server %1 does not answer: switch it on, or correct its name in Options, Devices")
      .Arg(WrittenServer(account_));
}

LineTrouble ServerTrouble::ConnectionBroke() const {
  return {Words("The connection to the server %1 breaks again and again: check the network")
              .Arg(WrittenServer(account_)),
          "the connection broke"};
}

LineTrouble ServerTrouble::NoRoute(int error) const {
  const auto listen = ParseListen(listen_);
  const bool everywhere = listen && listen->IsEverywhere();
  const auto from = listen_.starts_with(':') ? "*" : listen_.substr(0, listen_.rfind(':'));
  LineTrouble trouble;
  trouble.log = "there is no route from " + from + " to " + WrittenServer(account_) + " (" +
                ErrorText(error) + ")" + (everywhere ? "" : ": * as address for calls uses every network");
  if (!HasNetwork()) {
    trouble.owner = NoNetwork();
  } else if (everywhere) {
    trouble.owner = Words("No network leads to the server %1: check this computer's network")
                        .Arg(WrittenServer(account_));
  } else {
    trouble.owner =
        Words("No network leads from %1 to the server %2: use * as address for calls in Options, Devices")
            .Arg(from)
            .Arg(WrittenServer(account_));
  }
  return trouble;
}

LineTrouble ServerTrouble::NoEncryption(int error, const std::string& refusal) const {
  const std::string words = "no encrypted connection to " + WrittenServer(account_) + " can be opened (";
  if (!refusal.empty()) {
    return {Words("The certificate of the server %1 is not accepted (%2): correct its name or the trusted "
                  "certificates in Options, Devices")
                .Arg(WrittenServer(account_))
                .Arg(refusal),
            words + "its certificate is not accepted: " + refusal + ")"};
  }
  // RFC 3261, section 19.1.2: TLS has a different default port, which is easily forgotten.
  return {Words("The server %1 opens no encrypted connection (%2): check its port, which is often 5061")
              .Arg(WrittenServer(account_))
              .Arg(ErrorText(error)),
          words + ErrorText(error) + "): the port for TLS is often 5061"};
}

LineTrouble ServerTrouble::Refused(int status, const std::string& reason, const std::string& more) const {
  const auto answer = std::to_string(status) + ' ' + reason;
  const auto user = AddressOf(account_).value_or(SipAddress{}).user;
  return {Words(RefusalSentence(status, !more.empty())).Arg(WrittenServer(account_)).Arg(user).Arg(answer),
          answer + more};
}

}  // namespace orven
