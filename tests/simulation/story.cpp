// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/story.h"

#include <algorithm>
#include <random>
#include <span>

#include "base/runtime_error.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;
using std::chrono_literals::operator""h;

std::string Text(milliseconds time) {
  return std::to_string(time.count()) + " ms";
}

/// Its draws depend on the seed alone: the standard's distributions differ by library.
struct Writer {
  int Below(int bound) { return static_cast<int>(engine() % static_cast<std::uint64_t>(bound)); }
  bool OneIn(int chances) { return Below(chances) == 0; }
  template <class... Choice>
  std::string OneOf(Choice... choices) {
    const std::string all[] = {choices...};
    return all[Below(static_cast<int>(sizeof...(choices)))];
  }
  /// Any moment of the present call, often one at which the machine is just doing something.
  milliseconds Moment() {
    if (OneIn(2)) return begin + milliseconds(Below(9000));
    const int tenths = Below(90);
    return begin + std::max(0ms, milliseconds(tenths * 100 + Below(3) - 1));
  }
  void Add(milliseconds at, std::string what, std::function<void(World&)> act) {
    story.steps.push_back({at, std::move(what), std::move(act)});
  }
  void Sometime(std::string what, std::function<void(World&)> act) {
    Add(Moment(), std::move(what), std::move(act));
  }

  std::mt19937_64 engine;
  Story story;
  milliseconds begin{0};  ///< of the present call
};

/// Something that happens once in so many worlds or calls. `number`: 1 to 5, a row of the list and the like.
struct Event {
  int chances;
  const char* what;
  void (*act)(World& world, int number);
};

constexpr Event kBefore[] = {
    {5, "no program to start",
     [](World& world, int) {
       world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound); };
     }},
    {2, "every question is answered with yes", [](World& world, int) { world.dialogs.yes = true; }},
    {10, "no greeting file",
     [](World& world, int) { world.files.Delete(std::string(World::kHome) + "/Greets/Hello.wav"); }},
    {10, "no beep file",
     [](World& world, int) { world.files.Delete(std::string(World::kHome) + "/beep.wav"); }},
    {2, "an older message", [](World& world, int) { world.AddMessage("0.wav", 1500ms); }},
    {2, "an older call", [](World& world, int) { world.AddCallWithoutMessage(); }},
    {3, "an older, empty message", [](World& world, int) { world.AddMessage("1.wav", 0ms); }},
    {3, "another older message", [](World& world, int) { world.AddMessage("2.wav", 1500ms); }}};

/// What a person does in the list shows there first.
void ClickRow(World& world, int row, void (ListCommands::*click)(std::int32_t)) {
  if (row > world.Machine().ListView1.Count()) return;
  world.views.selection = row;
  (world.Machine().list_commands.*click)(row);
}

/// There is no caller view to click at when it is not open.
void ClickView(World& world, void (SlidingCallerView::*click)()) {
  auto& view = world.Machine().caller_view;
  if (view.IsOpen()) (view.*click)();
}

/// Turns the clock to so long before the new year.
void TurnToNewYear(World& world, milliseconds left) {
  const Clock::WallTime new_year = std::chrono::sys_days(std::chrono::year(2004) / 1 / 1);
  world.time.TurnClock(std::chrono::floor<milliseconds>(new_year - world.time.Now()) - left);
}

