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

/// The header line with the methods that we support (RFC 3261, section 20.5).
inline constexpr const char* kAllowHeader = "Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, INFO\r\n";

}  // namespace orven
