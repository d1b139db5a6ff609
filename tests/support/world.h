// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "adapters/line/sim/virtual_time.h"
#include "base/paths.h"
#include "shell/main_window.h"
#include "support/memory_database.h"
#include "support/memory_disk.h"
#include "support/recording_views.h"
#include "support/test_line.h"
#include "support/timed_wave.h"
#include "telephony/telephony_control.h"

namespace orven::test {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

/// A complete answering machine on virtual time with one simulated line, "Sim". The settings are those of a
/// working installation: 2 rings, recording on, silence detection on, password 4711. Time starts on
/// 31 December 2003 at 14:05:07.
class World : public ScriptedPorts {
 public:
  /// Without `records`, those in memory are used.
  explicit World(DatabaseControl* records = nullptr);

  /// Starts the program. Tests change settings before this call.
  World& Start() {
    window->Show();
    return *this;
  }

  /// Kills the program without restarting it. Only the data on disk remains.
  void Crash();

  /// Returns the lines of the system log without their times.
  std::vector<std::string> SystemLog() const { return LogLines("_Sys.txt"); }
  std::vector<std::string> CallsLog() const { return LogLines("_Calls.txt"); }
  bool Logged(const std::string& text) const { return std::ranges::count(SystemLog(), text) > 0; }
  /// Returns the system log lines that `action` wrote.
  template <class Action>
  std::vector<std::string> LoggedBy(Action action) {
    const auto before = SystemLog().size();
    action();
    const auto lines = SystemLog();
    return {lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end()};
  }

  /// Offers a call and rings until the machine has answered it.
  void CallAndWaitForAnswer();
  /// Does the same and waits until the machine records.
  void CallAndWaitForRecording();
  void Press(const std::string& digits);
  void Talk() { Wave1.SetLevel(1000); }
  void FallSilent() { Wave1.SetLevel(0); }
  void HangUp();
  void RunFor(std::chrono::milliseconds duration) { time.RunFor(duration); }
  void AddMessage(const std::string& name, std::chrono::milliseconds length);
  void AddCallWithoutMessage() {
    database.Put({{kCallMassageName, "none.wav"}, {kType, "-1"}, {kRead, "0"}, {kCallName, "Ben"}});
  }

  AnsweringMachine& Machine() { return window->Machine(); }
  const Call& CurrentCall() { return Machine().call; }

  static constexpr const char* kHome = "/home/orven";
  const std::string messages = std::string(kHome) + "/Messages/";

  VirtualTime time;
  MemoryFiles files;
  FailingDisk& disk = files.disk;  ///< holds the files, the records and the registry
  MemoryRegistry registry;
  MemoryDatabase database;
  ScriptedWaveforms waveforms, take_waveforms;
  PostedBackground background{time};
  RecordingViews views;
  TimedWave Wave1, WavePlay;
  DeviceCapabilities device = VoiceDevice("Sim");  ///< of `line`
  TestLine* line = nullptr;
  std::unique_ptr<TelephonyControl> Tapi1;
  const ApplicationFolder home{kHome};
  bool database_full = false;  ///< every change of a record fails
  bool ended = false;
  std::unique_ptr<MainWindow> window;

 private:
  DatabaseControl& records_;

  void Build();
  std::vector<std::string> LogLines(const std::string& suffix) const;
};

}  // namespace orven::test
