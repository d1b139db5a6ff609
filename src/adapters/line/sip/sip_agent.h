// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include "adapters/line/sip/connection_guard.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/network_watch.h"
#include "adapters/line/sip/registration.h"
#include "adapters/line/sip/sip_call.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/sip_transports.h"

namespace orven {

/// An open line's SIP side: listens, answers other requests, and has at most one call. SIP thread.
class SipAgent {
 public:
  SipAgent(const SipLineSettings& settings, LineAudio& audio, LineSink events);
  SipAgent(const SipAgent&) = delete;
  SipAgent& operator=(const SipAgent&) = delete;
  ~SipAgent();

  /// Listens and starts to register. Nothing on success.
  std::optional<OpenFailure> Start();

  void Answer(CallNumber call, std::int32_t request);
  void Drop(CallNumber call, std::int32_t request);
  void MonitorDigits(CallNumber call, bool on);

  /// The playing source has its first audio.
  void SourceReady();
  /// Playing or recording has begun.
  void AudioBegun();

  /// Hangs up, removes the registration and calls `done` when the peer has confirmed, or after 1.5 s. Then
  /// the agent is to be destroyed, not from within `done`.
  void Shutdown(std::function<void()> done);

 private:
  bool TakeWithin(SipEndpoint& at, const sip_msg& request);
  void TakeInvite(SipEndpoint& at, const sip_msg& invite);
  void LookAtNetwork(NetworkChange change);
  bool Leave(SipEndpoint& endpoint);
  std::string ContactOf(const sip_msg& invite) const;
  SipCall* Find(CallNumber number) const;
  void AddRegistration(std::size_t at);
  void TakeNews(std::size_t account, const RegistrationNews& news);
  Words AccountTrouble() const;
  void TellTrouble();
  void Finish();
  void TidyMemory();

  const SipLineSettings& settings_;
  LineAudio& audio_;
  const LineSink events_;
  SipTransports transports_;
  std::vector<RegistrationNews> news_;      ///< the latest of each account
  std::optional<SipCallPorts> call_ports_;  ///< of `call_`
  Words trouble_;                           ///< as told
  std::list<Registration> registrations_;   ///< one for each usable account
  std::unique_ptr<SipCall> call_;  ///< the call, or the latest one, which still holds its descriptors
  DescriptorReserve reserve_;      ///< for a call while there is none
  CallNumber calls_ = 0;
  bool closing_ = false;
  NetworkWatch network_;
  MonotonicTimer close_timer_;
  MonotonicTimer tidy_timer_;
  std::function<void()> done_;
};

}  // namespace orven
