// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/words.h"
#include "platform/audio_device.h"
#include "platform/telephony.h"

namespace orven {

/// Counts the calls that one driver offers, from 1. Requests carry it, so a request that
/// arrives after its call ended never affects the next one.
using CallNumber = std::uint32_t;

/// One thing that happened on a telephone line. Drivers push these values, the telephony control passes them
/// on, and the call sequence handles them: all three use the fields that the kind names.
struct LineEvent {
  enum class Kind : std::uint8_t {
    InCommingCall,  ///< a call is offered; the first event of each call
    Ring,           ///< `number` is 1 for the first ring of each call
    /// `name` and `text` (the number): from a driver as the network sent them, decoded to UTF-8, empty if not
    /// sent; after the control clean and never empty.
    CallerID,
    /// The call was for `name` first and came here for the reason `text`, in a few words. From a driver as
    /// the network told it, decoded to UTF-8, empty if not told; after the control clean, `name` never empty.
    Diverted,
    /// The result of the request `number`, exactly one for each Answer or Drop. From a driver kTelephonyOk or
    /// a negative TelephonyResult; after the control equal to the request on success.
    Proc,
    Connected,     ///< the call was answered
    MonitorDigit,  ///< one key press: '0'-'9', '*', '#', 'A'-'D'; only while monitoring is on
    /// The remote party (or the network) ended an answered call. Not after our own Drop, nor for a call that
    /// was never answered.
    Disconnected,
    /// The call is over. Exactly once for each InCommingCall, as the call's last event; the driver then
    /// accepts the next call.
    Idle,
    /// Calls cannot come in, or not all of them: `trouble` tells the line's owner the cause and the remedy,
    /// in one sentence. Empty: it works again. May come again with another sentence.
    Trouble,
  };

  Kind kind;
  CallNumber call = 0;      ///< 0 for Proc and Trouble, which belong to no call
  std::int32_t line = -1;   ///< device index; the telephony control fills it in
  std::int32_t number = 0;  ///< Ring, Proc
  std::int32_t result = 0;  ///< Proc
  char digit = 0;           ///< MonitorDigit
  std::string name{};       ///< CallerID, Diverted
  std::string text{};       ///< CallerID, Diverted
  Words trouble{};          ///< Trouble
};

/// Where a driver pushes its events: on any thread, one at a time, in the order in which things happen. It
/// only queues them and never blocks.
using LineSink = std::function<void(LineEvent)>;

/// Why a line could not be opened.
struct OpenFailure {
  std::int32_t result = kTelephonyOk;  ///< a negative TelephonyResult
  std::string reason{};                ///< one sentence for the log
  Words trouble{};  ///< cause and remedy for the line's owner, as of LineEvent::Kind::Trouble
};

/// One telephone device. Operations are called on the user-interface thread and return at once; their
/// results arrive as events.
class LineDriver {
 public:
  virtual ~LineDriver() = default;

  /// Opens the device; from now on calls are pushed into `events`. Nothing on success.
  virtual std::optional<OpenFailure> Open(LineSink events) = 0;

  /// Hangs up an active call, releases the device and returns after the driver's last event
  /// (including that call's Idle). Idempotent. Returns within 2 seconds, even if the device or the network
  /// hangs.
  virtual void Close() = 0;

  /// Answers `call`; Proc and, on success, Connected follow.
  virtual void Answer(CallNumber call, std::int32_t request) = 0;

  /// Ends `call`: hangs up when answered, rejects when not. Proc, then Idle follow; for request 0 no Proc is
  /// expected. Dropping a call that has already ended succeeds.
  virtual void Drop(CallNumber call, std::int32_t request) = 0;

  virtual void MonitorDigits(CallNumber call, bool on) = 0;

  /// The line's audio: plays to and records from the answered call. Without an answered call, playing
  /// consumes nothing and recording delivers nothing. Lives as long as the driver.
  virtual AudioDevice& Audio() = 0;
};

/// A line that the telephony control is to control.
struct TelephoneDevice {
  DeviceCapabilities capabilities;
  std::unique_ptr<LineDriver> driver;
  /// The line ends a call on which nothing was played, recorded or keyed for this time; 0: never.
  std::chrono::seconds idle_limit{0};
};

}  // namespace orven
