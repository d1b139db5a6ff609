// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "adapters/desktop/instance_link.h"
#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/files/disk_files.h"
#include "adapters/line/own_caller/sound_search.h"
#include "base/paths.h"
#include "core/error_trap.h"
#include "programs/orven/check_up_ports.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// A check-up ends within half a minute.
constexpr auto kLimit = 40s;

/// The first bytes of a file of records.
constexpr std::string_view kRecordsBegin = "SQLite format 3";

/// A Waveform as a check-up needs it: with one peak, or none for a file that cannot be read.
Waveform SoundAt(const std::string& path) {
  Waveform sound;
  const auto samples = ReadSound(path);
  if (samples.empty()) return sound;
  const auto [least, most] = std::ranges::minmax(samples);
  constexpr float kFull = 32768;
  sound.peaks.push_back(std::max(-static_cast<float>(least), static_cast<float>(most)) / kFull);
  return sound;
}

CheckResult PortOf(const TelephoneLines& lines, const TelephoneLine& line) {
  if (line.kind != LineKind::Sip) return Note("It is checked while the program runs.");
  const auto free = lines.FreeAddress(line.listen);
  if (free == line.listen) return Good(Words("%1 is free.").Arg(line.listen));
  return Bad(
      Words("%1 is taken by another program: end that program, or use another address for calls, such as %2.")
          .Arg(line.listen)
          .Arg(free));
}

CheckResult GreetingsOf(const DiskFiles& files, const ApplicationFolder& home) {
  const auto folder = home.Path("\\Greets\\");
  std::vector<std::string> names;
  ErrorTrap::Silent()([&] { names = files.List(folder, "*.wav"); });
  if (names.empty())
    return Bad("There is no greeting, so callers hear only the beep: make one with the program.");
  for (const auto& name : names) {
    const auto result = GreetingResult(name, SoundAt(folder + name));
    if (result.state != CheckResult::State::Good) return result;
  }
  return Good(Words("%1 greetings can be played.").Arg(static_cast<std::int64_t>(names.size())));
}

CheckResult RecordsOf(const DiskFiles& files, const ApplicationFolder& home) {
  const auto path = home.Path("\\Calls");
  if (!files.Exists(path)) return Note("There are no records yet.");
  std::string begin;
  ErrorTrap::Silent()([&] { begin = files.ReadPart(path, 0, kRecordsBegin.size()); });
  return begin == kRecordsBegin
             ? Good("They can be read.")
             : Bad(Words("%1 cannot be read or is damaged: start the program, which saves what "
                         "can be saved.")
                       .Arg(path));
}

/// What can be seen while nobody answers, without a change of any file.
CheckResults WithoutProgram(const ApplicationFolder& home) {
  CheckResults results;
  results.fill(Note("It is checked while the program runs."));
  results.At(CheckLink::Machine) = Bad("The program is not running, so nobody answers: start ORVEN.");
  std::error_code none;
  if (!std::filesystem::exists(home.Path(), none)) return results;
  QtEventLoop loop([](const std::string&) {});
  const LineStates no_states;
  FileTelephoneLines lines(
      home.Path("\\lines.ini"), loop, [](std::int32_t) { return FileTelephoneLines::Use{}; }, no_states);
  const DiskFiles files;
  TelephoneLines::Configured configured;
  ErrorTrap::Silent()([&] { configured = lines.Read(); });
  if (!configured.complaints.empty()) {
    results.At(CheckLink::Line) = Bad(configured.complaints.front());
  } else if (configured.lines.empty()) {
    results.At(CheckLink::Line) = Bad("No telephone line is set up: add one in Options, Devices.");
  } else {
    results.At(CheckLink::Line) = Good(Words("\"%1\" is set up.").Arg(configured.lines.front().name));
    results.At(CheckLink::Port) = PortOf(lines, configured.lines.front());
  }
  results.At(CheckLink::Greeting) = GreetingsOf(files, home);
  results.At(CheckLink::Beep) = BeepResult(SoundAt(home.Path("\\beep.wav")));
  ErrorTrap::Silent()([&] { results.At(CheckLink::Room) = RoomResult(files.Room(home.Path()), false); });
  results.At(CheckLink::Records) = RecordsOf(files, home);
  return results;
}

}  // namespace

int RunCheck(const std::string& application_folder) {
  auto answer = AskRunningProgram(application_folder, kCheck, kLimit);
  if (!answer) {
    const auto results = WithoutProgram(ApplicationFolder(application_folder));
    answer = LinkAnswer{results.AnyBad() ? EXIT_FAILURE : EXIT_SUCCESS, results.Text()};
  }
  std::cout << answer->text << std::flush;
  return answer->code;
}

}  // namespace orven
