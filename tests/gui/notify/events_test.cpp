// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QPushButton>
#include <QTest>

#include "notify/frmEvents.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

class EventsWindow : public testing::Test {
 protected:
  EventsWindow() {
    world.registry.Set("AnimationFast", "50");
    world.registry.Set("cPlayInIdle", "1");
    world.registry.Set("CloseCallerView", "30");
    world.Start().RunFor(1s);
    window = std::make_unique<frmEvents>(dialog, 1, nullptr);
  }
  template <class Control>
  Control& Get(const char* name) {
    auto* control = window->findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  void Click(const char* button) { Get<QAbstractButton>(button).click(); }

  World world;
  AnsweringMachine& machine = world.Machine();
  EventsDialog dialog{{machine.settings, machine.store, machine.shared, world.files, machine.sounds,
                       machine.player, world.dialogs, machine.caller_view}};
  std::unique_ptr<frmEvents> window;
};

TEST_F(EventsWindow, ShowsTheSettingsOnTheTabThatWasAskedFor) {
  auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 1);
  EXPECT_EQ(tabs.tabText(0) + u'|' + tabs.tabText(1) + u'|' + tabs.tabText(2),
            u"General|In Coming Call|Disconnect Call");
  EXPECT_FALSE(Get<QCheckBox>("chkPlayInCall").isChecked());
  EXPECT_TRUE(Get<QCheckBox>("chkPlayInMessage").isChecked());
  EXPECT_EQ(Get<QComboBox>("CmbPlayWhenCall").currentText(), u"ring.wav");
  EXPECT_EQ(Get<QComboBox>("CmbPlayWhenMessage").currentText(), u"idle.wav");
  EXPECT_EQ(Get<QSlider>("sldAnimationFast").value(), 50);
  EXPECT_EQ(Get<QComboBox>("cmbCloseCVAfter").currentText(), u"30");
  const std::pair<const char*, int> places[] = {
      {"chkAnimation", 0},       {"sldAnimationFast", 0},    {"cmbCloseCVAfter", 0},
      {"CmbPlayWhenCall", 1},    {"tlbrPlayWhenCall", 1},    {"chkViewDet", 1},
      {"CmbPlayWhenMessage", 2}, {"tlbrPlayWhenMessage", 2}, {"chkMsgInMsg", 2}};
  for (const auto& [name, tab] : places) {
    EXPECT_TRUE(tabs.widget(tab)->isAncestorOf(&Get<QWidget>(name))) << name;
  }
}

TEST_F(EventsWindow, ToolbarsWorkOnTheirListsAndKeepTheOtherInStep) {
  Click("tlbrPlayWhenMessage.Play");
  EXPECT_EQ(world.WavePlay.played.back().path, "/home/orven/Sound/idle.wav");
  Click("tlbrPlayWhenMessage.Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  world.files.Put("/home/anna/horn.wav", "horn");
  world.dialogs.open_file = "/home/anna/horn.wav";
  Click("tlbrPlayWhenCall.Add");
  EXPECT_EQ(Get<QComboBox>("CmbPlayWhenCall").currentText(), u"horn.wav");
  EXPECT_EQ(Get<QComboBox>("CmbPlayWhenMessage").currentText(), u"idle.wav");
  EXPECT_EQ(Get<QComboBox>("CmbPlayWhenMessage").count(), 3);
  Get<QComboBox>("CmbPlayWhenMessage").setCurrentText("horn.wav");
  Click("tlbrPlayWhenCall.Delete");
  EXPECT_EQ(Get<QComboBox>("CmbPlayWhenCall").currentIndex(), -1);
  EXPECT_EQ(Get<QComboBox>("CmbPlayWhenMessage").currentIndex(), -1);
}

TEST_F(EventsWindow, CancelKeepsTheSecondsAndOkKeepsEverything) {
  Get<QCheckBox>("chkViewDet").setChecked(true);
  Get<QComboBox>("cmbCloseCVAfter").setCurrentText("60");
  Click("cmdCancel");
  EXPECT_EQ(window->result(), QDialog::Rejected);
  EXPECT_EQ(world.registry.Text("CloseCallerView"), "60");
  EXPECT_EQ(machine.settings.ViewDetails, 0);

  window = std::make_unique<frmEvents>(dialog, 0, nullptr);
  Get<QCheckBox>("chkViewDet").setChecked(true);
  Get<QSlider>("sldAnimationFast").setValue(80);
  Click("cmdTestViewer");
  EXPECT_TRUE(world.views.caller_view.open);
  Click("cmdOK");
  EXPECT_EQ(window->result(), QDialog::Accepted);
  EXPECT_EQ(world.registry.Text("ViewDetails"), "1");
  EXPECT_EQ(machine.settings.AnimationFast, 80);
  EXPECT_EQ(machine.settings.PlayInRing, "ring.wav");
}

}  // namespace
}  // namespace orven::test
