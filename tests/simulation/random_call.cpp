// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/random_call.h"

#include <algorithm>
#include <random>
#include <sstream>

#include "platform/runtime_error.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;

/// Draws that depend on nothing but the seed (the standard's distributions differ by library).
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}
  int Below(int bound) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(bound)); }
  bool OneIn(int chances) { return Below(chances) == 0; }
  template <class... Choice>
  std::string OneOf(Choice... choices) {
    const std::string all[] = {choices...};
    return all[Below(static_cast<int>(sizeof...(choices)))];
  }

 private:
  std::mt19937_64 engine_;
};

/// Writes the script of one world.
class Author {
 public:
  Author(Dice& dice, RandomCall& story) : dice_(dice), story_(story) {}

  void Write() {
    WriteSettings();
    story_.older_messages = dice_.Below(4);
    story_.greeting_missing = dice_.OneIn(10);
    story_.beep_missing = dice_.OneIn(10);
    milliseconds begin{0};
    const int calls = 1 + dice_.Below(3);
    for (int call = 0; call < calls; ++call) begin = WriteCall(begin) + milliseconds(dice_.Below(700));
    story_.end = begin;
    std::stable_sort(story_.happenings.begin(), story_.happenings.end(),
                     [](const auto& a, const auto& b) { return a.at < b.at; });
  }

 private:
  void WriteSettings() {
    auto& settings = story_.settings;
    settings["NumOfRing"] = std::to_string(1 + dice_.Below(4));
    settings["RecordMessage"] = dice_.OneIn(6) ? "0" : "1";
    settings["ListMessageOnly"] = dice_.OneIn(4) ? "1" : "0";
    settings["cDropSilence"] = dice_.OneIn(4) ? "0" : "1";
    settings["SecSilence"] = dice_.OneOf("0", "1", "2", "5");
    settings["MaxRec"] = dice_.OneIn(8) ? "0" : "1";
    settings["CompressMessages"] = dice_.OneIn(3) ? "1" : "0";
    settings["PreScreen"] = dice_.OneIn(3) ? "1" : "0";
    settings["Pass"] = dice_.OneOf("12", "", "4711", "0");
    settings["ViewDetails"] = dice_.OneOf("0", "1");
    settings["WhenMsgViewMsg"] = dice_.OneOf("0", "1");
    settings["cAnimation"] = dice_.OneOf("0", "1");
    settings["cCloseCallerView"] = dice_.OneOf("0", "1");
    settings["cPlayInIdle"] = dice_.OneOf("0", "1");
    settings["ActionsMailAllCalls"] = dice_.OneOf("0", "1");
    settings["pMailTo"] = dice_.OneOf("0", "1");
    settings["WornDelete"] = dice_.OneOf("0", "1");
    settings["pAppTo"] = dice_.OneOf("0", "1");
  }

  void Add(milliseconds at, std::string what, std::function<void(World&)> act) {
    story_.happenings.push_back({at, std::move(what), std::move(act)});
  }

  /// Any moment of the call, often one at which the machine is just doing something.
  milliseconds Moment(milliseconds begin) {
    if (dice_.OneIn(2)) return begin + milliseconds(dice_.Below(9000));
    const int tenths = dice_.Below(90);
    return begin + milliseconds(tenths * 100 + dice_.Below(3) - 1);
  }

  /// One call; gives the moment by which it has been hung up.
  milliseconds WriteCall(milliseconds begin) {
    WriteBreakage(begin);
    WriteSlowConnection(begin);
    Add(begin, "offer", [](World& world) { world.line->Offer(); });
    WriteRings(begin);
    for (int ids = dice_.Below(3); ids > 0; --ids) {
      Add(Moment(begin), "callerid", [](World& world) { world.line->CallerId("Anna", "555"); });
    }
    WriteDigits(begin);
    WriteVoice(begin);
    WriteDesk(begin);
    WriteList(begin);
    WriteTakes(begin);
    auto end = Moment(begin);
    if (dice_.OneIn(5)) end += milliseconds(70000);  // beyond the longest message
    Add(end, "hangup", [](World& world) { world.line->HangUp(); });
    return end;
  }

