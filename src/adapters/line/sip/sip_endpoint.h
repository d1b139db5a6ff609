// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "adapters/line/sip/caller_identity.h"
#include "adapters/line/sip/libre.h"

namespace orven {

/// One of the addresses at which a line is reached: the SIP library's stack there. What is sent from it says
/// that it comes from this address, and its connections go with it. SIP thread.
class SipEndpoint {
 public:
  struct Events {
    /// A request, of whatever kind.
    std::function<void(const sip_msg&)> heard;
    /// An INVITE that is sound and begins a call.
    std::function<void(SipEndpoint&, const sip_msg&)> invite;
    /// After Close: what was under way is over.
    std::function<void()> closed;
  };

  /// `names` resolves what callers and servers name in a call.
  SipEndpoint(dnsc& names, Events events);
  SipEndpoint(const SipEndpoint&) = delete;
  SipEndpoint& operator=(const SipEndpoint&) = delete;
  ~SipEndpoint();

  /// Begins to take requests. An errno value, or 0.
  int Begin();

  /// Receives at `address`, by UDP and TCP or by the TLS of `context`. An errno value, or 0.
  int Listen(const sa& address);
  int ListenSecurely(const sa& address, tls& context);

  /// Ends when what is under way is over, which may be at once.
  void Close();

  /// Whether `address` is this endpoint's, whatever the port.
  bool Is(const sa& address) const { return sa_cmp(&address_, &address, SA_ADDR); }

  sip& Stack() { return *stack_; }
  sipsess_sock& Sessions() { return *sessions_; }

 private:
  Events events_;
  sa address_{};
  LibrePtr<sip> stack_;
  LibrePtr<sipsess_sock> sessions_;
};

/// Header line that names the methods we understand (RFC 3261, section 20.5).
inline constexpr const char* kAllowHeader = "Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, INFO\r\n";

/// Who calls, from the headers of an INVITE.
CallerIdentity CallerOf(const sip_msg& invite);

/// Checks that a request carries what every request must (RFC 3261, section 8.1.1), before anything
/// is made of it. True when it is sound; otherwise it has been answered with a 4xx, or dropped where
/// no answer is possible.
bool IsValidRequest(sip& stack, const sip_msg& request);

/// Widens a UDP socket of `stack` that listens at `address`, so that a request of more than the library's
/// 8 KB is read whole. The library names the socket only by what comes through it: a probe of our own,
/// which is sent here and which TakeProbe takes. Nothing is lost when it does not arrive.
void ProbeSocket(sip& stack, const sa& address);

/// True when `request` was a probe.
bool TakeProbe(const sip_msg& request);

/// Answers a request outside of any call that is no call itself: OPTIONS with what we can do, all
/// other methods with 405.
void AnswerOtherRequest(sip& stack, const sip_msg& request);

}  // namespace orven
