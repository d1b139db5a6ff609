// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/desk.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;

void UseList(World& world, const std::string& what, int row) {
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
  if (what == "hide") world.window->Hide();
  if (what == "open") world.window->Open();
  if (what == "tray") world.window->TrayMouseMove(514 * 15, 15);
}

/// A click; there is no window to click at when it is not open.
void ClickCallerView(World& world, const std::string& what) {
  auto& view = world.Machine().caller_view;
  if (world.ended || !view.IsOpen()) return;
  if (what == "view: answer") view.AnswerNow();
  if (what == "view: drop") view.Drop();
  if (what == "view: ignore") view.DoNothing();
  if (what == "view: close") view.Close();
}

void WriteCalls(Dice& dice, Story& story, milliseconds begin) {
  if (dice.OneIn(6)) {
    story.Add(Moment(dice, begin), "drop", [](World& world) { world.Machine().control.DropInComeCall(); });
  }
  if (dice.OneIn(6)) {
    story.Add(Moment(dice, begin), "answer now",
              [](World& world) { world.Machine().control.AnswerToCall(0, 0, true); });
  }
  if (dice.OneIn(10)) {
    story.Add(Moment(dice, begin), "line off and on", [](World& world) {
      if (world.ended) return;
      world.window->TurnOff();
      world.window->TurnOn();
    });
  }
  if (dice.OneIn(20)) {
    story.Add(Moment(dice, begin), "exit", [](World& world) { world.window->Exit(); });
    if (dice.OneIn(2))
      story.Add(Moment(dice, begin), "started again", [](World& world) {
        if (world.ended) StartAgain(world);
      });
  }
}

void WriteQuickOptions(Dice& dice, Story& story, milliseconds begin) {
  if (dice.OneIn(8)) {
    const auto rings = std::to_string(1 + dice.Below(4));
    story.Add(Moment(dice, begin), "rings " + rings,
              [rings](World& world) { world.Machine().quick_options.SetRings(rings); });
  }
  if (dice.OneIn(8)) {
    const bool on = dice.OneIn(2);
    story.Add(Moment(dice, begin), on ? "record on" : "record off",
              [on](World& world) { world.Machine().quick_options.SetRecordMessage(on); });
  }
}

void WriteList(Dice& dice, Story& story, milliseconds begin) {
  for (int acts = dice.OneIn(2) ? dice.Below(8) : 0; acts > 0; --acts) {
    const auto what = dice.OneOf("click", "select", "play", "stop", "next", "back", "first", "last", "delete",
                                 "mark read", "mark unread", "hide", "open", "tray");
    const int row = 1 + dice.Below(5);
    story.Add(Moment(dice, begin), what + " " + std::to_string(row),
              [what, row](World& world) { UseList(world, what, row); });
  }
}

void WriteCallerView(Dice& dice, Story& story, milliseconds begin) {
  for (int clicks = dice.OneIn(2) ? 1 + dice.Below(3) : 0; clicks > 0; --clicks) {
    const auto what = dice.OneOf("view: answer", "view: drop", "view: ignore", "view: close");
    story.Add(Moment(dice, begin), what, [what](World& world) { ClickCallerView(world, what); });
  }
}

/// Takes from the microphone, on the recorder that the calls need.
void WriteTakes(Dice& dice, Story& story, milliseconds begin) {
  for (int takes = dice.OneIn(4) ? 1 + dice.Below(3) : 0; takes > 0; --takes) {
    story.Add(Moment(dice, begin), "take begins", [](World& world) {
      auto& microphone = world.Machine().microphone;
      if (!world.ended && !microphone.Busy()) microphone.Start(0);
    });
    story.Add(Moment(dice, begin), "take ends", [](World& world) {
      auto& microphone = world.Machine().microphone;
      if (microphone.Recording()) microphone.Stop();
    });
  }
}

}  // namespace

milliseconds Moment(Dice& dice, milliseconds begin) {
  if (dice.OneIn(2)) return begin + milliseconds(dice.Below(9000));
  const int tenths = dice.Below(90);
  return begin + std::max(milliseconds(0), milliseconds(tenths * 100 + dice.Below(3) - 1));
}

void StartAgain(World& world) {
  world.Crash();
  world.ended = false;
  world.views.caller_view.Unload();
  world.views.selection = 0;
  world.Start();
}

void WriteDesk(Dice& dice, Story& story, milliseconds begin) {
  WriteCalls(dice, story, begin);
  WriteQuickOptions(dice, story, begin);
  WriteList(dice, story, begin);
  WriteCallerView(dice, story, begin);
  WriteTakes(dice, story, begin);
}

}  // namespace orven::test
