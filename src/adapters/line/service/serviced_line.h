// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/line_driver.h"
#include "platform/telephony.h"

namespace orven {

/// Carries a driver's events from its thread to the user-interface thread, in order. They wait here and not
/// in the event loop, so that closing a line can deliver the remaining ones at once.
class DriverEventQueue : public LineDriverEvents {
 public:
  /// `pump` runs on the user-interface thread after events have arrived; it may outlive its owner.
  DriverEventQueue(EventLoop& loop, EventLoop::Task pump) : loop_(loop), pump_(std::move(pump)) {}

  void Offered(CallNumber call) override;
  void Ring(CallNumber call, std::int32_t count) override;
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override;
  void RequestDone(std::int32_t request, std::int32_t result) override;
  void Connected(CallNumber call) override;
  void Digit(CallNumber call, char digit) override;
  void Disconnected(CallNumber call) override;
  void Idle(CallNumber call) override;
  void Trouble(const std::string& text) override;

  /// Delivers the oldest event to `target`. False when none waits. User-interface thread.
  bool DeliverNext(LineDriverEvents& target);

 private:
  using Event = std::function<void(LineDriverEvents&)>;
  void Push(Event event);

  EventLoop& loop_;
  EventLoop::Task pump_;
  std::mutex mutex_;
  std::deque<Event> events_;
};

/// A line that the service is to control.
struct TelephoneDevice {
  std::unique_ptr<LineDriver> driver;
  /// The line ends a call on which nothing was played, recorded or keyed for this time; 0: never.
  std::chrono::seconds idle_limit{0};
};

/// How a line recognises idle calls, and where it reports them. User-interface thread.
struct IdleCalls {
  std::function<bool()> in_use;  ///< something is played or recorded on the line with the call
  std::function<void(const std::string& line_of_log)> report;
};

/// One device of the telephony control: its driver, the mirror of its call as the program knows it,
/// and the translation of the driver's events. User-interface thread.
class ServicedLine : private LineDriverEvents {
 public:
  /// `events` gives the present receiver of telephony events, or nullptr. `idle` outlives the line.
  ServicedLine(std::int32_t index, EventLoop& loop, TelephoneDevice device,
               std::function<TelephonyEvents*()> events, const IdleCalls& idle);
  ~ServicedLine() override;

  const DeviceCapabilities& Capabilities() const { return driver_->Capabilities(); }
  AudioDevice& Audio() { return driver_->Audio(); }
  std::string LastError() const { return driver_->LastError(); }

  bool IsOpen() const { return open_; }
  std::int32_t Open();
  /// Delivers the last events of a call before it returns.
  void Close();

  bool HasCall() const { return call_.number != 0; }
  bool IsCallConnected() const { return call_.connected; }
  std::int32_t Answer(std::int32_t request);
  std::int32_t Drop(std::int32_t request);
  void MonitorDigits(bool on);
  void SetGreetingPhase(bool on);

 private:
  /// The call as the program knows it.
  struct Mirror {
    CallNumber number = 0;  ///< 0: there is no call
    std::int32_t answer_request = 0;
    bool connected = false;
    bool dropped = false;                         ///< our side has asked to hang up
    bool remote_gone = false;                     ///< the remote side has hung up
    std::vector<std::int32_t> finished_requests;  ///< completed without the driver, not yet reported
  };

  void Pump();
  void CountIdleSecond();
  void TellFinishedRequests();
  bool IsCurrent(CallNumber call) const { return call_.number != 0 && call_.number == call; }
  template <class Event, class... Arguments>
  void Raise(Event event, Arguments&&... arguments);

  void Offered(CallNumber call) override;
  void Ring(CallNumber call, std::int32_t count) override;
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override;
  void RequestDone(std::int32_t request, std::int32_t result) override;
  void Connected(CallNumber call) override;
  void Digit(CallNumber call, char digit) override;
  void Disconnected(CallNumber call) override;
  void Idle(CallNumber call) override;
  void Trouble(const std::string& text) override;

  std::int32_t index_;
  EventLoop& loop_;
  std::unique_ptr<LineDriver> driver_;
  std::function<TelephonyEvents*()> events_;
  bool open_ = false;
  Mirror call_;
  const IdleCalls& idle_;
  std::chrono::seconds idle_limit_;
  std::chrono::seconds idle_for_{0};  ///< how long the connected call has been idle
  std::unique_ptr<Timer> tmrIdle_;    ///< runs while a call is connected; null if no call is ever ended
  Lifeline lifeline_;
  DriverEventQueue queue_;
};

}  // namespace orven
