// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/story.h"

#include <algorithm>
#include <initializer_list>
#include <random>
#include <span>

#include "base/runtime_error.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;
using std::chrono_literals::operator""h;

/// Draws random numbers that depend only on the seed. The standard distributions differ between libraries.
struct Writer {
  int Below(int bound) { return static_cast<int>(engine() % static_cast<std::uint64_t>(bound)); }
  bool OneIn(int chances) { return Below(chances) == 0; }
  std::string OneOf(std::initializer_list<const char*> choices) {
    return choices.begin()[Below(static_cast<int>(choices.size()))];
  }
  /// Returns a moment in the current call. Half of them are near a tenth of a second: timers fire then.
  milliseconds Moment() {
    if (OneIn(2)) return begin + milliseconds(Below(9000));
    const int tenths = Below(90);
    return begin + std::max(0ms, milliseconds(tenths * 100 + Below(3) - 1));
  }
  void Add(milliseconds at, std::string what, std::function<void(World&)> act) {
    story.steps.push_back({at, std::move(what), std::move(act)});
  }

  std::mt19937_64 engine;
  Story story;
  milliseconds begin{0};  ///< beginning of the current call
};

/// An event that happens in one of `chances` worlds or calls, with a number from 1 to `most`.
struct Event {
  int chances, most;
  const char* what;
  void (*act)(World& world, int number);
};

/// Reports each mail as sent or refused after a delay, possibly during a later call.
void TellOfMails(World& world, milliseconds after, bool taken) {
  world.Mail1.on_send = [&world, after, taken](const ScriptedMail::Mail& mail) {
    world.time.After(after, [&world, taken, to = mail.recipient] {
      auto* events = world.Mail1.events;
      if (events != nullptr) taken ? events->Done(to) : events->Error(to, "refused");
    });
  };
}

constexpr Event kBefore[] = {
    {1, 12000, "mails are taken after ms", [](World& world, int n) { TellOfMails(world, n * 1ms, true); }},
    {3, 12000, "mails are refused after ms", [](World& world, int n) { TellOfMails(world, n * 1ms, false); }},
    {5, 1, "no program to start",
     [](World& world, int) {
       world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound); };
     }},
    {2, 1, "every question is answered with yes", [](World& world, int) { world.dialogs.yes = true; }},
    {10, 1, "no greeting", [](World& world, int) { world.files.Delete("/home/orven/Greets/Hello.wav"); }},
    {10, 1, "no beep", [](World& world, int) { world.files.Delete("/home/orven/beep.wav"); }},
    {2, 1, "an older message", [](World& world, int) { world.AddMessage("0.wav", 1500ms); }},
    {2, 1, "an older call", [](World& world, int) { world.AddCallWithoutMessage(); }},
    {3, 1, "an older, empty message", [](World& world, int) { world.AddMessage("1.wav", 0ms); }},
    {3, 1, "another older message", [](World& world, int) { world.AddMessage("2.wav", 1500ms); }}};

/// Selects the row in the view first, as a person's click does.
void ClickRow(World& world, int row, void (ListCommands::*click)(std::int32_t)) {
  if (row > world.Machine().ListView1.Count()) return;
  world.views.selection = row;
  (world.Machine().list_commands.*click)(row);
}

/// Clicks in the caller view if it is open.
void ClickView(World& world, void (CallerView::*click)()) {
  auto& view = world.Machine().caller_view;
  if (view.IsOpen()) (view.*click)();
}

/// Makes `count` disk writes fail, starting with the `first` from now. With `lines_fit`, log lines still fit.
void FailDisk(World& world, int first, std::uint64_t count, bool lines_fit) {
  world.disk.FailAt(static_cast<std::uint64_t>(first), count);
  world.disk.spares = [lines_fit](const std::string& path) { return lines_fit && path.ends_with(".txt"); };
}

/// Sets the clock to `left` before the new year.
void TurnToNewYear(World& world, milliseconds left) {
  const Clock::WallTime new_year = std::chrono::sys_days(std::chrono::year(2004) / 1 / 1);
  world.time.TurnClock(std::chrono::floor<milliseconds>(new_year - world.time.Now()) - left);
}