/// What happens around a call, at any time of it, unless the program has ended.
constexpr Event kMeanwhile[] = {
    {10, "another call", [](World& world, int) { world.line->Offer(); }},
    {6, "drop", [](World& world, int) { world.Machine().control.DropInComeCall(); }},
    {6, "answer now", [](World& world, int) { world.Machine().control.AnswerToCall(0, 0, true); }},
    {10, "line off",
     [](World& world, int) {
       world.window->TurnOff();
       world.window->TurnOn();
     }},
    {20, "exit", [](World& world, int) { world.window->Exit(); }},
    {8, "rings",
     [](World& world, int number) { world.Machine().quick_options.SetRings(std::to_string(number)); }},
    {8, "record",
     [](World& world, int number) { world.Machine().quick_options.SetRecordMessage(number > 2); }},
    {8, "click", [](World& world, int row) { ClickRow(world, row, &ListCommands::ListView1_Click); }},
    {8, "select", [](World& world, int row) { ClickRow(world, row, &ListCommands::ListView1_Selected); }},
    {8, "play", [](World& world, int) { world.Machine().player.Play(); }},
    {8, "stop", [](World& world, int) { world.Machine().player.PressStop(); }},
    {8, "next", [](World& world, int) { world.Machine().list_commands.Next(); }},
    {8, "back", [](World& world, int) { world.Machine().list_commands.Back(); }},
    {8, "first", [](World& world, int) { world.Machine().list_commands.First(); }},
    {8, "last", [](World& world, int) { world.Machine().list_commands.Last(); }},
    {8, "delete", [](World& world, int) { world.Machine().list_commands.Delete(); }},
    {8, "mark read", [](World& world, int) { world.Machine().list_commands.MarkAsRead(); }},
    {8, "mark unread", [](World& world, int) { world.Machine().list_commands.MarkAsUnread(); }},
    {8, "hide", [](World& world, int) { world.window->Hide(); }},
    {8, "open", [](World& world, int) { world.window->Open(); }},
    {8, "tray", [](World& world, int) { world.window->TrayMouseMove(514 * 15, 15); }},
    {4, "view: answer", [](World& world, int) { ClickView(world, &SlidingCallerView::AnswerNow); }},
    {4, "view: drop", [](World& world, int) { ClickView(world, &SlidingCallerView::Drop); }},
    {4, "view: ignore", [](World& world, int) { ClickView(world, &SlidingCallerView::DoNothing); }},
    {4, "view: close", [](World& world, int) { ClickView(world, &SlidingCallerView::Close); }},
    {4, "take begins",
     [](World& world, int) {
       if (!world.Machine().microphone.Busy()) world.Machine().microphone.Start(0);
     }},
    {4, "take ends",
     [](World& world, int) {
       if (world.Machine().microphone.Recording()) world.Machine().microphone.Stop();
     }},
    {10, "list cleared",
     [](World& world, int) {
       world.database.Records().clear();
       world.Machine().ListView1.makeList();
     }},
    {10, "the records' file is lost", [](World& world, int) { world.database.LoseFile(); }},
    {25, "the clock: summer time begins", [](World& world, int) { world.time.TurnClock(1h); }},
    {25, "the clock: summer time ends", [](World& world, int) { world.time.TurnClock(-1h); }},
    {25, "the clock is set back 3 s", [](World& world, int) { world.time.TurnClock(-3s); }},
    {25, "the clock is set back a day", [](World& world, int) { world.time.TurnClock(-24h); }},
    {25, "the clock is set ten years on", [](World& world, int) { world.time.TurnClock(24h * 3652); }},
    {25, "the clock: the new year, soon",
     [](World& world, int number) { TurnToNewYear(world, milliseconds(number * 700)); }}};

/// Something that fails for a while.
struct Fault {
  int chances;
  const char* what;
  void (*set)(World& world, bool on);
};

std::int32_t WaveResult(bool fails) {
  return fails ? kWaveNoDevice : kWaveOk;
}

constexpr Fault kFaults[] = {
    {8, "answers fail", [](World& world, bool on) { world.line->FailAnswers(on ? 1 : 0); }},
    {10, "play fails", [](World& world, bool on) { world.Wave1.play_result = WaveResult(on); }},
    {10, "start of recording fails",
     [](World& world, bool on) { world.Wave1.start_result = WaveResult(on); }},
    {12, "record format missing", [](World& world, bool on) { world.Wave1.query_result = WaveResult(on); }},
    {10, "message cannot be written",
     [](World& world, bool on) { world.Wave1.stop_result = WaveResult(on); }},
    {10, "no sound card", [](World& world, bool on) { world.Wave1.monitor_result = WaveResult(on); }},
    {12, "records cannot be written", [](World& world, bool on) { world.database_full = on; }},
    {15, "the records' folder is gone", [](World& world, bool on) {
       if (on) world.database.LoseFile();
       world.database.gone = on;
     }}};

