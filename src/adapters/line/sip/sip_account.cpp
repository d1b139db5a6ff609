// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_account.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>

#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/listen_address.h"

namespace orven {
namespace {

/// As written in the account, perhaps with a port.
std::string WrittenServer(const SipAccount& account) {
  return account.proxy.empty() ? account.address.substr(account.address.find('@') + 1) : account.proxy;
}

bool IsNamed(const SipAccount& account) {
  return ServersAt(ServerOf(account)).empty();
}

std::string NoRouteText(const SipAccount& account, const std::string& listen, int error) {
  const auto address = ParseListen(listen);
  const bool everywhere = address && address->IsEverywhere();
  const auto from = listen.starts_with(':') ? "*" : listen.substr(0, listen.rfind(':'));
  return "there is no route from " + from + " to " + WrittenServer(account) + " (" + ErrorText(error) + ")" +
         (everywhere ? "" : ": * as address for calls uses every network");
}

std::string TlsFailureText(const std::string& server, int error, const std::string& refusal) {
  const std::string words = "no encrypted connection to " + server + " can be opened (";
  if (!refusal.empty()) return words + "its certificate is not accepted: " + refusal + ")";
  // RFC 3261, section 19.1.2: TLS has a different default port, which is easily forgotten.
  return words + ErrorText(error) + "): the port for TLS is often 5061";
}

}  // namespace

std::optional<HostAndPort> ParseServer(std::string_view text) {
  auto server = ParseHostAndPort(text);
  const bool on_one_network = server && server->host.find('%') != std::string::npos;
  return on_one_network ? std::nullopt : server;
}

std::optional<SipAddress> AddressOf(const SipAccount& account) {
  constexpr std::string_view kScheme = "sip:";
  const std::string_view text = account.address;
  const auto at = std::min(text.find('@'), text.size());
  if (!text.starts_with(kScheme) || at <= kScheme.size() || at == text.size()) return std::nullopt;
  const auto user = text.substr(kScheme.size(), at - kScheme.size());
  const auto server = ParseServer(text.substr(at + 1));
  if (!server || user.find_first_of(" \t<>\"") != user.npos) return std::nullopt;
  return SipAddress{std::string(user), server->host, server->port};
}

bool IsTransport(std::string_view transport) {
  constexpr std::array<std::string_view, 4> kTransports{"udp", "tcp", "tls", "auto"};
  return std::ranges::find(kTransports, transport) != kTransports.end();
}

std::string ProblemOf(const SipAccount& account) {
  if (!AddressOf(account)) {
    return "account \"" + account.address + "\" is not a SIP address like sip:100@example.org";
  }
  if (!account.proxy.empty() && !ParseServer(account.proxy)) {
    return "proxy \"" + account.proxy + "\" is not a server like sip.example.org or 192.0.2.1:5060";
  }
  if (!IsTransport(account.transport)) {
    return "transport \"" + account.transport + "\" is not udp, tcp, tls or auto";
  }
  return {};
}

ServerName ServerOf(const SipAccount& account) {
  const auto server = ParseServer(WrittenServer(account)).value_or(HostAndPort{});
  return {server.host, server.port, account.transport};
}

std::string HostInUri(const std::string& host) {
  return host.find(':') == std::string::npos ? host : '[' + host + ']';
}

std::string InstanceOf(const SipAccount& account, const std::string& installation) {
  std::string computer;
  std::getline(std::ifstream("/etc/machine-id"), computer);
  const std::string name = computer + '\n' + installation + '\n' + account.address;
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  (void)EVP_Digest(name.data(), name.size(), digest.data(), nullptr, EVP_sha256(), nullptr);
  // The version for any other way to make one, and the variant (RFC 9562, section 5.8).
  digest[6] = static_cast<unsigned char>((digest[6] & 0x0F) | 0x80);
  digest[8] = static_cast<unsigned char>((digest[8] & 0x3F) | 0x80);
  std::array<char, 64> text{};
  const unsigned char* const id = digest.data();
  (void)re_snprintf(text.data(), text.size(), "urn:uuid:%w-%w-%w-%w-%w", id, std::size_t{4}, id + 4,
                    std::size_t{2}, id + 6, std::size_t{2}, id + 8, std::size_t{2}, id + 10, std::size_t{6});
  return text.data();
}

std::string ServerFailureText(const SipAccount& account, const std::string& listen,
                              const std::string& transport, int error, const std::string& refusal) {
  const auto server = WrittenServer(account);
  switch (error) {
    // Results of the library and the resolver for an unknown name.
    case ENOENT:
    case EDESTADDRREQ:
    case EADDRNOTAVAIL:
      if (!IsNamed(account)) return NoRouteText(account, listen, error);
      return "there is no server named " + server + ": its address cannot be found";
    case ETIMEDOUT: return "there is no answer from " + server;
    case ECONNREFUSED:
      return "the connection to " + server + " is refused: nothing listens there for " + transport +
             " at this port";
    // EINVAL and EACCES: the socket is bound to this computer or one network, and the server is in another.
    case ENETUNREACH:
    case EHOSTUNREACH:
    case EINVAL:
    case EACCES: return NoRouteText(account, listen, error);
    default: break;
  }
  if (transport == "tls") return TlsFailureText(server, error, refusal);
  return server + " cannot be reached (" + ErrorText(error) + ")";
}

}  // namespace orven
