// SPDX-License-Identifier: GPL-3.0-or-later
// The options dialog over a running machine, driven by object names.
#include <QAction>
#include <QTest>
#include <QWheelEvent>

#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "options/frmOptions.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class OptionsWindow : public WindowTest {
 protected:
  OptionsWindow() {
    world.registry.Set("ValSilence", "50");
    for (const char* name : {"Away", "hello"}) world.files.Put(Greeting(name), TimedWave::Sound(1s));
    world.Start().RunFor(1s);
    Open(2);
  }
  void Open(int tab) {
    window.reset();
    window = std::make_unique<frmOptions>(frmOptions::Parts{engine, greetings, open_lines}, tab, nullptr);
    Show(*window);
  }
  static std::string Greeting(const std::string& name) {
    return std::string(World::kHome) + "/Greets/" + name + ".wav";
  }
  void Press(const std::string& key) { Click("tlbrGreetingPlayer." + key); }
  std::vector<std::string> Greetings() {
    std::vector<std::string> names;
    const auto& list = Get<QComboBox>("CmbGreetsMessages");
    for (int i = 0; i < list.count(); ++i) names.push_back(list.itemText(i).toStdString());
    return names;
  }

  AnsweringMachine& machine = world.Machine();
  std::optional<std::string> made;  ///< what the greeting creator saves
  OptionsDialog engine{machine.ForOptionsDialog()};
  GreetingPlayer greetings{machine.ForGreetingPlayer([this] { return made; })};
  std::function<void()> open_lines;
  std::unique_ptr<frmOptions> window;
};

/// The controls, what the installation shows, another choice, and what is stored for it.
constexpr struct {
  const char *control, *shown, *chosen, *setting, *stored;
} kControls[] = {{"sldSilence", "5", "9", "ValSilence", "90"},
                 {"cmbSilenceSec", "3", "12", "SecSilence", "12"},
                 {"txtNumOfRing", "2", "20", "NumOfRing", "20"},
                 {"txtRecLong", "1", "5", "MaxRec", "5"},
                 {"cmbModemDev", "Sim", "Sim", "ModemName", "Sim"},
                 {"cmbSoundDev", "Default output", "Headset", "Sound", "1"},
                 {"CmbGreetsMessages", "Hello", "Away", "Greeting", "Away"},
                 {"chkDropIfSilnce", "true", "false", "cDropSilence", "0"},
                 {"cmdRecordMessage", "true", "false", "RecordMessage", "0"},
                 {"chkWornDelete", "true", "false", "WornDelete", "0"},
                 {"chkWornClear", "true", "false", "WornClear", "0"},
                 {"chkListMessagesOnly", "false", "true", "ListMessageOnly", "1"},
                 {"chkPreScreen", "false", "true", "PreScreen", "1"},
                 {"chkAllowRemoteAccess", "true", "false", "AllowRemoteAccess", "0"},
                 {"chkCompress", "false", "true", "CompressMessages", "1"},
                 {"chkQuickToolBar", "true", "false", "pQuickToolbar", "0"}};

TEST_F(OptionsWindow, EveryControlShowsAndStoresItsSettingAndTheNextCallUsesIt) {
  auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 2) << "as asked for";
  for (int tab = 0; tab < 4; ++tab) {
    tabs.setCurrentIndex(tab);
    for (int frame = 0; frame < 4; ++frame)
      EXPECT_EQ(Visible("Frame" + std::to_string(frame + 1)), frame == tab) << tab;
  }
  world.cards.names = {"Default output", "Headset"};
  Open(0);
  for (const auto& row : kControls) ExpectShown({{row.control, row.shown}});
  ExpectShown({{"lblSilence", "5 %"}, {"lblDeviceName", "Sim"}, {"lblAutoVoice", "Yes"}});
  ExpectShown({{"txtMassagesPath", world.messages}, {"chkRenOnStart", "false"}});
  EXPECT_TRUE(Get<QLineEdit>("txtMassagesPath").isReadOnly());

  for (const auto& row : kControls) Set({{row.control, row.chosen}});
  Set({{"chkRenOnStart", "true"}});
  Click("cmdOK");
  EXPECT_EQ(window->result(), QDialog::Accepted);
  for (const auto& row : kControls) ExpectStored({{row.setting, row.stored}});
  EXPECT_EQ(world.registry.Text("ORVEN", kAutostartKey), "/home/orven/ORVEN.exe -st");
  const auto& shared = world.shared;
  EXPECT_EQ(std::tuple(shared.num_of_ring, shared.max_record_seconds, shared.record_messages),
            std::tuple(20, 300, false));
  EXPECT_EQ(shared.greeting_file + world.views.selected_greeting, "Away.wavAway");
  EXPECT_FALSE(world.views.shown_record || world.views.quick_toolbar);

  Open(0);
  for (const auto& row : kControls) ExpectShown({{row.control, row.chosen}});
  Set({{"chkRenOnStart", "false"}});
  Click("cmdOK");
  EXPECT_EQ(world.registry.Text("ORVEN", kAutostartKey), kNotFound);
}