void WriteEvents(Writer& writer, std::span<const Event> events, bool before) {
  for (const auto& [chances, what, act] : events) {
    if (!writer.OneIn(chances)) continue;
    const int number = 1 + writer.Below(5);
    writer.Add(before ? kBeforeStart : writer.Moment(), what + (" " + std::to_string(number)),
               [act = act, number](World& world) {
                 if (!world.ended) act(world, number);
               });
  }
}

void WriteSettings(Writer& writer) {
  const auto set = [&](const std::string& name, const std::string& value) {
    writer.Add(kBeforeStart, "set " + name + " = \"" + value + "\"",
               [name, value](World& world) { world.registry.Set(name, value); });
  };
  set("NumOfRing", writer.OneOf("1", "2", "3", "4"));
  set("RecordMessage", writer.OneIn(6) ? "0" : "1");
  set("ListMessageOnly", writer.OneIn(4) ? "1" : "0");
  set("cDropSilence", writer.OneIn(4) ? "0" : "1");
  set("SecSilence", writer.OneOf("0", "1", "2", "5"));
  set("MaxRec", writer.OneIn(8) ? "0" : "1");
  set("CompressMessages", writer.OneIn(3) ? "1" : "0");
  set("PreScreen", writer.OneIn(3) ? "1" : "0");
  set("Pass", writer.OneOf("12", "", "4711", "0"));
  set("AppTo", writer.OneOf("program <NAME> <MESSAGE_PATH>", "program", ""));
  for (const char* choice :
       {"ViewDetails", "WhenMsgViewMsg", "cAnimation", "cCloseCallerView", "cPlayInIdle",
        "ActionsMailAllCalls", "ActionsAppAllCalls", "pMailTo", "WornDelete", "pAppTo"}) {
    set(choice, writer.OneOf("0", "1"));
  }
}

/// What becomes of each mail: it is told in steps, during later calls among others.
void WriteMailServer(Writer& writer) {
  const milliseconds after(writer.Below(12000));
  const bool taken = !writer.OneIn(3);
  writer.Add(kBeforeStart, (taken ? "mails are taken after " : "mails are refused after ") + Text(after),
             [after, taken](World& world) {
               world.Mail1.on_send = [&world, after, taken](const ScriptedMail::Mail& mail) {
                 world.time.After(after, [&world, taken, to = mail.recipient] {
                   auto* events = world.Mail1.events;
                   if (events != nullptr) taken ? events->Done(to) : events->Error(to, "refused");
                 });
               };
             });
}

/// Takes from the start of the call or later on, for some seconds.
void WriteFaults(Writer& writer) {
  for (const auto& [chances, what, set] : kFaults) {
    if (!writer.OneIn(chances)) continue;
    const auto at = writer.OneIn(2) ? writer.begin : writer.Moment();
    writer.Add(at, what, [set = set](World& world) { set(world, true); });
    writer.Add(at + milliseconds(writer.Below(9000)), std::string(what) + " no more",
               [set = set](World& world) { set(world, false); });
  }
}

/// The disk: full at the N-th write, for some writes or for good; sometimes lines of the log still fit.
void WriteDisk(Writer& writer) {
  const auto number = static_cast<std::uint64_t>(1 + writer.Below(40));
  const auto count =
      writer.OneIn(3) ? FailingDisk::kForGood : static_cast<std::uint64_t>(1 + writer.Below(6));
  const bool lines_fit = writer.OneIn(2);
  const auto what = "the disk fails at write " + std::to_string(number) + ", times " + std::to_string(count);
  writer.Sometime(what + (lines_fit ? "; lines of the log fit" : ""), [=](World& world) {
    world.disk.FailAt(number, count);
    world.disk.spares = [lines_fit](const std::string& path) { return lines_fit && path.ends_with(".txt"); };
  });
  if (writer.OneIn(2)) writer.Sometime("the disk has room", [](World& world) { world.disk.Mend(); });
}

