// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "platform/audio_device.h"
#include "platform/telephony.h"

namespace orven {

/// Counts the calls that one driver offers, from 1. Requests carry it, so a request that
/// arrives after its call ended never affects the next one.
using CallNumber = std::uint32_t;

/// Events from a driver to the line service. A driver may call these on any thread, one at a time, in the
/// order in which things happen; an implementation only queues them and never blocks.
class LineDriverEvents {
 public:
  virtual ~LineDriverEvents() = default;

  virtual void Offered(CallNumber call) = 0;
  /// `count` is 1 for the first ring of each call.
  virtual void Ring(CallNumber call, std::int32_t count) = 0;
  /// As the network sent them (decoded to UTF-8; the service cleans them). Empty: not sent.
  virtual void CallerId(CallNumber call, const std::string& name, const std::string& number) = 0;
  /// Answers exactly one Answer or Drop: kTelephonyOk or a negative TelephonyResult.
  virtual void RequestDone(std::int32_t request, std::int32_t result) = 0;
  virtual void Connected(CallNumber call) = 0;
  /// One key press: '0'-'9', '*', '#', 'A'-'D'. Only while monitoring is on.
  virtual void Digit(CallNumber call, char digit) = 0;
  /// The remote party (or the network) ended an answered call. Not raised after our own Drop, nor for
  /// a call that was never answered.
  virtual void Disconnected(CallNumber call) = 0;
  /// The call is over. Exactly once for each Offered, as its last event; the driver then accepts the next
  /// call.
  virtual void Idle(CallNumber call) = 0;
  /// A fault of the device itself, as one sentence for the user; empty: it works again.
  virtual void Trouble(const std::string& /*text*/) {}
};

/// One telephone device. Operations are called on the user-interface thread and return at once; their
/// results arrive as events.
class LineDriver {
 public:
  virtual ~LineDriver() = default;

  virtual const DeviceCapabilities& Capabilities() const = 0;

  /// Opens the device; from now on calls are reported to `events`, which outlives Close.
  /// kTelephonyOk or a negative TelephonyResult; LastError then says more.
  virtual std::int32_t Open(LineDriverEvents& events) = 0;

  /// Hangs up an active call, releases the device and returns after the driver's last event
  /// (including that call's Idle). Idempotent. Returns within 2 seconds, even if the device or the network
  /// hangs.
  virtual void Close() = 0;

  /// Answers `call`; RequestDone(request, …) and, on success, Connected follow.
  virtual void Answer(CallNumber call, std::int32_t request) = 0;

  /// Ends `call`: hangs up when answered, rejects when not. RequestDone then Idle follow. Dropping a
  /// call that has already ended succeeds.
  virtual void Drop(CallNumber call, std::int32_t request) = 0;

  virtual void MonitorDigits(CallNumber call, bool on) = 0;

  virtual void SetGreetingPhase(CallNumber call, bool on) = 0;

  /// The line's audio: plays to and records from the answered call. Without an answered call, playing
  /// consumes nothing and recording delivers nothing. Lives as long as the driver.
  virtual AudioDevice& Audio() = 0;

  /// One sentence for the log on why the last Open failed; empty when it succeeded.
  virtual std::string LastError() const = 0;
};

}  // namespace orven
