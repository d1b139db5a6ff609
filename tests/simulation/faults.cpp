// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/faults.h"

#include "simulation/desk.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;
using std::chrono_literals::operator""h;

void WriteLine(Dice& dice, Story& story, milliseconds begin) {
  if (dice.OneIn(8)) story.Add(begin, "answer fails", [](World& world) { world.line->FailAnswers(1); });
  const auto answer = milliseconds(dice.OneIn(3) ? dice.Below(1500) : 20);
  story.Add(begin, "answers after " + std::to_string(answer.count()) + " ms",
            [answer](World& world) { world.line->SetAnswerDelay(answer); });
  const auto connect = milliseconds(dice.OneIn(4) ? dice.Below(2000) : 0);
  story.Add(begin, "connects after " + std::to_string(connect.count()) + " ms",
            [connect](World& world) { world.line->SetConnectDelay(connect); });
}

void BreakSound(Dice& dice, Story& story, milliseconds begin, int chances, const std::string& what,
                std::int32_t TimedWave::*result) {
  if (!dice.OneIn(chances)) return;
  const auto at = dice.OneIn(2) ? begin : Moment(dice, begin);
  story.Add(at, what, [result](World& world) { world.Wave1.*result = kWaveNoDevice; });
  story.Add(at + milliseconds(dice.Below(9000)), what + " no more",
            [result](World& world) { world.Wave1.*result = kWaveOk; });
}

void WriteSound(Dice& dice, Story& story, milliseconds begin) {
  BreakSound(dice, story, begin, 10, "play fails", &TimedWave::play_result);
  BreakSound(dice, story, begin, 10, "start of recording fails", &TimedWave::start_result);
  BreakSound(dice, story, begin, 12, "record format missing", &TimedWave::query_result);
  BreakSound(dice, story, begin, 10, "message cannot be written", &TimedWave::stop_result);
  BreakSound(dice, story, begin, 10, "no sound card", &TimedWave::monitor_result);
}

/// The disk: full at the N-th write, for some writes or for good; sometimes lines of the log still fit.
void WriteDisk(Dice& dice, Story& story, milliseconds begin) {
  if (!dice.OneIn(5)) return;
  const auto number = static_cast<std::uint64_t>(1 + dice.Below(40));
  const auto count = dice.OneIn(3) ? FailingDisk::kForGood : static_cast<std::uint64_t>(1 + dice.Below(6));
  const bool lines_fit = dice.OneIn(2);
  const auto how_long =
      count == FailingDisk::kForGood ? std::string("for good") : std::to_string(count) + " times";
  story.Add(Moment(dice, begin),
            "the disk fails at write " + std::to_string(number) + ", " + how_long +
                (lines_fit ? "; lines of the log fit" : ""),
            [number, count, lines_fit](World& world) {
              world.disk.FailAt(number, count);
              world.disk.spares = [lines_fit](const std::string& path) {
                return lines_fit && path.ends_with(".txt");
              };
            });
  if (dice.OneIn(2)) {
    story.Add(Moment(dice, begin), "the disk has room", [](World& world) { world.disk.Mend(); });
  }
}

void WriteRecords(Dice& dice, Story& story, milliseconds begin) {
  if (dice.OneIn(12)) {
    story.Add(Moment(dice, begin), "records cannot be written",
              [](World& world) { world.database_full = true; });
    story.Add(Moment(dice, begin), "records can be written",
              [](World& world) { world.database_full = false; });
  }
  if (dice.OneIn(10)) {
    story.Add(Moment(dice, begin), "list cleared", [](World& world) {
      world.database.Records().clear();
      world.Machine().ListView1.makeList();
    });
  }
  if (dice.OneIn(10)) {
    story.Add(Moment(dice, begin), "the records' file is lost",
              [](World& world) { world.database.LoseFile(); });
  }
  if (dice.OneIn(15)) {
    story.Add(Moment(dice, begin), "the records' folder is gone", [](World& world) {
      world.database.LoseFile();
      world.database.gone = true;
    });
    story.Add(Moment(dice, begin), "the records' folder is there",
              [](World& world) { world.database.gone = false; });
  }
}

void WriteClock(Dice& dice, Story& story, milliseconds begin) {
  if (!dice.OneIn(4)) return;
  if (dice.OneIn(4)) {
    // Several calls of one world can come in at the very same second.
    story.Add(begin, "the clock is set to the new year", [](World& world) {
      const Clock::WallTime new_year = std::chrono::sys_days(std::chrono::year(2004) / 1 / 1);
      world.time.TurnClock(std::chrono::floor<milliseconds>(new_year - world.time.Now()));
    });
    return;
  }
  const auto at = Moment(dice, begin);
  const auto turn = [&](const std::string& what, milliseconds by) {
    story.Add(at, what, [by](World& world) { world.time.TurnClock(by); });
  };
  switch (dice.Below(6)) {
    case 0: return turn("summer time begins", 1h);
    case 1: return turn("summer time ends", -1h);
    case 2: return turn("the clock is set back 3 s", milliseconds(-3000));
    case 3: return turn("the clock is set back a day", -24h);
    case 4: return turn("the clock is set ten years on", 24h * 3652);
    default: break;
  }
  const milliseconds left(dice.Below(4000));
  story.Add(at, "midnight in " + std::to_string(left.count()) + " ms", [left](World& world) {
    const auto now = world.time.Now();
    const auto midnight = std::chrono::ceil<std::chrono::days>(now);
    world.time.TurnClock(std::chrono::floor<milliseconds>(midnight - now) - left);
  });
}

void WriteKill(Dice& dice, Story& story, milliseconds begin) {
  if (!dice.OneIn(12)) return;
  story.Add(Moment(dice, begin), "killed, and started again", [](World& world) {
    if (!world.ended) StartAgain(world);
  });
}

}  // namespace

void WriteFaults(Dice& dice, Story& story, milliseconds begin) {
  WriteLine(dice, story, begin);
  WriteSound(dice, story, begin);
  WriteDisk(dice, story, begin);
  WriteRecords(dice, story, begin);
  WriteClock(dice, story, begin);
  WriteKill(dice, story, begin);
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