void WriteLine(Writer& writer) {
  const milliseconds answer(writer.OneIn(3) ? writer.Below(1500) : 20);
  const milliseconds connect(writer.OneIn(4) ? writer.Below(2000) : 0);
  writer.Add(writer.begin, "answers after " + Text(answer) + ", connects after " + Text(connect),
             [=](World& world) {
               world.line->SetAnswerDelay(answer);
               world.line->SetConnectDelay(connect);
             });
  writer.Add(writer.begin, "offer", [](World& world) { world.line->Offer(); });
  auto at = writer.begin;
  for (int ring = 1 + writer.Below(6); ring > 0; --ring) {
    writer.Add(at, "ring", [](World& world) { world.line->Ring(); });
    at += milliseconds(writer.OneIn(3) ? 1 : writer.Below(2000));  // double rings among them
  }
}

void WriteCaller(Writer& writer) {
  for (int ids = writer.Below(3); ids > 0; --ids) {
    const auto name = writer.OneOf("Anna", "Ben", "");
    writer.Sometime("callerid " + name, [name](World& world) { world.line->CallerId(name, "555"); });
  }
  for (int changes = writer.Below(5); changes > 0; --changes) {
    const int level = writer.Below(2) * 500;
    writer.Sometime("level " + std::to_string(level), [level](World& world) { world.loud = level; });
  }
  if (writer.OneIn(2)) return;
  auto at = writer.Moment();
  for (const char key : writer.OneOf("12*", "4711*", "*", "0*", "12*12*", "999", "1", "#*12*")) {
    writer.Add(at, std::string("press ") + key, [key](World& world) { world.line->Press(key); });
    at += milliseconds(writer.Below(400));
  }
}

/// One call, at whose end it has been hung up.
void WriteCall(Writer& writer) {
  WriteFaults(writer);
  if (writer.OneIn(5)) WriteDisk(writer);
  // Several calls of one world can come in at the very same second.
  if (writer.OneIn(16)) {
    writer.Add(writer.begin, "the clock: the new year", [](World& world) { TurnToNewYear(world, 0ms); });
  }
  WriteLine(writer);
  WriteCaller(writer);
  WriteEvents(writer, kMeanwhile, false);
  if (writer.OneIn(8)) {
    writer.Sometime("started again", [](World& world) {
      world.Crash();
      world.Start();
    });
  }
  auto end = writer.Moment();
  if (writer.OneIn(5)) end += milliseconds(writer.OneIn(3) ? 250000 : 70000);  // beyond the longest message
  writer.Add(end, "hangup", [](World& world) { world.line->HangUp(); });
  writer.begin = end + milliseconds(writer.Below(700));
}

}  // namespace

Story RandomStory(std::uint64_t seed) {
  Writer writer{std::mt19937_64(seed), {}};
  WriteSettings(writer);
  WriteMailServer(writer);
  WriteEvents(writer, kBefore, true);
  for (int calls = 1 + writer.Below(3); calls > 0; --calls) WriteCall(writer);
  auto& story = writer.story;
  story.end = writer.begin;
  std::ranges::stable_sort(story.steps, {}, &Step::at);
  for (std::size_t step = 0; step < story.steps.size(); ++step) story.steps[step].number = step + 1;
  return std::move(story);
}

void MendEverything(World& world) {
  for (const auto& fault : kFaults) fault.set(world, false);
  world.line->SetAnswerDelay(20ms);
  world.line->SetConnectDelay(0ms);
  world.disk.Mend();
}

}  // namespace orven::test
