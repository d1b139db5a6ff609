// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/story.h"

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

void WriteCalls(Writer& writer) {
  writer.SometimeOneIn(6, "drop", [](World& world) { world.Machine().control.DropInComeCall(); });
  writer.SometimeOneIn(6, "answer now",
                       [](World& world) { world.Machine().control.AnswerToCall(0, 0, true); });
  writer.SometimeOneIn(10, "line off and on", [](World& world) {
    if (world.ended) return;
    world.window->TurnOff();
    world.window->TurnOn();
  });
  if (!writer.OneIn(20)) return;
  writer.Sometime("exit", [](World& world) { world.window->Exit(); });
  writer.SometimeOneIn(2, "started again", [](World& world) {
    if (world.ended) StartAgain(world);
  });
}

void WriteQuickOptions(Writer& writer) {
  if (writer.OneIn(8)) {
    const auto rings = std::to_string(1 + writer.Below(4));
    writer.Sometime("rings " + rings,
                    [rings](World& world) { world.Machine().quick_options.SetRings(rings); });
  }
  if (writer.OneIn(8)) {
    const bool on = writer.OneIn(2);
    writer.Sometime(on ? "record on" : "record off",
                    [on](World& world) { world.Machine().quick_options.SetRecordMessage(on); });
  }
}

void WriteList(Writer& writer) {
  for (int acts = writer.OneIn(2) ? writer.Below(8) : 0; acts > 0; --acts) {
    const auto what = writer.OneOf("click", "select", "play", "stop", "next", "back", "first", "last",
                                   "delete", "mark read", "mark unread", "hide", "open", "tray");
    const int row = 1 + writer.Below(5);
    writer.Sometime(what + " " + std::to_string(row),
                    [what, row](World& world) { UseList(world, what, row); });
  }
}

void WriteCallerView(Writer& writer) {
  for (int clicks = writer.OneIn(2) ? 1 + writer.Below(3) : 0; clicks > 0; --clicks) {
    const auto what = writer.OneOf("view: answer", "view: drop", "view: ignore", "view: close");
    writer.Sometime(what, [what](World& world) { ClickCallerView(world, what); });
  }
}

/// Takes from the microphone, on the recorder that the calls need.
void WriteTakes(Writer& writer) {
  for (int takes = writer.OneIn(4) ? 1 + writer.Below(3) : 0; takes > 0; --takes) {
    writer.Sometime("take begins", [](World& world) {
      auto& microphone = world.Machine().microphone;
      if (!world.ended && !microphone.Busy()) microphone.Start(0);
    });
    writer.Sometime("take ends", [](World& world) {
      auto& microphone = world.Machine().microphone;
      if (microphone.Recording()) microphone.Stop();
    });
  }
}

}  // namespace

void StartAgain(World& world) {
  world.Crash();
  world.ended = false;
  world.views.caller_view.Unload();
  world.views.selection = 0;
  world.Start();
}

void WriteDesk(Writer& writer) {
  WriteCalls(writer);
  WriteQuickOptions(writer);
  WriteList(writer);
  WriteCallerView(writer);
  WriteTakes(writer);
}

}  // namespace orven::test
