// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/line_driver.h"

namespace orven {
/// As the port of a modem line: the first port that has a voice modem.
inline constexpr const char* kAnyPort = "auto";

/// What state_news says of a modem with which all is well.
inline constexpr const char* kModemReady = "Waiting for calls";

/// One telephone line at a voice modem.
struct ModemLineSettings {
  std::string name = "Modem";   ///< device name
  std::string port = kAnyPort;  ///< path of the serial device, or kAnyPort
  /// The ports that there are, for kAnyPort. Modem's thread.
  std::function<std::vector<std::string>()> find_ports = [] { return std::vector<std::string>(); };
  /// Takes one sentence for the log when something is wrong with the modem and when it works again.
  /// Modem's thread; must not block.
  std::function<void(const std::string&)> report = [](const std::string&) {};
  /// Takes how the line stands, in a few words for its owner. Modem's thread; must not block.
  std::function<void(const std::string&)> state_news = [](const std::string&) {};
};

/// A line at a voice modem (ITU-T V.253, service class 8). While open it owns one thread, on which all of its
/// events are raised and the audio device's source and sink are called.
///
/// Open succeeds also when the modem is not there, or another program has it: it is used as soon as it can
/// be, and what is wrong meanwhile is told as Trouble. It fails with kTelephonyDeviceFailed when its owner
/// may not use the port. The modem transmits or receives: while something plays, a recording gets silence.
/// `clock` outlives the line.
std::unique_ptr<LineDriver> MakeModemLine(ModemLineSettings settings, const Clock& clock);

}  // namespace orven
