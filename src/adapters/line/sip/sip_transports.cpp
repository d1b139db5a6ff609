// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_transports.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include "adapters/line/sip/listen_trouble.h"
#include "adapters/line/sip/tls_context.h"
#include "platform/line_driver.h"

namespace orven {
namespace {

std::unique_ptr<TlsContext> OwnTls(const SipLineSettings& settings) {
  if (!settings.tls_certificate.empty()) return TlsContext::Showing(settings.tls_certificate);
  if (settings.tls_made_certificate.empty()) throw std::runtime_error("tls_listen needs a tls_certificate");
  MakeCertificateOnFirstUse(settings.tls_made_certificate);
  return TlsContext::Showing(settings.tls_made_certificate);
}

bool MayEncrypt(const SipAccount& account) {
  return account.transport == "tls" || account.transport == "auto";
}

/// How often the names in the settings are looked up when nothing else says that they have changed.
constexpr std::chrono::minutes kLookUpAgain{1};

}  // namespace

SipTransports::SipTransports(const SipLineSettings& settings, Events events)
    : settings_(settings),
      events_(std::move(events)),
      names_(Made(dnsc_alloc, nullptr, nullptr, 0U)),
      guard_([this](const sa& local) { return IsOurs(local); }) {}

std::optional<OpenFailure> SipTransports::Start() {
  ReadNameServers();
  if (auto failure = PrepareTls()) return failure;
  if (auto failure = AddListener(settings_.listen, false)) return failure;
  if (own_tls_ != nullptr) {
    if (auto failure = AddListener(settings_.tls_listen, true)) return failure;
  }
  for (Listener& listener : listeners_) {
    if (listener.lookup != nullptr) listener.named = LookUpSoon(listener.listen);
  }
  looked_up_ = std::chrono::steady_clock::now();
  Expand();
  for (Listener& listener : listeners_) {
    if (auto failure = Open(listener)) return failure;
  }
  guard_.Start();
  return std::nullopt;
}

std::optional<OpenFailure> SipTransports::Open(Listener& listener) {
  const Listener* failed = &listener;
  int error = listener.lookup != nullptr && listener.named.empty() ? ENOENT : EADDRNOTAVAIL;
  for (const sa& address : listener.expanded) {
    int result = 0;
    (void)AddPlaces(address, failed, result);
    // An IPv6 address of a network that has just come up is not ready yet; Follow tries it again.
    const bool later = result == EADDRNOTAVAIL && listener.listen.IsEverywhere();
    if (!later && (error = result) != 0) break;
  }
  if (error == 0) return std::nullopt;
  const auto trouble = CannotListen(failed->text, failed->listen, error);
  return OpenFailure{error == EADDRINUSE ? kTelephonyLineInUse : kTelephonyDeviceFailed, trouble.log,
                     trouble.owner};
}

std::optional<OpenFailure> SipTransports::PrepareTls() {
  for (const SipAccount& account : settings_.accounts) {
    if (MayEncrypt(account) && ProblemOf(account).empty()) PrepareTlsTo(ServerOf(account).host);
  }
  try {
    if (!settings_.tls_listen.empty()) own_tls_ = OwnTls(settings_);
  } catch (const std::runtime_error& error) {
    return OpenFailure{kTelephonyDeviceFailed, error.what(),
                       Words("Encrypted calls are not possible, %1: correct the certificates in lines.ini")
                           .Arg(error.what())};
  }
  return std::nullopt;
}

void SipTransports::PrepareTlsTo(const std::string& host) {
  if (servers_tls_.contains(host)) return;
  try {
    servers_tls_.emplace(host, TlsContext::Checking(host, settings_.tls_trust));
  } catch (const std::runtime_error& error) {
    tls_problems_[host] = error.what();
  }
}

std::string SipTransports::ProblemWith(const SipAccount& account) const {
  if (auto problem = ProblemOf(account); !problem.empty()) return problem;
  const auto problem = tls_problems_.find(ServerOf(account).host);
  return MayEncrypt(account) && problem != tls_problems_.end() ? problem->second : "";
}

std::string SipTransports::RefusalOf(const SipAccount& account) const {
  const auto context = servers_tls_.find(ServerOf(account).host);
  return context != servers_tls_.end() ? context->second->Refusal() : "";
}

std::optional<OpenFailure> SipTransports::AddListener(const std::string& text, bool secure) {
  if (const auto listen = ParseListen(text)) {
    listeners_.push_back({text, *listen, secure});
    if (listen->hosts == ListenAddress::Hosts::kName)
      listeners_.back().lookup = std::make_unique<ServerLookup>();
    return std::nullopt;
  }
  return OpenFailure{
      kTelephonyDeviceFailed,
      "listen address \"" + text + "\" is not an address and port like 127.0.0.1:5060",
      Words("The address for calls \"%1\" is not an address and port: correct it in Options, Devices")
          .Arg(text)};
}

/// Without name servers only numeric addresses work.
void SipTransports::ReadNameServers() {
  std::array<sa, 4> servers{};
  auto count = static_cast<std::uint32_t>(servers.size());
  if (dns_srv_get(nullptr, 0, servers.data(), &count) != 0) count = 0;
  (void)dnsc_srv_set(names_.get(), servers.data(), count);
}

void SipTransports::NamesChanged() {
  ReadNameServers();
  LookUpNames();
}

/// A name that is not found keeps its addresses: the name servers may be out of reach for a while.
void SipTransports::LookUpNames() {
  looked_up_ = std::chrono::steady_clock::now();
  for (Listener& listener : listeners_) {
    if (listener.lookup == nullptr) continue;
    const auto take = [this, &listener](const std::vector<ServerAddress>& found) {
      if (found.empty()) return;
      listener.named.clear();
      for (const ServerAddress& one : found) listener.named.push_back(one.address);
      events_.renamed();
    };
    listener.lookup->Find({listener.listen.host, listener.listen.port, "udp"}, take);
  }
}

void SipTransports::Expand() {
  for (Listener& listener : listeners_) {
    listener.expanded = PresentAddresses(listener.listen, listener.named);
  }
}

SipEndpoint* SipTransports::EndpointAt(const sa& address, const TlsContext* server) const {
  const auto found = std::ranges::find_if(
      places_, [&](const Place& place) { return place.server == server && place.endpoint->Is(address); });
  return found != places_.end() ? found->endpoint.get() : nullptr;
}

/// Whether any has been added. `error` is an errno value, or 0; `failed` becomes the listener that failed.
bool SipTransports::AddPlaces(const sa& address, const Listener*& failed, int& error) {
  const std::size_t before = places_.size();
  if (EndpointAt(address) == nullptr) error = AddPlace(address, nullptr, failed);
  for (const auto& [name, server] : servers_tls_) {
    if (error == 0 && EndpointAt(address, server.get()) == nullptr)
      error = AddPlace(address, server.get(), failed);
  }
  return places_.size() != before;
}

int SipTransports::AddPlace(const sa& address, const TlsContext* server, const Listener*& failed) {
  const auto heard = [this](const sip_msg& request) { guard_.Heard(request); };
  const auto closed = [this] {
    if (--closing_ == 0) events_.closed();
  };
  auto endpoint = std::make_unique<SipEndpoint>(
      *names_, SipEndpoint::Events{heard, events_.within, events_.invite, closed});
  int error = endpoint->Begin();
  if (error == 0 && server == nullptr) error = ListenAt(address, *endpoint, failed);
  if (error == 0 && server != nullptr) {
    // Any free ports, which are not published: UDP and TCP only lead out, to those whom a call names.
    sa local = address;
    sa_set_port(&local, 0);
    error = endpoint->Listen(local);
    if (error == 0) error = endpoint->ListenSecurely(local, *server->Get());
  }
  if (error == 0) places_.push_back({std::move(endpoint), server});
  return error;
}

int SipTransports::ListenAt(const sa& address, SipEndpoint& endpoint, const Listener*& failed) {
  for (const Listener& listener : listeners_) {
    for (const sa& here : listener.expanded) {
      if (!sa_cmp(&here, &address, SA_ADDR)) continue;
      failed = &listener;
      const int error =
          listener.secure ? endpoint.ListenSecurely(here, *own_tls_->Get()) : endpoint.Listen(here);
      if (error != 0) return error;
    }
  }
  return 0;
}

bool SipTransports::IsThere(const SipEndpoint& endpoint) const {
  return std::any_of(listeners_.begin(), listeners_.end(), [&endpoint](const Listener& listener) {
    return std::any_of(listener.expanded.begin(), listener.expanded.end(),
                       [&endpoint](const sa& address) { return endpoint.Is(address); });
  });
}

bool SipTransports::Follow() {
  if (std::chrono::steady_clock::now() - looked_up_ >= kLookUpAgain) LookUpNames();
  Expand();
  bool changed = LeaveGone();
  for (Listener& listener : listeners_) {
    for (const sa& address : listener.expanded) {
      const Listener* failed = nullptr;
      listener.error = 0;
      // An address that is not ready yet is tried again at the next call.
      if (AddPlaces(address, failed, listener.error)) changed = true;
    }
  }
  if (changed) guard_.Look();
  return changed;
}

Words SipTransports::Trouble() const {
  for (const Listener& listener : listeners_) {
    const auto has_place = [this](const sa& one) { return EndpointAt(one) != nullptr; };
    const auto& addresses = listener.expanded;
    const bool everywhere = listener.listen.IsEverywhere();
    // What an account's calls need, its registration tells.
    if (everywhere && settings_.accounts.empty() && !HasNetwork()) return NoNetwork();
    // One address is listened at even while this computer does not have it.
    if (!everywhere && (addresses.empty() || !HasAddress(addresses.front())))
      return CannotListen(listener.text, listener.listen, EADDRNOTAVAIL).owner;
    if (!addresses.empty() && std::ranges::none_of(addresses, has_place))
      return CannotListen(listener.text, listener.listen, listener.error).owner;
  }
  return {};
}

bool SipTransports::IsOurs(const sa& local) const {
  return std::ranges::any_of(places_, [&local](const Place& place) {
    return sip_transp_isladdr(&place.endpoint->Stack(), SIP_TRANSP_NONE, &local);
  });
}

bool SipTransports::LeaveGone() {
  return std::erase_if(places_, [this](const Place& place) {
           return !IsThere(*place.endpoint) && events_.leaving(*place.endpoint);
         }) != 0;
}

SipEndpoint* SipTransports::Towards(const SipAccount& account, const ServerAddress& server) {
  const TlsContext* const context =
      server.transport == "tls" ? servers_tls_.at(ServerOf(account).host).get() : nullptr;
  const Listener& own = listeners_.front();
  const auto from = [&](const auto& is_it) {
    const auto found = std::ranges::find_if(own.expanded, is_it);
    return found != own.expanded.end() ? EndpointAt(*found, context) : nullptr;
  };
  const sa local = LocalAddressTowards(server.address);
  auto* const routed = from([&local](const sa& one) { return sa_cmp(&one, &local, SA_ADDR); });
  if (routed != nullptr || own.listen.IsEverywhere()) return routed;
  // Where there is no route, the error of sending says why.
  return from([&server](const sa& one) { return sa_af(&one) == sa_af(&server.address); });
}

void SipTransports::Close() {
  guard_.Stop();
  closing_ = places_.size();
  if (closing_ == 0) return events_.closed();
  for (const Place& place : places_) place.endpoint->Close();
}

}  // namespace orven
