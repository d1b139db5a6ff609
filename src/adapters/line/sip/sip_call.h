// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/media_agreement.h"
#include "adapters/line/sip/reliable_ringing.h"
#include "adapters/line/sip/rtp_stream.h"
#include "adapters/line/sip/session_timer.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "platform/line_driver.h"

namespace orven {

/// What a call needs from its line; all of it outlives the call.
struct SipCallPorts {
  sip* stack;
  sipsess_sock* sessions;
  const SipLineSettings& settings;
  LineAudio& audio;
  const LineSink& events;
  bool from_server;     ///< the call comes from the account's server, which may assert who calls
  std::string contact;  ///< of our answers: the user at the called address, or a whole SIP URI
};

/// One incoming call from its INVITE to its end: the SIP session, its audio and its digits. It raises the
/// call's events; after the last one, Idle, the call is to be deleted (not from within its own operations).
/// SIP thread.
///
///     Ringing ──Answer──► Answered ──ACK or audio──► Connected
///        │                   │                           │
///        ├───────────────────┴─── CANCEL, Drop, lost ────┤
///        │                        BYE ──► Ending ────────┤
///        └───────────────────────────────────────────────┴──► Gone
///
/// An ending call has no session any more, but some of its audio is under way.
class SipCall {
 public:
  enum class State : std::uint8_t { kRinging, kAnswered, kConnected, kEnding, kGone };

  /// Takes the call of a valid INVITE: it rings, and its first events are raised. Refuses a call that cannot
  /// be taken and returns nullptr.
  static std::unique_ptr<SipCall> Accept(const SipCallPorts& ports, CallNumber number, const sip_msg& invite);

  SipCall(const SipCall&) = delete;
  SipCall& operator=(const SipCall&) = delete;
  ~SipCall();

  CallNumber Number() const { return number_; }
  bool Ending() const { return state_ == State::kEnding; }
  bool Gone() const { return state_ == State::kGone; }

  void Answer(std::int32_t request);
  void Drop(std::int32_t request);
  /// Ends the call at once; `by_peer`: not because of us.
  void End(bool by_peer);
  /// Any request. False unless it is the call's and one that the library does not know.
  bool Take(const sip_msg& request);
  void MonitorDigits(bool on) { monitoring_ = on; }
  /// The playing source has its first audio.
  void SourceReady() { stream_->SourceReady(); }
  /// Playing or recording has begun.
  void AudioBegun() { stream_->AudioBegun(); }

 private:
  SipCall(const SipCallPorts& ports, CallNumber number, const sip_msg& invite);

  bool Prepare(const sip_msg& invite);
  bool Begin(const sip_msg& invite);
  void Announce(const sip_msg& invite);
  void Enter(State next);
  void Tell(LineEvent event);
  void Done(std::int32_t request, std::int32_t result);
  void Ring();
  std::string SessionType() const;
  bool RefuseBriefSession(const sip_msg& request);
  std::string RingingHeaders() const;
  void RepeatRinging();
  void EndUnheard();
  bool SendAnswer();
  void Connect();
  void SessionClosed();
  void EndSession();
  void Refresh();

  bool TakeDescription(const sip_msg& message, bool is_offer);
  int TakeOffer(mbuf** answer, const sip_msg& request);
  int TakeAnswer(const sip_msg& message);
  void TakeInfo(const sip_msg& request);
  void TakePrack(const sip_msg& request);
  void TakeUpdate(const sip_msg& request);
  void ConfirmUpdate(const sip_msg& request, mbuf* answer);

  void DigitHeard(DigitSource source, char digit, DigitMerger::Time at);

  const SipCallPorts& ports_;
  const CallNumber number_;
  State state_ = State::kRinging;
  LibrePtr<sipsess> session_;
  std::unique_ptr<RtpStream> stream_;
  std::optional<MediaNegotiation> negotiation_;
  std::optional<MediaAgreement> agreement_;  ///< absent until the peer has offered or answered
  DigitMerger digits_;
  KeyRateLimit key_rate_;
  std::optional<ReliableRinging> reliable_;  ///< where the caller requires it
  SessionTimer session_timer_;
  MonotonicTimer ring_timer_;
  MonotonicTimer ack_timer_;
  std::int32_t rings_ = 0;
  bool monitoring_ = false;
};

}  // namespace orven
