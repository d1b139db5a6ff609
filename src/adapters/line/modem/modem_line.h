// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/line_driver.h"

namespace orven {
/// The port setting that means: the first port with a voice modem.
inline constexpr const char* kAnyPort = "auto";

/// What state_news says when all is well with the modem.
inline constexpr const char* kModemReady = "Waiting for calls";

/// One telephone line at a voice modem.
struct ModemLineSettings {
  std::string port = kAnyPort;  ///< path of the serial device, or kAnyPort
  /// Lists the ports to try for kAnyPort. Called on the modem's thread.
  std::function<std::vector<std::string>()> find_ports = [] { return std::vector<std::string>(); };
  /// Takes one sentence for the log when something is wrong with the modem and when it works again.
  /// Called on the modem's thread; must not block.
  std::function<void(const std::string&)> report = [](const std::string&) {};
  /// Takes the state of the line, in a few words for its owner. Called on the modem's thread; must not block.
  std::function<void(const std::string&)> state_news = [](const std::string&) {};
};

/// A line at a voice modem (ITU-T V.253, service class 8). While open it owns one thread, on which all of its
/// events are raised and the audio device's source and sink are called.
///
/// Open succeeds even when the modem is missing or in use by another program: it is used as soon as possible,
/// and the problem is reported as Trouble until then. It fails with kTelephonyDeviceFailed when the user has
/// no permission for the port. The modem transmits or receives: during playback a recording gets silence.
/// `clock` outlives the line.
std::unique_ptr<LineDriver> MakeModemLine(ModemLineSettings settings, const Clock& clock);

}  // namespace orven