  void WriteRings(milliseconds begin) {
    auto at = begin;
    for (int ring = 1 + dice_.Below(6); ring > 0; --ring) {
      Add(at, "ring", [](World& world) { world.line->Ring(); });
      at += milliseconds(dice_.OneIn(3) ? 1 : dice_.Below(2000));  // double rings among them
    }
  }

  void WriteDigits(milliseconds begin) {
    if (dice_.OneIn(2)) return;
    const auto keys = dice_.OneOf("12*", "4711*", "*", "0*", "12*12*", "999", "1", "#*12*");
    auto at = Moment(begin);
    for (const char key : keys) {
      Add(at, std::string("press ") + key, [key](World& world) { world.line->Press(key); });
      at += milliseconds(dice_.Below(400));
    }
  }

  void WriteVoice(milliseconds begin) {
    for (int changes = dice_.Below(5); changes > 0; --changes) {
      const int level = dice_.Below(2) * 500;
      Add(Moment(begin), "level " + std::to_string(level), [level](World& world) { world.loud = level; });
    }
  }

  /// What the person at the desk does meanwhile.
  void WriteDesk(milliseconds begin) {
    if (dice_.OneIn(6))
      Add(Moment(begin), "drop", [](World& world) { world.Machine().control.DropInComeCall(); });
    if (dice_.OneIn(6)) {
      Add(Moment(begin), "answer now",
          [](World& world) { world.Machine().control.AnswerToCall(0, 0, true); });
    }
    if (dice_.OneIn(8)) {
      const auto rings = std::to_string(1 + dice_.Below(4));
      Add(Moment(begin), "rings " + rings,
          [rings](World& world) { world.Machine().quick_options.SetRings(rings); });
    }
    if (dice_.OneIn(8)) {
      const bool on = dice_.OneIn(2);
      Add(Moment(begin), on ? "record on" : "record off",
          [on](World& world) { world.Machine().quick_options.SetRecordMessage(on); });
    }
    if (dice_.OneIn(10)) {
      Add(Moment(begin), "line off and on", [](World& world) {
        if (world.ended) return;
        world.window->TurnOff();
        world.window->TurnOn();
      });
    }
    if (dice_.OneIn(10)) {
      Add(Moment(begin), "another call", [](World& world) { world.line->Offer(); });
    }
    if (dice_.OneIn(10)) {
      Add(Moment(begin), "list cleared", [](World& world) {
        world.database.Records().clear();
        world.Machine().ListView1.makeList();
      });
    }
  }

  /// What the person does with the list and the window meanwhile.
  void WriteList(milliseconds begin) {
    for (int acts = dice_.OneIn(2) ? dice_.Below(8) : 0; acts > 0; --acts) {
      const auto what = dice_.OneOf("click", "select", "play", "stop", "next", "back", "first", "last",
                                    "delete", "mark read", "mark unread", "hide", "open", "tray",
                                    "view: answer", "view: drop", "view: ignore", "view: close");
      const int row = 1 + dice_.Below(5);
      Add(Moment(begin), what + " " + std::to_string(row),
          [what, row](World& world) { UseList(world, what, row); });
    }
  }

  /// Takes from the microphone, on the recorder that the calls need.
  void WriteTakes(milliseconds begin) {
    for (int takes = dice_.OneIn(4) ? 1 + dice_.Below(3) : 0; takes > 0; --takes) {
      Add(Moment(begin), "take begins", [](World& world) {
        auto& microphone = world.Machine().microphone;
        if (!world.ended && !microphone.Busy()) microphone.Start(0);
      });
      Add(Moment(begin), "take ends", [](World& world) {
        auto& microphone = world.Machine().microphone;
        if (microphone.Recording()) microphone.Stop();
      });
    }
  }

