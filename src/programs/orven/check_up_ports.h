// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "adapters/audio/waveform_reader.h"
#include "adapters/line/setup/file_telephone_lines.h"
#include "checkup/check_up.h"

namespace orven {

/// What one check-up has for itself, so that it disturbs no dialog and no other check-up.
struct CheckUpPorts {
  CheckUpPorts(std::string lines_ini, EventLoop& loop,
               std::function<FileTelephoneLines::Use(std::int32_t)> use, const LineStates& states)
      : lines(std::move(lines_ini), loop, std::move(use), states), reader(loop) {}

  FileTelephoneLines lines;
  FileWaveformReader reader;
};

/// A check-up for another process. It deletes nothing itself: its owner does, once it has answered.
struct CheckUpForOther {
  std::unique_ptr<CheckUpPorts> ports{};
  std::unique_ptr<CheckUp> check_up{};
  bool answered = false;
};

/// What `orven --check` asks the running program.
inline constexpr const char* kCheck = "check";

/// `orven --check`: prints one line for each link of the chain, as the program that runs in the application
/// folder sees it, or what can be seen without one. It changes nothing. Returns the exit code: 1 when
/// anything is bad, and then the machine may not answer; else 0. Needs a QCoreApplication.
int RunCheck(const std::string& application_folder);

}  // namespace orven
