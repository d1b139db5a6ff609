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

/// The telephony control over line drivers. It numbers drivers and requests, posts every event to the
/// user-interface thread, and answers queries from its mirror of the device's state. It is also the directory
/// of the lines' wave devices. User-interface thread.
class LineService : public TelephonyControl, public AudioDevices {
 public:
  /// `devices` in device-index order. Without `idle` no line ends idle calls.
  LineService(EventLoop& loop, std::vector<TelephoneDevice> devices, IdleCalls idle = {});

  /// Whether any line has a call, ringing or answered.
  bool HasCall() const;

  /// Replaces all devices. False, without any change, while a line is open. The old devices stay in memory as
  /// long as this service, because a wave control may still know their audio devices.
  bool Replace(std::vector<TelephoneDevice> devices);

  /// Why the latest LineOpen of this line failed, in the driver's words; empty when it did not.
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
  std::string open_failure_;  ///< why the latest LineOpen failed, in the driver's words
  std::vector<std::unique_ptr<ServicedLine>> lines_;
  std::vector<std::unique_ptr<ServicedLine>> replaced_;
};

}  // namespace orven
