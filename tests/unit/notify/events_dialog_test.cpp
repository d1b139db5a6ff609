// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/events_dialog.h"

#include <gmock/gmock.h>

#include <tuple>

#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using enum EventsDialog::Sounds;

/// The dialog in a running program whose library holds "idle.wav" and "ring.wav".
class Events : public testing::Test {
 protected:
  Events() { world.Start().RunFor(1s); }  // the beep of the open line is over

  EventsDialog Dialog() {
    auto& machine = world.Machine();
    return EventsDialog({machine.settings, machine.store, machine.shared, world.files, machine.sounds,
                         machine.player, world.dialogs, machine.caller_view});
  }

  World world;
  const std::string library = std::string(World::kHome) + "/Sound/";
  Settings& settings = world.Machine().settings;
  EventsDialog dialog = Dialog();
};

TEST_F(Events, ControlsShowTheSettings) {
  settings.cPlayInRing = settings.cPlayInIdle = settings.ViewDetails = settings.cCloseCallerView = 1;
  settings.PlayInIdle = "";
  settings.AnimationFast = 400;
  settings.CloseCallerView = 45;
  auto choices = dialog.Load();
  EXPECT_THAT(choices.CmbPlayWhenCall.names, ElementsAre("idle.wav", "ring.wav"));
  EXPECT_EQ(choices.CmbPlayWhenCall.selected, "ring.wav");
  EXPECT_TRUE(choices.chkPlayInCall && choices.chkViewDet && choices.chkCloseCVAfter);
  EXPECT_FALSE(choices.chkAnimation || choices.chkMsgInMsg || choices.chkOnlyIfGotMessage);
  EXPECT_THAT(choices.CmbPlayWhenMessage.names, ElementsAre("idle.wav", "ring.wav"));
  EXPECT_EQ(choices.CmbPlayWhenMessage.selected, "");
  EXPECT_FALSE(choices.chkPlayInMessage) << "there is no sound to play";
  EXPECT_EQ(choices.sldAnimationFast, 100) << "as far as the slider goes";
  EXPECT_EQ(choices.cmbCloseCVAfter, 45) << "kept, though the list does not offer it";

  settings.PlayInRing = "gone.wav";
  choices = dialog.Load();
  EXPECT_EQ(choices.CmbPlayWhenCall.selected, "");
  EXPECT_TRUE(choices.chkPlayInCall);
}

TEST_F(Events, WithoutASelectedSoundNothingIsPlayedOrDeleted) {
  auto choices = dialog.Load();
  const auto played = world.WavePlay.played.size();
  choices.CmbPlayWhenCall.selected.clear();
  dialog.ButtonClick(WhenCall, "Play", choices);
  dialog.ButtonClick(WhenCall, "Delete", choices);
  EXPECT_EQ(world.WavePlay.played.size(), played);
  EXPECT_THAT(world.files.Names(library), ElementsAre("idle.wav", "ring.wav"));
}

TEST_F(Events, AnAddedSoundIsCopiedAndSelectedAndReplacesOneOfItsName) {
  auto choices = dialog.Load();
  dialog.ButtonClick(WhenCall, "Add", choices);
  EXPECT_EQ(world.dialogs.open_title, "Add Sound");
  EXPECT_EQ(world.dialogs.open_filter, std::string("wav (*.wav)\0*.wav\0", 18));
  EXPECT_EQ(choices.CmbPlayWhenCall.selected, "ring.wav") << "cancelled";

  world.files.Put("/home/anna/horn.wav", "horn");
  world.dialogs.open_file = "/home/anna/horn.wav";
  dialog.ButtonClick(WhenCall, "Add", choices);
  EXPECT_EQ(world.files.Content(library + "horn.wav"), "horn");
  EXPECT_EQ(choices.CmbPlayWhenCall.selected, "horn.wav");
  EXPECT_THAT(choices.CmbPlayWhenMessage.names, ElementsAre("horn.wav", "idle.wav", "ring.wav"));
  EXPECT_EQ(choices.CmbPlayWhenMessage.selected, "idle.wav");

  world.files.Put("/home/anna/ring.wav", "another");
  world.dialogs.open_file = "/home/anna/ring.wav";
  dialog.ButtonClick(WhenMessage, "Add", choices);
  EXPECT_EQ(world.files.Content(library + "ring.wav"), "another");
  EXPECT_EQ(choices.CmbPlayWhenMessage.selected, "ring.wav");
  EXPECT_EQ(choices.CmbPlayWhenCall.selected, "horn.wav");
}

