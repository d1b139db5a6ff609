// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/mailbox.h"
#include "platform/audio_device.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"
#include "platform/telephony.h"

namespace orven {

/// How a line recognises idle calls, and where it reports them. User-interface thread.
struct IdleCalls {
  std::function<bool()> in_use;  ///< something is played or recorded on the line with the call
  std::function<void(const std::string& line_of_log)> report;
};

/// The telephony control (the program's `Tapi1`): all telephone lines as the program knows them. It carries
/// the drivers' events to the user-interface thread, keeps a mirror of each line's call, drops events that
/// the mirror contradicts, and answers queries from it. It numbers the requests, and it is the directory of
/// the lines' wave devices. Operations return at once. User-interface thread.
class TelephonyControl : public AudioDevices {
 public:
  /// Gets one event at a time, for each call in this order: InCommingCall first; Ring, CallerID and Diverted
  /// in any number until the call is answered or over (a late CallerID may follow); Proc for each request
  /// (for a late answer it may follow the end of its call); Connected once when answered; MonitorDigit while
  /// connected and monitored; Disconnected when the remote party hung up an answered call; Idle exactly once,
  /// last.
  ///
  /// Caller texts are clean (base/text); what the network did not send is "UNKNOWN"; if it sent nothing about
  /// the caller, there is no event. Trouble may come at any time while the line is open.
  using Receiver = std::function<void(const LineEvent&)>;

  /// `devices` in device-index order. Without `idle` no line ends idle calls.
  TelephonyControl(EventLoop& loop, std::vector<TelephoneDevice> devices, IdleCalls idle = {});
  TelephonyControl(const TelephonyControl&) = delete;
  TelephonyControl& operator=(const TelephonyControl&) = delete;

  /// Closes every line; the events of that are dropped.
  ~TelephonyControl() override;

  /// Whether any line has a call, ringing or answered.
  bool HasCall() const;

  /// Replaces all devices. False, without any change, while a line is open. The old devices stay in memory as
  /// long as this control, because a wave control may still know their audio devices.
  bool Replace(std::vector<TelephoneDevice> devices);

  /// Why the latest LineOpen of this line failed, in the driver's words; empty when it did not.
  std::string OpenFailureOf(std::int32_t index) const;

  /// The same for the line's owner: the cause and the remedy.
  Words OpenTroubleOf(std::int32_t index) const;

  /// Empty: events are dropped.
  void SetEvents(Receiver receiver) { receiver_ = std::move(receiver); }

  /// Finds the devices. kTelephonyNoDevices when there are none.
  std::int32_t LineInitialize() const { return lines_.empty() ? kTelephonyNoDevices : kTelephonyOk; }

  /// Readable text of a result; a positive request number has the text of success.
  std::string ErrorText(std::int32_t result) const;

  std::int32_t GetNumDevs() const { return static_cast<std::int32_t>(lines_.size()); }

  /// Fills `capabilities`; an index without a device gives an empty record.
  void GetDevCaps(std::int32_t index, DeviceCapabilities& capabilities) const;

  bool IsLineOpen(std::int32_t index) const { return OpenAt(index) != nullptr; }

  /// Takes the line with call privileges (4: owner) for media modes (8: automated voice).
  std::int32_t LineOpen(std::int32_t index, std::int32_t privileges, std::int32_t media_modes);

  /// Releases the line. An active call is hung up first; its Idle is raised inside this operation, so no call
  /// is lost at exit.
  std::int32_t LineClose(std::int32_t index);

  /// The call on the line has been answered and our side has not hung up yet. Still true inside the
  /// Disconnected handler, false after it.
  bool IsCallConnected(std::int32_t index) const;

  /// Answers the offered call: a request number, or a negative error.
  std::int32_t LineAnswer(std::int32_t index);

  /// Hangs up the call, or rejects it while it rings: a request number, or a negative error.
  std::int32_t LineDrop(std::int32_t index);

  /// Switches MonitorDigit events for the current call.
  void MonitorDigits(std::int32_t index, bool on);

  /// Wave device number of the line; `direction` 0 asks for playing, 1 for recording.
  std::int32_t GetWaveDeviceId(std::int32_t index, std::int32_t direction = 0) const;

  AudioDevice* Find(std::int32_t number) override;

 private:
  /// The call as the program knows it.
  struct CallMirror {
    CallNumber number = 0;  ///< 0: there is no call
    std::int32_t answer_request = 0;
    bool connected = false;
    bool dropped = false;                           ///< our side has asked to hang up
    bool remote_gone = false;                       ///< the remote side has hung up
    std::vector<std::int32_t> finished_requests{};  ///< completed without the driver, not yet reported
  };

  /// Never freed before the control: drivers and posted tasks refer to it.
  struct Line {
    std::int32_t index;
    TelephoneDevice device;
    bool open = false;
    OpenFailure failure{};  ///< of the latest opening; without texts when it succeeded
    CallMirror call{};
    std::chrono::seconds idle_for{0};  ///< how long the connected call has been idle
    std::unique_ptr<Timer> tmrIdle{};  ///< runs while a call is connected; null if no call is ever ended
    Mailbox<LineEvent> arrived{};
    EventLoop::Task deliver{};  ///< delivers what has arrived
  };

  void Add(std::vector<TelephoneDevice> devices);
  Line* At(std::int32_t index) const;
  Line* OpenAt(std::int32_t index) const;
  void Push(Line& line, LineEvent event);
  void Deliver(Line& line);
  void Take(Line& line, LineEvent event);
  void Raise(const Line& line, LineEvent event) const;
  void TellFinishedRequests(Line& line);
  void CountIdleSecond(Line& line);

  EventLoop& loop_;
  const IdleCalls idle_;
  Receiver receiver_;
  std::int32_t last_request_ = 0;
  std::string open_failure_;  ///< why the latest LineOpen failed, in the driver's words
  std::vector<std::unique_ptr<Line>> lines_;
  std::vector<std::unique_ptr<Line>> replaced_;
  Lifeline lifeline_;
};

}  // namespace orven
