// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "adapters/line/service/serviced_line.h"
#include "platform/audio_device.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"
#include "platform/telephony.h"

namespace orven {

/// The telephony control over line drivers. It numbers the drivers, hands out request numbers, posts
/// every event to the user-interface thread, and answers every question from its own mirror of the
/// device's state. It is also the directory of the lines' wave devices. User-interface thread.
class LineService : public TelephonyControl, public AudioDevices {
 public:
  /// `devices` in device-index order. Without `idle` no line ends a call by itself.
  LineService(EventLoop& loop, std::vector<TelephoneDevice> devices, IdleCalls idle = {});

  /// Whether a call is up on any line, or rings.
  bool HasCall() const;

  /// Puts other devices in place of those that there are, which are closed. Only while no line is open:
  /// else false, and nothing is done. The old ones live on, closed, until this service goes: a wave
  /// control may still know their audio devices.
  bool Replace(std::vector<TelephoneDevice> devices);

  /// The driver's own words on why the latest LineOpen of this line failed; empty when it did not.
  std::string OpenFailure(std::int32_t index) const;

  void SetEvents(TelephonyEvents* events) override { events_ = events; }
  std::int32_t LineInitialize() override;
  std::string ErrorText(std::int32_t result) const override;
  std::int32_t GetNumDevs() const override { return static_cast<std::int32_t>(lines_.size()); }
  void GetDevCaps(std::int32_t index, DeviceCapabilities& capabilities) const override;
  bool IsLineOpen(std::int32_t index) const override;
  std::int32_t LineOpen(std::int32_t index, std::int32_t privileges, std::int32_t media_modes) override;
  std::int32_t LineClose(std::int32_t index) override;
  bool IsCallConnected(std::int32_t index) const override;
  std::int32_t LineAnswer(std::int32_t index) override;
  std::int32_t LineDrop(std::int32_t index) override;
  void MonitorDigits(std::int32_t index, bool on) override;
  std::int32_t GetWaveDeviceId(std::int32_t index, std::int32_t direction) const override;
  void SetGreetingPhase(std::int32_t index, bool on) override;

  AudioDevice* Find(std::int32_t number) override;

 private:
  void Add(std::vector<TelephoneDevice> devices);
  ServicedLine* At(std::int32_t index) const;
  ServicedLine* OpenLineAt(std::int32_t index) const;

  EventLoop& loop_;
  const IdleCalls idle_;
  TelephonyEvents* events_ = nullptr;
  std::int32_t last_request_ = 0;
  std::string open_failure_;  ///< the driver's own words on the latest LineOpen that failed
  std::vector<std::unique_ptr<ServicedLine>> lines_;
  std::vector<std::unique_ptr<ServicedLine>> replaced_;
};

}  // namespace orven
