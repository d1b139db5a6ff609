// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/steady_timer.h"
#include "adapters/line/sip/tls_context.h"

namespace orven {

/// Why a line could not be opened.
struct OpenFailure {
  std::int32_t result;  ///< a negative TelephonyResult
  std::string reason;
};

/// The addresses at which a line listens, and its way to the account's server. SIP thread.
class SipTransports {
 public:
  explicit SipTransports(const SipLineSettings& settings);

  /// Listens at everything that `settings` names, and on at addresses that come later. `stack` outlives
  /// the next Stop. Nothing on success.
  std::optional<OpenFailure> Start(sip& stack);

  /// Looks for new addresses no more.
  void Stop() { watch_.Stop(); }

  /// Why the account's server could not prove who it is; empty when it could, or need not.
  std::string ServerRefusal() const { return server_tls_ != nullptr ? server_tls_->Refusal() : ""; }

 private:
  /// One setting that names an address.
  struct Listener {
    std::string text;
    sa address{};               ///< as configured
    std::vector<sa> listening;  ///< what it means
    bool secure;
  };

  std::optional<OpenFailure> AddListener(const std::string& text, bool secure);
  int AddNewAddresses(Listener& listener);
  int Add(const Listener& listener, const sa& address);
  int AddWayToServer(const sa& address);

  const SipLineSettings& settings_;
  sip* stack_ = nullptr;
  std::unique_ptr<TlsContext> own_tls_;     ///< of `tls_listen`
  std::unique_ptr<TlsContext> server_tls_;  ///< of the account
  std::vector<Listener> listeners_;
  SteadyTimer watch_;
};

}  // namespace orven