/// Events at any time during a call.
constexpr Event kMeanwhile[] = {
    {10, 1, "another call", [](World& world, int) { world.line->Offer(); }},
    {6, 1, "drop", [](World& world, int) { world.Machine().control.DropInComeCall(); }},
    {6, 1, "answer now", [](World& world, int) { world.Machine().control.AnswerToCall(0, 0, true); }},
    {10, 1, "line off",
     [](World& world, int) {
       world.window->TurnOff();
       world.window->TurnOn();
     }},
    {20, 1, "exit", [](World& world, int) { world.window->Exit(); }},
    {8, 4, "rings", [](World& world, int n) { world.Machine().quick_options.SetRings(std::to_string(n)); }},
    {8, 2, "record", [](World& world, int n) { world.Machine().quick_options.SetRecordMessage(n > 1); }},
    {8, 5, "click", [](World& world, int row) { ClickRow(world, row, &ListCommands::ListView1_Click); }},
    {8, 5, "select", [](World& world, int row) { ClickRow(world, row, &ListCommands::ListView1_Selected); }},
    {8, 1, "play", [](World& world, int) { world.Machine().player.Play(); }},
    {8, 1, "stop", [](World& world, int) { world.Machine().player.PressStop(); }},
    {8, 1, "next", [](World& world, int) { world.Machine().list_commands.Next(); }},
    {8, 1, "back", [](World& world, int) { world.Machine().list_commands.Back(); }},
    {8, 1, "first", [](World& world, int) { world.Machine().list_commands.First(); }},
    {8, 1, "last", [](World& world, int) { world.Machine().list_commands.Last(); }},
    {8, 1, "delete", [](World& world, int) { world.Machine().list_commands.Delete(); }},
    {8, 1, "mark read", [](World& world, int) { world.Machine().list_commands.MarkAsRead(); }},
    {8, 1, "mark unread", [](World& world, int) { world.Machine().list_commands.MarkAsUnread(); }},
    {8, 1, "hide", [](World& world, int) { world.window->Hide(); }},
    {8, 1, "open", [](World& world, int) { world.window->Open(); }},
    {8, 1, "tray", [](World& world, int) { world.window->TrayMouseMove(514 * 15, 15); }},
    {4, 1, "view: answer", [](World& world, int) { ClickView(world, &CallerView::AnswerNow); }},
    {4, 1, "view: drop", [](World& world, int) { ClickView(world, &CallerView::Drop); }},
    {4, 1, "view: ignore", [](World& world, int) { ClickView(world, &CallerView::DoNothing); }},
    {4, 1, "view: close", [](World& world, int) { ClickView(world, &CallerView::Close); }},
    {4, 1, "take begins",
     [](World& world, int) {
       if (!world.Machine().microphone.Busy()) world.Machine().microphone.Start(0);
     }},
    {4, 1, "take ends",
     [](World& world, int) {
       if (world.Machine().microphone.Recording()) world.Machine().microphone.Stop();
     }},
    {10, 1, "clear", [](World& world, int) { world.Machine().list_commands.Clear(); }},
    {10, 1, "the records' file is lost", [](World& world, int) { world.database.LoseFile(); }},
    {25, 1, "the clock: summer time begins", [](World& world, int) { world.time.TurnClock(1h); }},
    {25, 1, "the clock: summer time ends", [](World& world, int) { world.time.TurnClock(-1h); }},
    {25, 1, "the clock is set back 3 s", [](World& world, int) { world.time.TurnClock(-3s); }},
    {25, 1, "the clock is set back a day", [](World& world, int) { world.time.TurnClock(-24h); }},
    {25, 1, "the clock is set ten years on", [](World& world, int) { world.time.TurnClock(24h * 3652); }},
    {25, 4000, "the clock: new year in ms", [](World& world, int n) { TurnToNewYear(world, n * 1ms); }},
    {3, 1500, "answers after ms", [](World& world, int n) { world.line->answer_delay = n * 1ms; }},
    {4, 2000, "connects after ms", [](World& world, int n) { world.line->connect_delay = n * 1ms; }},
    {3, 1, "callerid Anna", [](World& world, int) { world.line->CallerId("Anna", "555"); }},
    {3, 1, "callerid Ben", [](World& world, int) { world.line->CallerId("Ben", "555"); }},
    {9, 1, "callerid, no name", [](World& world, int) { world.line->CallerId("", "555"); }},
    {2, 1, "the caller talks", [](World& world, int) { world.Talk(); }},
    {2, 1, "the caller is silent", [](World& world, int) { world.FallSilent(); }},
    {15, 40, "disk fails at write", [](World& world, int n) { FailDisk(world, n, 1, false); }},
    {15, 6, "disk fails, times",
     [](World& world, int n) { FailDisk(world, 1, static_cast<unsigned>(n), n > 3); }},
    {15, 40, "disk full at write",
     [](World& world, int n) { FailDisk(world, n, FailingDisk::kForGood, n % 2 == 0); }},
    {8, 1, "answer fails", [](World& world, int) { world.line->failing_answers = 1; }},
    {10, 1, "play fails", [](World& world, int) { world.Wave1.play_result = kWaveNoDevice; }},
    {10, 1, "start of recording fails", [](World& world, int) { world.Wave1.start_result = kWaveNoDevice; }},
    {12, 1, "record format missing", [](World& world, int) { world.Wave1.query_result = kWaveNoDevice; }},
    {10, 1, "message cannot be written", [](World& world, int) { world.Wave1.stop_result = kWaveNoDevice; }},
    {10, 1, "no sound card", [](World& world, int) { world.Wave1.monitor_result = kWaveNoDevice; }},
    {12, 1, "records cannot be written", [](World& world, int) { world.database_full = true; }},
    {15, 1, "the records' folder is gone",
     [](World& world, int) {
       world.database.LoseFile();
       world.database.gone = true;
     }},
    {1, 1, "everything works again", [](World& world, int) { MendEverything(world); }},
    {8, 1, "started again",
     [](World& world, int) {
       world.Crash();
       world.Start();
     }}};