TEST_F(Events, ADeletedSoundLeavesBothLists) {
  auto choices = dialog.Load();
  choices.CmbPlayWhenMessage.selected = "ring.wav";
  dialog.ButtonClick(WhenCall, "Delete", choices);
  EXPECT_FALSE(world.files.Exists(library + "ring.wav"));
  for (const auto* list : {&choices.CmbPlayWhenCall, &choices.CmbPlayWhenMessage}) {
    EXPECT_THAT(list->names, ElementsAre("idle.wav"));
    EXPECT_EQ(list->selected, "");
  }
  world.files.Put(library + "zoo.wav", "");
  choices.CmbPlayWhenCall.selected = "idle.wav";
  choices.CmbPlayWhenMessage.selected = "zoo.wav";
  dialog.ButtonClick(WhenMessage, "Delete", choices);
  EXPECT_EQ(choices.CmbPlayWhenCall.selected, "idle.wav") << "keeps what it had";
}

TEST_F(Events, WhatTheDiskRefusesLeavesTheListsAsTheLibraryIs) {
  auto choices = dialog.Load();
  world.files.before_write = [](const std::string&) { throw RuntimeError(ErrorNumber::PermissionDenied); };
  world.files.Put("/home/anna/horn.wav", "horn");
  world.dialogs.open_file = "/home/anna/horn.wav";
  dialog.ButtonClick(WhenCall, "Add", choices);
  EXPECT_EQ(choices.CmbPlayWhenCall.selected, "");
  dialog.ButtonClick(WhenMessage, "Delete", choices);
  EXPECT_THAT(choices.CmbPlayWhenCall.names, ElementsAre("idle.wav", "ring.wav"));
  EXPECT_THAT(choices.CmbPlayWhenMessage.names, ElementsAre("idle.wav", "ring.wav"));
}

TEST_F(Events, TheTestOpensTheViewAsItIsChosenAndOnlyOnce) {
  auto choices = dialog.Load();
  choices.chkCloseCVAfter = true;
  choices.cmbCloseCVAfter = 20;
  dialog.TestViewer(choices);
  EXPECT_TRUE(world.views.caller_view.open);
  EXPECT_EQ(world.views.caller_view.name, "");
  choices.cmbCloseCVAfter = 60;
  dialog.TestViewer(choices);
  world.RunFor(20s + 500ms);
  EXPECT_TRUE(world.views.caller_view.open);
  world.RunFor(1s);
  EXPECT_FALSE(world.views.caller_view.open) << "the first test's 20 s";
  EXPECT_EQ(settings.CloseCallerView, 10) << "nothing is saved by a test";
}

TEST_F(Events, SecondsAreStoredAtOnceAndTheRestBySave) {
  dialog.ChangeCloseSeconds(60);
  EXPECT_EQ(world.registry.Text("CloseCallerView"), "60");
  EXPECT_EQ(settings.CloseCallerView, 60);

  auto choices = dialog.Load();
  choices.chkPlayInCall = choices.chkAnimation = choices.chkMsgInMsg = choices.chkOnlyIfGotMessage = true;
  choices.CmbPlayWhenCall.selected = "idle.wav";
  choices.CmbPlayWhenMessage.selected = "";
  choices.sldAnimationFast = 70;
  dialog.Save(choices);
  const std::pair<const char*, const char*> stored[] = {
      {"cPlayInIdle", "0"},      {"PlayInIdle", ""},         {"ViewDetails", "0"},
      {"WhenMsgViewMsg", "1"},   {"PlayInRing", "idle.wav"}, {"cPlayInRing", "1"},
      {"cAnimation", "1"},       {"AnimationFast", "70"},    {"cCloseCallerView", "0"},
      {"CloseCallerView", "60"}, {"cOnlyIfGotMessage", "1"}};
  for (const auto& [name, text] : stored) EXPECT_EQ(world.registry.Text(name), text) << name;

  const auto held = settings;
  settings = {};
  world.Machine().store.GetMainEvents();
  EXPECT_EQ(held.PlayInRing, settings.PlayInRing);
  EXPECT_EQ(held.PlayInIdle, settings.PlayInIdle);
  EXPECT_EQ(held.AnimationFast, settings.AnimationFast);
  EXPECT_EQ(
      std::tie(held.cPlayInRing, held.cPlayInIdle, held.ViewDetails, held.WhenMsgViewMsg, held.cAnimation,
               held.cCloseCallerView, held.cOnlyIfGotMessage),
      std::tie(settings.cPlayInRing, settings.cPlayInIdle, settings.ViewDetails, settings.WhenMsgViewMsg,
               settings.cAnimation, settings.cCloseCallerView, settings.cOnlyIfGotMessage))
      << "the next call uses what was stored";
}

}  // namespace
}  // namespace orven::test
