// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_account.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <fstream>

#include "adapters/line/sip/libre.h"

namespace orven {

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

std::string WrittenServer(const SipAccount& account) {
  return account.proxy.empty() ? account.address.substr(account.address.find('@') + 1) : account.proxy;
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

}  // namespace orven
