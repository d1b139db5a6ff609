// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>
#include <memory>
#include <optional>
#include <string>

#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "modem_emulator/modem_emulator.h"
#include "modem_emulator/program/audio_files.h"
#include "modem_emulator/program/options.h"
#include "modem_emulator/program/pseudo_terminal.h"

namespace orven::emulator {

/// The emulated modem at its port, with its script, and its report on standard output.
class ModemProgram {
 public:
  explicit ModemProgram(Options options);

 private:
  void Plug();
  void Take(const Step& step);
  void TakeLineStep(const Step& step);
  void ReadInput();
  void WatchInput();
  void Heard(const std::string& news);
  void Tick();
  void Report(const std::string& line) { Report(line, clock_.Uptime()); }
  void Report(const std::string& line, std::chrono::milliseconds at);

  Options options_;
  QtEventLoop loop_;
  QtClock clock_;
  ModemEmulator modem_;
  GrowingWav captured_;
  GrowingWav spoken_;
  GrowingFile sent_;
  std::optional<PseudoTerminal> port_;
  std::unique_ptr<QSocketNotifier> input_;
  std::string input_text_;
  std::unique_ptr<Timer> tick_;
  std::chrono::milliseconds key_reported_at_{0};
  bool speaking_ = false;
  bool quit_ = false;  ///< ends as soon as the modem is on-hook
};

}  // namespace orven::emulator
