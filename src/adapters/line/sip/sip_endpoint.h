// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "adapters/line/sip/libre.h"

namespace orven {

/// One address of a line, with a stack of the SIP library. Requests from it name this address, and its
/// connections end with it. SIP thread.
class SipEndpoint {
 public:
  struct Events {
    /// Any request.
    std::function<void(const sip_msg&)> heard;
    /// Any valid request. True when it has been taken: it belongs to a call, in a way that the library does
    /// not know.
    std::function<bool(SipEndpoint&, const sip_msg&)> within;
    /// A valid INVITE that begins a call.
    std::function<void(SipEndpoint&, const sip_msg&)> invite;
    /// After Close: all transactions are over.
    std::function<void()> closed;
  };

  /// `names` resolves the names within calls.
  SipEndpoint(dnsc& names, Events events);
  SipEndpoint(const SipEndpoint&) = delete;
  SipEndpoint& operator=(const SipEndpoint&) = delete;
  ~SipEndpoint();

  /// Starts to accept requests. An errno value, or 0.
  int Begin();

  /// Receives at `address`, by UDP and TCP or by the TLS of `context`. An errno value, or 0.
  int Listen(const sa& address);
  int ListenSecurely(const sa& address, tls& context);

  /// Ends when all transactions are over, which may be at once.
  void Close();

  /// Whether `address` is this endpoint's; the port does not matter.
  bool Is(const sa& address) const { return sa_cmp(&address_, &address, SA_ADDR); }

  sip& Stack() { return *stack_; }
  sipsess_sock& Sessions() { return *sessions_; }

 private:
  Events events_;
  sa address_{};
  LibrePtr<sip> stack_;
  LibrePtr<sipsess_sock> sessions_;
};

/// The header lines with the methods and the extensions that we support (RFC 3261, sections 20.5 and 20.37).
inline constexpr const char* kAbilities =
    "Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, INFO, PRACK, UPDATE\r\nSupported: 100rel, timer\r\n";

}  // namespace orven
