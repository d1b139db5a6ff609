// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace orven {

/// What one telephony device can do.
struct DeviceCapabilities {
  std::string device_name{};
  std::int32_t max_rate = 0;  ///< bits per second
  bool caller_id = false;
  bool monitor_digits = false;
  bool generate_digits = false;
  bool data_mode = false;
  bool interactive_voice = false;
  bool automated_voice = false;  ///< can play and record voice by itself
};

/// A device that can do what an answering machine needs, with audio of `max_rate` bits per second.
inline DeviceCapabilities VoiceDevice(std::string name, std::int32_t max_rate = 64'000) {
  return {.device_name = std::move(name),
          .max_rate = max_rate,
          .caller_id = true,
          .monitor_digits = true,
          .interactive_voice = true,
          .automated_voice = true};
}

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

}  // namespace orven
