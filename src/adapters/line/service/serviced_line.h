// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "adapters/line/service/driver_events.h"
#include "platform/line_driver.h"
#include "platform/telephony.h"

namespace orven {

/// One device of the telephony control: its driver, the mirror of its call as the program knows it,
/// and the translation of the driver's events. User-interface thread.
class ServicedLine : private LineDriverEvents {
 public:
  /// `events` gives the present receiver of telephony events, or nullptr.
  ServicedLine(std::int32_t index, EventLoop& loop, std::unique_ptr<LineDriver> driver,
               std::function<TelephonyEvents*()> events);
  ~ServicedLine() override;

  const DeviceCapabilities& Capabilities() const { return driver_->Capabilities(); }
  AudioDevice& Audio() { return driver_->Audio(); }
  std::string LastError() const { return driver_->LastError(); }

  bool IsOpen() const { return open_; }
  std::int32_t Open();
  /// Raises what is left of a call that is up before it returns.
  void Close();

  bool HasCall() const { return call_.number != 0; }
  bool IsCallConnected() const { return call_.connected; }
  std::int32_t Answer(std::int32_t request);
  std::int32_t Drop(std::int32_t request);
  void MonitorDigits(bool on);
  void SetGreetingPhase(bool on);

 private:
  /// The call as the program has been told of it.
  struct Mirror {
    CallNumber number = 0;  ///< 0: there is no call
    std::int32_t answer_request = 0;
    bool connected = false;
    bool dropped = false;                         ///< our side has asked to hang up
    bool remote_gone = false;                     ///< the remote side has hung up
    std::vector<std::int32_t> finished_requests;  ///< done without the driver, not yet told
  };

  void Pump();
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
  Lifeline lifeline_;
  DriverEventQueue queue_;
};

}  // namespace orven