void WriteEvents(Writer& writer, std::span<const Event> events, bool before) {
  for (const auto& [chances, most, what, act] : events) {
    if (!writer.OneIn(chances)) continue;
    const int number = 1 + writer.Below(most);
    writer.Add(before ? kBeforeStart : writer.Moment(), what + (" " + std::to_string(number)),
               [act = act, number](World& world) { act(world, number); });
  }
}

void WriteSettings(Writer& writer) {
  const auto set = [&](const std::string& name, const std::string& value) {
    writer.Add(kBeforeStart, "set " + name + " = \"" + value + "\"",
               [name, value](World& world) { world.registry.Set(name, value); });
  };
  set("NumOfRing", writer.OneOf({"1", "2", "3", "4"}));
  set("RecordMessage", writer.OneIn(6) ? "0" : "1");
  set("ListMessageOnly", writer.OneIn(4) ? "1" : "0");
  set("cDropSilence", writer.OneIn(4) ? "0" : "1");
  set("SecSilence", writer.OneOf({"0", "1", "2", "5"}));
  set("MaxRec", writer.OneIn(8) ? "0" : "1");
  set("CompressMessages", writer.OneIn(3) ? "1" : "0");
  set("PreScreen", writer.OneIn(3) ? "1" : "0");
  set("Pass", writer.OneOf({"12", "", "4711", "0"}));
  set("AppTo", writer.OneOf({"program <NAME> <MESSAGE_PATH>", "program", ""}));
  for (const char* choice :
       {"ViewDetails", "WhenMsgViewMsg", "cAnimation", "cCloseCallerView", "cPlayInIdle",
        "ActionsMailAllCalls", "ActionsAppAllCalls", "pMailTo", "WornDelete", "pAppTo"}) {
    set(choice, writer.OneOf({"0", "1"}));
  }
}

void WriteLine(Writer& writer) {
  writer.Add(writer.begin, "offer", [](World& world) { world.line->Offer(); });
  auto at = writer.begin;
  for (int ring = 1 + writer.Below(6); ring > 0; --ring) {
    writer.Add(at, "ring", [](World& world) { world.line->Ring(); });
    at += milliseconds(writer.OneIn(3) ? 1 : writer.Below(2000));  // a third are double rings
  }
}

void WriteKeys(Writer& writer) {
  if (writer.OneIn(2)) return;
  auto at = writer.Moment();
  for (const char key : writer.OneOf({"12*", "4711*", "*", "0*", "12*12*", "999", "1", "#*12*"})) {
    writer.Add(at, std::string("press ") + key, [key](World& world) { world.line->Press(key); });
    at += milliseconds(writer.Below(400));
  }
}

/// Writes one call, which ends with a hang-up.
void WriteCall(Writer& writer) {
  // Several calls of a world can come in in the same second.
  if (writer.OneIn(8)) {
    writer.Add(writer.begin, "the clock: the new year", [](World& world) { TurnToNewYear(world, 0ms); });
  }
  WriteLine(writer);
  WriteKeys(writer);
  WriteEvents(writer, kMeanwhile, false);
  auto end = writer.Moment();
  if (writer.OneIn(5)) end += milliseconds(writer.OneIn(3) ? 250000 : 70000);  // beyond the longest message
  writer.Add(end, "hangup", [](World& world) { world.line->HangUp(); });
  writer.begin = end + milliseconds(writer.Below(700));
}

}  // namespace

Story RandomStory(std::uint64_t seed) {
  Writer writer{std::mt19937_64(seed), {}};
  WriteSettings(writer);
  WriteEvents(writer, kBefore, true);
  for (int calls = 1 + writer.Below(3); calls > 0; --calls) WriteCall(writer);
  auto& story = writer.story;
  story.end = writer.begin;
  std::ranges::stable_sort(story.steps, {}, &Step::at);
  for (std::size_t step = 0; step < story.steps.size(); ++step) story.steps[step].number = step + 1;
  return std::move(story);
}

void MendEverything(World& world) {
  auto& wave = world.Wave1;
  wave.play_result = wave.start_result = wave.query_result = wave.stop_result = wave.monitor_result = kWaveOk;
  world.line->failing_answers = 0;
  world.line->answer_delay = 20ms;
  world.line->connect_delay = 0ms;
  world.disk.Mend();
  world.database_full = world.database.gone = false;
}

}  // namespace orven::test