TEST_F(OptionsWindow, UnusualInputIsTakenAsItIsAndCancelStoresNothing) {
  const std::string password = " a b" + std::string(300, '7');
  Set({{"txtPass", password}});
  ExpectShown({{"lblPassHint", "A telephone can key the digits 0 to 9 and # only."}});
  Set({{"txtPass", ""}});
  ExpectShown({{"lblPassHint", "Without a password anyone who keys * hears the messages."}});
  EXPECT_EQ(Get<QLineEdit>("txtPass").echoMode(), QLineEdit::Password);
  Get<QAction>("actShowPass").trigger();
  EXPECT_EQ(Get<QLineEdit>("txtPass").echoMode(), QLineEdit::Normal);
  for (const bool stores : {false, true}) {
    Open(1);
    Set({{"txtPass", password}, {"cmbModemDev", "No such device"}});
    ExpectShown({{"lblNoDevice", "There is no device of this name now."}, {"lblDeviceName", ""}});
    Get("cmdCancel").setFocus();
    stores ? Click("cmdOK") : QTest::keyClick(&Get("cmdCancel"), Qt::Key_Return);
    EXPECT_EQ(window->result(), stores ? QDialog::Accepted : QDialog::Rejected);
    ExpectStored({{"Pass", stores ? password : "4711"}, {"Modem", stores ? "-1" : "0"}});
    ExpectStored({{"ModemName", stores ? "No such device" : "Sim"}});
  }
  Open(1);
  ExpectShown({{"cmbModemDev", "No such device"}});

  auto& rings = *Get<QComboBox>("txtNumOfRing").lineEdit();
  rings.selectAll();
  QTest::keyClicks(&rings, QStringLiteral("x25"));
  EXPECT_EQ(rings.text(), u"2");
  rings.clear();
  QTest::keyClick(&rings, Qt::Key_Return);
  EXPECT_EQ(rings.text(), u"2") << "an emptied field gets its value back";
}

TEST_F(OptionsWindow, AVanishedCardAndChangedLinesKeepWhatIsChosen) {
  world.registry.Set("Sound", "2");
  machine.settings.Sound = 2;
  open_lines = [this] { machine.settings.ModemName += "!"; };
  Open(1);
  const auto& cards = Get<QComboBox>("cmbSoundDev");
  EXPECT_EQ(cards.itemText(1), u"Sound card 1 (not there now)");
  EXPECT_EQ(cards.currentText(), u"Sound card 2 (not there now)");
  world.cards.names = {"Default output", "Camera", "Headset"};
  world.RunFor(2s);
  EXPECT_EQ(cards.currentText(), u"Headset");
  EXPECT_EQ(cards.count(), 3);
  for (const auto& chosen : {std::string("Home"), machine.settings.ModemName + "!"}) {
    Set({{"cmbModemDev", chosen}});
    Click("cmdLines");
    ExpectShown({{"cmbModemDev", chosen == "Home" ? chosen : machine.settings.ModemName}});
    EXPECT_EQ(Get<QComboBox>("cmbModemDev").itemText(0), u"Sim");
  }
}

