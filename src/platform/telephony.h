// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orven {

/// What one telephony device can do.
struct DeviceCapabilities {
  std::string device_name;
  std::int32_t max_rate = 0;  ///< bits per second
  bool caller_id = false;
  bool monitor_digits = false;
  bool generate_digits = false;
  bool data_mode = false;
  bool interactive_voice = false;
  bool automated_voice = false;  ///< can play and record voice by itself
};

/// What is known about a new call. Caller data comes later, with CallerID.
struct CallInformation {
  std::uint32_t call_number = 0;  ///< counts the calls of one line from 1
};

/// Results of the telephony control. Requests give positive request numbers, errors are negative.
enum TelephonyResult : std::int32_t {
  kTelephonyOk = 0,
  kTelephonyBadDevice = -1,  ///< no device has that index
  kTelephonyLineNotOpen = -2,
  kTelephonyLineInUse = -3,  ///< the device, its port or its address is in use
  kTelephonyNoCall = -4,     ///< there is no call to answer or to drop
  kTelephonyAlreadyAnswered = -5,
  kTelephonyDeviceFailed = -6,  ///< the device or the network refused
  kTelephonyNoDevices = -7,     ///< no line is configured
};

/// Events of the telephony control; `line` is the device index. Events arrive on the user-interface thread
/// one at a time, for each call in this order: InCommingCall first; Ring and CallerID in any number until the
/// call is answered or over (a late CallerID may follow); Proc for each request (for a late answer it may
/// follow the end of its call); Connected once when answered; MonitorDigit while connected and monitored;
/// Disconnected when the remote party hung up an answered call; Idle exactly once, last.
class TelephonyEvents {
 public:
  virtual ~TelephonyEvents() = default;

  /// An asynchronous request completed; `result` equals `request` on success, else it is negative.
  virtual void Proc(std::int32_t line, std::int32_t request, std::int32_t result) = 0;
  virtual void InCommingCall(std::int32_t line, const CallInformation& call) = 0;
  virtual void MonitorDigit(std::int32_t line, char digit) = 0;
  virtual void Idle(std::int32_t line) = 0;
  virtual void Disconnected(std::int32_t line) = 0;
  virtual void Connected(std::int32_t line) = 0;
  /// `count` starts at 1 with every call.
  virtual void Ring(std::int32_t line, std::int32_t count) = 0;
  /// Texts are valid UTF-8 without control characters and without double quotes. What the network did
  /// not send is "UNKNOWN"; if it sent nothing about the caller, there is no event.
  virtual void CallerID(std::int32_t line, const std::string& name, const std::string& number) = 0;
  /// A fault of an open line's device, as one sentence for the user; empty: it works again. At any time, also
  /// without a call.
  virtual void Trouble(std::int32_t /*line*/, const std::string& /*text*/) {}
};

/// The telephony control (the program's `Tapi1`). Operations are called on the user-interface thread
/// and return at once.
class TelephonyControl {
 public:
  virtual ~TelephonyControl() = default;

  /// The receiver of the events; nullptr: no receiver.
  virtual void SetEvents(TelephonyEvents* events) = 0;

  /// Finds the devices. kTelephonyNoDevices when there are none.
  virtual std::int32_t LineInitialize() = 0;

  /// Readable text of a result; a positive request number has the text of success.
  virtual std::string ErrorText(std::int32_t result) const = 0;

  virtual std::int32_t GetNumDevs() const = 0;

  /// Fills `capabilities`; an index without a device gives an empty record.
  virtual void GetDevCaps(std::int32_t index, DeviceCapabilities& capabilities) const = 0;

  virtual bool IsLineOpen(std::int32_t index) const = 0;

  /// Takes the line with call privileges (4: owner) for media modes (8: automated voice).
  virtual std::int32_t LineOpen(std::int32_t index, std::int32_t privileges, std::int32_t media_modes) = 0;

  /// Releases the line. An active call is hung up first; its Idle event is raised inside
  /// this operation, so no call is lost at exit.
  virtual std::int32_t LineClose(std::int32_t index) = 0;

  /// The call on the line has been answered and our side has not hung up yet. Still true inside the
  /// Disconnected handler, false after it.
  virtual bool IsCallConnected(std::int32_t index) const = 0;

  /// Answers the offered call: a request number, or a negative error.
  virtual std::int32_t LineAnswer(std::int32_t index) = 0;

  /// Hangs up the call, or rejects it while it rings: a request number, or a negative error.
  virtual std::int32_t LineDrop(std::int32_t index) = 0;

  /// Switches MonitorDigit events for the current call.
  virtual void MonitorDigits(std::int32_t index, bool on) = 0;

  /// Wave device number of the line; `direction` 0 asks for playing, 1 for recording.
  virtual std::int32_t GetWaveDeviceId(std::int32_t index, std::int32_t direction = 0) const = 0;

  /// The greeting starts (true) or has ended (false). Devices that detect digits less reliably while they
  /// play may raise their sensitivity during it.
  virtual void SetGreetingPhase(std::int32_t index, bool on) = 0;
};

}  // namespace orven
