// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "adapters/line/sip/libre.h"

namespace orven {

/// One of the addresses at which a line is reached: the SIP library's stack there. What is sent from it says
/// that it comes from this address, and its connections go with it. SIP thread.
class SipStation {
 public:
  struct Events {
    /// A request, of whatever kind.
    std::function<void(const sip_msg&)> heard;
    /// An INVITE that is sound and begins a call.
    std::function<void(SipStation&, const sip_msg&)> invite;
    /// After Close: what was under way is over.
    std::function<void()> closed;
  };

  /// `names` resolves what callers and servers name in a call.
  SipStation(dnsc& names, Events events);
  SipStation(const SipStation&) = delete;
  SipStation& operator=(const SipStation&) = delete;
  ~SipStation();

  /// Begins to take requests. An errno value, or 0.
  int Begin();

  /// Receives at `address`, by UDP and TCP or by the TLS of `context`. An errno value, or 0.
  int Listen(const sa& address);
  int ListenSecurely(const sa& address, tls& context);

  /// Ends when what is under way is over, which may be at once.
  void Close();

  /// Whether `address` is this station's, whatever the port.
  bool Is(const sa& address) const { return sa_cmp(&address_, &address, SA_ADDR); }

  sip& Stack() { return *stack_; }
  sipsess_sock& Sessions() { return *sessions_; }

 private:
  Events events_;
  sa address_{};
  LibrePtr<sip> stack_;
  LibrePtr<sipsess_sock> sessions_;
};

}  // namespace orven
