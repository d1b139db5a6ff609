// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/story.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;
using std::chrono_literals::operator""h;

void WriteLine(Writer& writer) {
  if (writer.OneIn(8))
    writer.story.Add(writer.begin, "answer fails", [](World& world) { world.line->FailAnswers(1); });
  const auto answer = milliseconds(writer.OneIn(3) ? writer.Below(1500) : 20);
  writer.story.Add(writer.begin, "answers after " + std::to_string(answer.count()) + " ms",
                   [answer](World& world) { world.line->SetAnswerDelay(answer); });
  const auto connect = milliseconds(writer.OneIn(4) ? writer.Below(2000) : 0);
  writer.story.Add(writer.begin, "connects after " + std::to_string(connect.count()) + " ms",
                   [connect](World& world) { world.line->SetConnectDelay(connect); });
}

void BreakAudio(Writer& writer, int chances, const std::string& what, std::int32_t TimedWave::*result) {
  if (!writer.OneIn(chances)) return;
  const auto at = writer.OneIn(2) ? writer.begin : writer.Moment();
  writer.story.Add(at, what, [result](World& world) { world.Wave1.*result = kWaveNoDevice; });
  writer.story.Add(at + milliseconds(writer.Below(9000)), what + " no more",
                   [result](World& world) { world.Wave1.*result = kWaveOk; });
}

void WriteAudio(Writer& writer) {
  BreakAudio(writer, 10, "play fails", &TimedWave::play_result);
  BreakAudio(writer, 10, "start of recording fails", &TimedWave::start_result);
  BreakAudio(writer, 12, "record format missing", &TimedWave::query_result);
  BreakAudio(writer, 10, "message cannot be written", &TimedWave::stop_result);
  BreakAudio(writer, 10, "no sound card", &TimedWave::monitor_result);
}

/// The disk: full at the N-th write, for some writes or for good; sometimes lines of the log still fit.
void WriteDisk(Writer& writer) {
  if (!writer.OneIn(5)) return;
  const auto number = static_cast<std::uint64_t>(1 + writer.Below(40));
  const auto count =
      writer.OneIn(3) ? FailingDisk::kForGood : static_cast<std::uint64_t>(1 + writer.Below(6));
  const bool lines_fit = writer.OneIn(2);
  const auto how_long =
      count == FailingDisk::kForGood ? std::string("for good") : std::to_string(count) + " times";
  writer.Sometime("the disk fails at write " + std::to_string(number) + ", " + how_long +
                      (lines_fit ? "; lines of the log fit" : ""),
                  [number, count, lines_fit](World& world) {
                    world.disk.FailAt(number, count);
                    world.disk.spares = [lines_fit](const std::string& path) {
                      return lines_fit && path.ends_with(".txt");
                    };
                  });
  writer.SometimeOneIn(2, "the disk has room", [](World& world) { world.disk.Mend(); });
}

void WriteRecords(Writer& writer) {
  if (writer.OneIn(12)) {
    writer.Sometime("records cannot be written", [](World& world) { world.database_full = true; });
    writer.Sometime("records can be written", [](World& world) { world.database_full = false; });
  }
  writer.SometimeOneIn(10, "list cleared", [](World& world) {
    world.database.Records().clear();
    world.Machine().ListView1.makeList();
  });
  writer.SometimeOneIn(10, "the records' file is lost", [](World& world) { world.database.LoseFile(); });
  if (writer.OneIn(15)) {
    writer.Sometime("the records' folder is gone", [](World& world) {
      world.database.LoseFile();
      world.database.gone = true;
    });
    writer.Sometime("the records' folder is there", [](World& world) { world.database.gone = false; });
  }
}

void WriteClock(Writer& writer) {
  if (!writer.OneIn(4)) return;
  if (writer.OneIn(4)) {
    // Several calls of one world can come in at the very same second.
    writer.story.Add(writer.begin, "the clock is set to the new year", [](World& world) {
      const Clock::WallTime new_year = std::chrono::sys_days(std::chrono::year(2004) / 1 / 1);
      world.time.TurnClock(std::chrono::floor<milliseconds>(new_year - world.time.Now()));
    });
    return;
  }
  const auto at = writer.Moment();
  static constexpr std::pair<const char*, milliseconds> kTurns[] = {
      {"summer time begins", 1h},
      {"summer time ends", -1h},
      {"the clock is set back 3 s", -3s},
      {"the clock is set back a day", -24h},
      {"the clock is set ten years on", 24h * 3652}};
  if (const std::size_t turn = static_cast<std::size_t>(writer.Below(6)); turn < std::size(kTurns)) {
    const auto [what, by] = kTurns[turn];
    return writer.story.Add(at, what, [by](World& world) { world.time.TurnClock(by); });
  }
  const milliseconds left(writer.Below(4000));
  writer.story.Add(at, "midnight in " + std::to_string(left.count()) + " ms", [left](World& world) {
    const auto now = world.time.Now();
    const auto midnight = std::chrono::ceil<std::chrono::days>(now);
    world.time.TurnClock(std::chrono::floor<milliseconds>(midnight - now) - left);
  });
}

void WriteKill(Writer& writer) {
  if (!writer.OneIn(12)) return;
  writer.Sometime("killed, and started again", [](World& world) {
    if (!world.ended) StartAgain(world);
  });
}

}  // namespace

void WriteFaults(Writer& writer) {
  WriteLine(writer);
  WriteAudio(writer);
  WriteDisk(writer);
  WriteRecords(writer);
  WriteClock(writer);
  WriteKill(writer);
}

void MendEverything(World& world) {
  world.line->FailAnswers(0);
  world.line->SetAnswerDelay(milliseconds(20));
  world.line->SetConnectDelay(milliseconds(0));
  auto& wave = world.Wave1;
  wave.play_result = wave.start_result = wave.query_result = wave.stop_result = wave.monitor_result = kWaveOk;
  world.disk.Mend();
  world.database_full = world.database.gone = false;
}

}  // namespace orven::test