  static void UseList(World& world, const std::string& what, int row) {
    if (world.ended) return;
    auto& machine = world.Machine();
    auto& commands = machine.list_commands;
    if (what == "click" || what == "select") {
      if (row > machine.ListView1.Count()) return;
      world.views.selection = row;  // what a person does in the list shows there first
      what == "click" ? commands.ListView1_Click(row) : commands.ListView1_Selected(row);
    }
    if (what == "play") machine.player.Play();
    if (what == "stop") machine.player.PressStop();
    if (what == "next") commands.Next();
    if (what == "back") commands.Back();
    if (what == "first") commands.First();
    if (what == "last") commands.Last();
    if (what == "delete") commands.Delete();
    if (what == "mark read") commands.MarkAsRead();
    if (what == "mark unread") commands.MarkAsUnread();
    auto& view = machine.caller_view;
    if (what == "view: answer" && view.IsOpen()) view.AnswerNow();
    if (what == "view: drop" && view.IsOpen()) view.Drop();
    if (what == "view: ignore" && view.IsOpen()) view.DoNothing();
    if (what == "view: close" && view.IsOpen()) view.Close();
    if (what == "hide") world.window->Hide();
    if (what == "open") world.window->Open();
    if (what == "tray") world.window->TrayMouseMove(514 * 15, 15);
  }

  void WriteBreakage(milliseconds begin) {
    if (dice_.OneIn(8)) Add(begin, "answer fails", [](World& world) { world.line->FailAnswers(1); });
    if (dice_.OneIn(10)) Break(begin, "play fails", &TimedWave::play_result);
    if (dice_.OneIn(10)) Break(begin, "start of recording fails", &TimedWave::start_result);
    if (dice_.OneIn(12)) Break(begin, "record format missing", &TimedWave::query_result);
    if (dice_.OneIn(10)) Break(begin, "message cannot be written", &TimedWave::stop_result);
    if (dice_.OneIn(10)) Break(begin, "no sound card", &TimedWave::monitor_result);
    if (dice_.OneIn(12)) {
      Add(Moment(begin), "records cannot be written", [](World& world) { world.database_full = true; });
      Add(Moment(begin), "records can be written", [](World& world) { world.database_full = false; });
    }
    if (dice_.OneIn(20)) Add(Moment(begin), "exit", [](World& world) { world.window->Exit(); });
    const auto delay = milliseconds(dice_.OneIn(3) ? dice_.Below(1500) : 20);
    Add(begin, "answers after " + std::to_string(delay.count()) + " ms",
        [delay](World& world) { world.line->SetAnswerDelay(delay); });
  }

  void WriteSlowConnection(milliseconds begin) {
    const auto delay = milliseconds(dice_.OneIn(4) ? dice_.Below(2000) : 0);
    Add(begin, "connects after " + std::to_string(delay.count()) + " ms",
        [delay](World& world) { world.line->SetConnectDelay(delay); });
  }

  void Break(milliseconds begin, const std::string& what, std::int32_t TimedWave::*result) {
    const auto at = dice_.OneIn(2) ? begin : Moment(begin);
    Add(at, what, [result](World& world) { world.Wave1.*result = kWaveNoDevice; });
    Add(at + milliseconds(dice_.Below(9000)), what + " no more",
        [result](World& world) { world.Wave1.*result = kWaveOk; });
  }

  Dice& dice_;
  RandomCall& story_;
};

}  // namespace

RandomCall::RandomCall(std::uint64_t seed) {
  Dice dice(seed);
  Author(dice, *this).Write();
}

std::string RandomCall::Script() const {
  std::ostringstream text;
  for (const auto& [name, value] : settings) text << "  set " << name << " = \"" << value << "\"\n";
  text << "  " << older_messages << " older calls" << (greeting_missing ? ", no greeting file" : "")
       << (beep_missing ? ", no beep file" : "") << '\n';
  for (const auto& happening : happenings)
    text << "  " << happening.at.count() << " ms: " << happening.what << '\n';
  return text.str();
}

}  // namespace orven::test