TEST_F(OptionsWindow, TheLevelOfTheCallerIsShownWhileTheDialogIsOpen) {
  const auto& meter = Get<SilenceMeter>("prgSilence");
  EXPECT_EQ(meter.Level(), std::nullopt);
  world.CallAndWaitForAnswer();
  world.loud = 320;
  for (const auto* heard : {"the greeting", "the beep", "the recording"}) {
    world.RunFor(1s);
    EXPECT_EQ(meter.Level(), 320) << heard;
  }
  ExpectShown({{"lblLevel", "The caller now: 32 %, heard"}});
  Set({{"sldSilence", "40"}});
  ExpectShown({{"lblLevel", "The caller now: 32 %, silent"}});
  window.reset();
  world.RunFor(100ms);
}

TEST_F(OptionsWindow, StaysWhileMessagesMoveAndKeepsTheNewFolderThoughItIsCancelled) {
  for (const char* name : {"one.wav", "two.wav"}) world.AddMessage(name, 1s);
  world.files.before_write = [](const std::string& path) {
    if (path == "/mnt/new/two.wav") throw RuntimeError(ErrorNumber::DiskFull, path);
  };
  world.background.takes = 1s;
  Click("cmdBrowsMessagesPath");
  EXPECT_TRUE(Enabled("cmdOK")) << "no folder was chosen";
  world.dialogs.browsed = "/mnt/new";
  Click("cmdBrowsMessagesPath");
  EXPECT_EQ(world.dialogs.browse_title, "Save Messages To");
  world.RunFor(2s + 500ms);
  ExpectShown({{"lblMoving", "Moving the messages: 1 of 2"}});
  ExpectStored({{"MassagesPath", world.messages}});
  EXPECT_FALSE(Enabled("cmdOK") || Enabled("cmdCancel") || Enabled("cmdBrowsMessagesPath"));
  window->close();
  EXPECT_TRUE(window->isVisible());
  world.RunFor(1s);
  ExpectShown({{"lblMoving", ""}, {"txtMassagesPath", "/mnt/new/"}});
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("two.wav")));
  Click("cmdCancel");
  EXPECT_FALSE(window->isVisible());
  ExpectStored({{"MassagesPath", "/mnt/new/"}});
  EXPECT_TRUE(world.files.Exists("/mnt/new/one.wav"));
}

TEST_F(OptionsWindow, TheGreetingsButtonsWorkOnTheNameThatIsSelected) {
  EXPECT_THAT(Greetings(), UnorderedElementsAre("Away", "Hello", "hello"));
  auto& list = Get<QComboBox>("CmbGreetsMessages");
  list.setCurrentIndex(list.findText("hello", Qt::MatchFixedString | Qt::MatchCaseSensitive));
  Press("Play");
  EXPECT_EQ(world.WavePlay.played.back().path, Greeting("hello"));
  ExpectShown({{"CmbGreetsMessages", "hello"}});
  Press("Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  Press("Add");
  ExpectShown({{"CmbGreetsMessages", "hello"}});
  QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&list, &wheel);
  ExpectShown({{"CmbGreetsMessages", "hello"}});
  made = "שלום";
  world.files.Put(Greeting(*made), TimedWave::Sound(1s));
  Press("Add");
  ExpectShown({{"CmbGreetsMessages", *made}});
}

TEST_F(OptionsWindow, DeletingAGreetingAsksAndLeavesTheLast) {
  Press("Delete");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete Hello ?"));
  EXPECT_EQ(Greetings().size(), 3U);
  world.dialogs.yes = true;
  Press("Delete");
  EXPECT_FALSE(world.files.Exists(Greeting("Hello")));
  ExpectShown({{"CmbGreetsMessages", Greetings().front()}});
  ExpectStored({{"Greeting", Greetings().front()}});
  EXPECT_EQ(world.shared.greeting_file, Greetings().front() + ".wav");
  EXPECT_EQ(world.views.greetings, Greetings()) << "the main window follows";
  for (int i = 0; i < 2; ++i) Press("Delete");
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Can't Delete Last Greeting."));
  EXPECT_EQ(Greetings().size(), 1U);
  world.files.Delete(Greeting(Greetings().front()));
  Open(2);
  for (const char* key : {"Play", "Delete"}) Press(key);
  EXPECT_THAT(Greetings(), testing::IsEmpty());
  ExpectStored({{"Greeting", ""}});
}

}  // namespace
}  // namespace orven::test
