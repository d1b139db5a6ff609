// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "adapters/line/sim/virtual_time.h"
#include "modem_emulator/modem_emulator.h"

namespace orven::test {

/// A host at the emulated modem, whose bytes it keeps.
class Host {
 public:
  explicit Host(const std::string& profile, const ModemFaults& faults = {})
      : modem(*FindModemProfile(profile), faults, time, time,
              [this](std::span<const std::uint8_t> bytes) { got.append(bytes.begin(), bytes.end()); }) {}

  void Send(const std::string& text) {
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    modem.FromHost(bytes);
  }

  /// What came in `duration`.
  std::string Wait(std::chrono::milliseconds duration) {
    got.clear();
    time.RunFor(duration);
    return got;
  }

  /// The answer to a command line.
  std::string Ask(const std::string& line) {
    Send("AT" + line + "\r");
    return Wait(std::chrono::milliseconds(150));
  }

  /// Without echo, in class 8 with `format`, and off the hook.
  void Answer(const std::string& format) {
    Ask("E0");
    Ask("+FCLASS=8;+VIT=0;+VSM=" + format);
    Ask("+VLS=1");
  }

  VirtualTime time{Clock::WallTime{}};
  std::string got;
  ModemEmulator modem;
};

}  // namespace orven::test
