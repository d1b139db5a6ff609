// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_line_settings.h"

#include <cerrno>

#include "adapters/line/sip/libre.h"

namespace orven {
namespace {

/// As written in the account, perhaps with a port.
std::string ServerOf(const SipLineSettings& line) {
  return line.account.substr(line.account.find('@') + 1);
}

bool IsNamed(const std::string& server) {
  sa address{};
  return sa_set_str(&address, server.substr(0, server.rfind(':')).c_str(), 0) != 0;
}

std::string NoRouteText(const SipLineSettings& line, int error) {
  const auto listen = ParseListenAddress(line.listen);
  const bool everywhere = listen && sa_is_any(&*listen);
  return "there is no route from " + line.listen.substr(0, line.listen.rfind(':')) + " to " + ServerOf(line) +
         " (" + ErrorText(error) + ")" +
         (everywhere ? "" : ": 0.0.0.0 as address for calls uses every network");
}

std::string TlsFailureText(const SipLineSettings& line, int error, const std::string& refusal) {
  const std::string words = "no encrypted connection to " + ServerOf(line) + " can be opened (";
  if (!refusal.empty()) return words + "its certificate is not accepted: " + refusal + ")";
  // RFC 3261, section 19.1.2: TLS has a different default port, which is easily forgotten.
  return words + ErrorText(error) + "): the port for TLS is often 5061";
}

}  // namespace

std::optional<SipAccount> AccountOf(const SipLineSettings& settings) {
  pl text{};
  uri parsed{};
  pl_set_str(&text, settings.account.c_str());
  if (uri_decode(&parsed, &text) != 0 || pl_strcasecmp(&parsed.scheme, "sip") != 0 || parsed.user.l == 0 ||
      parsed.host.l == 0) {
    return std::nullopt;
  }
  return SipAccount{std::string(View(parsed.user)), std::string(View(parsed.host)), parsed.port};
}

std::string AccountProblem(const SipLineSettings& settings) {
  if (settings.account.empty()) return {};
  if (!AccountOf(settings)) {
    return "account \"" + settings.account + "\" is not a SIP address like sip:100@example.org";
  }
  if (settings.transport != "udp" && settings.transport != "tcp" && settings.transport != "tls") {
    return "transport \"" + settings.transport + "\" is not udp, tcp or tls";
  }
  return {};
}

std::string ContactUser(const SipLineSettings& settings) {
  const auto account = AccountOf(settings);
  return account ? account->user : "orven";
}

std::string ServerFailureText(const SipLineSettings& line, int error, const std::string& refusal) {
  const auto server = ServerOf(line);
  switch (error) {
    // Results of the library and the resolver for an unknown name.
    case ENOENT:
    case EDESTADDRREQ:
    case EADDRNOTAVAIL:
      if (!IsNamed(server)) return NoRouteText(line, error);
      return "there is no server named " + server + ": its address cannot be found";
    case ETIMEDOUT: return "there is no answer from " + server;
    case ECONNREFUSED:
      return "the connection to " + server + " is refused: nothing listens there for " + line.transport +
             " at this port";
    // EINVAL and EACCES: the socket is bound to this computer or one network, and the server is in another.
    case ENETUNREACH:
    case EHOSTUNREACH:
    case EINVAL:
    case EACCES: return NoRouteText(line, error);
    default: break;
  }
  if (line.transport == "tls") return TlsFailureText(line, error, refusal);
  return server + " cannot be reached (" + ErrorText(error) + ")";
}

}  // namespace orven
