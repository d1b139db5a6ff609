// SPDX-License-Identifier: GPL-3.0-or-later
// The options dialog over a running machine, driven by object names.
#include <QAction>
#include <QTest>
#include <QWheelEvent>

#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "options/frmOptions.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
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
  void Type(const char* list, const char* text) { Get<QComboBox>(list).setEditText(QString::fromUtf8(text)); }
  std::string Chosen(const char* list) { return Get<QComboBox>(list).currentText().toStdString(); }
  std::string Text(const char* label) { return Get<QLabel>(label).text().toStdString(); }
  std::string Stored(const char* name) { return world.registry.Text(name); }

  World world;
  AnsweringMachine& machine = world.Machine();
  std::optional<std::string> made;  ///< what the greeting creator saves
  OptionsDialog engine{machine.ForOptionsDialog()};
  GreetingPlayer greetings{machine.ForGreetingPlayer([this] { return made; })};
  std::function<void()> open_lines;
  std::unique_ptr<frmOptions> window;
};

constexpr struct {
  const char* control;
  const char* setting;
  bool on;  ///< in the installation
} kChecks[] = {{"chkDropIfSilnce", "cDropSilence", true},
               {"cmdRecordMessage", "RecordMessage", true},
               {"chkWornDelete", "WornDelete", true},
               {"chkWornClear", "WornClear", true},
               {"chkListMessagesOnly", "ListMessageOnly", false},
               {"chkPreScreen", "PreScreen", false},
               {"chkAllowRemoteAccess", "AllowRemoteAccess", true},
               {"chkCompress", "CompressMessages", false},
               {"chkQuickToolBar", "pQuickToolbar", true}};

TEST_F(OptionsWindow, ShowsTheSettingsOnTheTabThatWasAskedFor) {
  auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 2);
  const std::pair<const char*, const char*> pages[] = {
      {"General", "Frame1"}, {"Devices", "Frame2"}, {"Answer Mode", "Frame3"}, {"Advanced", "Frame4"}};
  for (int tab = 0; tab < 4; ++tab) {
    tabs.setCurrentIndex(tab);
    EXPECT_EQ(tabs.tabText(tab), QLatin1String(pages[tab].first));
    for (const auto& [title, frame] : pages) EXPECT_EQ(Shows(frame), title == pages[tab].first);
  }
  const std::pair<const char*, const char*> lists[] = {{"cmbSilenceSec", "3"},
                                                       {"txtNumOfRing", "2"},
                                                       {"txtRecLong", "1"},
                                                       {"cmbModemDev", "Sim"},
                                                       {"cmbSoundDev", "Default output"},
                                                       {"CmbGreetsMessages", "Hello"}};
  for (const auto& [name, text] : lists) EXPECT_EQ(Chosen(name), text);
  EXPECT_EQ(Get<QComboBox>("txtNumOfRing").count(), 20);
  EXPECT_EQ(Text("lblSilence"), "5 %");
  EXPECT_EQ(Get<QLineEdit>("txtMassagesPath").text().toStdString(), world.messages);
  EXPECT_TRUE(Get<QLineEdit>("txtMassagesPath").isReadOnly());
  EXPECT_EQ(Text("lblDeviceName") + Text("lblAutoVoice"), "SimYes");
  for (const auto& check : kChecks)
    EXPECT_EQ(Get<QCheckBox>(check.control).isChecked(), check.on) << check.control;
  EXPECT_FALSE(Get<QCheckBox>("chkRenOnStart").isChecked());
  EXPECT_FALSE(Get<QAbstractButton>("cmdLines").isEnabled()) << "nothing was given that opens the lines";
}

TEST_F(OptionsWindow, EveryControlStoresItsSettingAndTheNextCallUsesIt) {
  world.cards.names = {"Default output", "Headset"};
  for (const bool on : {true, false}) {
    Open(0);
    for (const auto& check : kChecks) Get<QCheckBox>(check.control).setChecked(on);
    Get<QCheckBox>("chkRenOnStart").setChecked(on);
    Get<QComboBox>("cmbSoundDev").setCurrentIndex(1);
    Get<QComboBox>("CmbGreetsMessages").setCurrentText("Away");
    Get<QSlider>("sldSilence").setValue(on ? 5 : 9);
    Type("cmbSilenceSec", on ? "12" : "4");
    Type("txtNumOfRing", "20");
    Type("txtRecLong", "5");
    Click("cmdOK");
    EXPECT_EQ(window->result(), QDialog::Accepted);
    for (const auto& check : kChecks) EXPECT_EQ(Stored(check.setting), on ? "1" : "0") << check.setting;
    EXPECT_EQ(world.registry.Text("ORVEN", kAutostartKey), on ? "/home/orven/ORVEN.exe -st" : kNotFound);
  }
  const std::pair<const char*, const char*> stored[] = {
      {"ValSilence", "90"}, {"SecSilence", "4"},  {"NumOfRing", "20"}, {"MaxRec", "5"},
      {"Sound", "1"},       {"Greeting", "Away"}, {"Modem", "0"},      {"ModemName", "Sim"}};
  for (const auto& [name, text] : stored) EXPECT_EQ(Stored(name), text) << name;
  EXPECT_EQ(machine.settings.ValSilence, 90);
  const auto& shared = world.shared;
  EXPECT_EQ(std::tuple(shared.num_of_ring, shared.max_record_seconds, shared.record_messages),
            std::tuple(20, 300, false));
  EXPECT_EQ(shared.greeting_file, "Away.wav");
  EXPECT_TRUE(world.views.selected_greeting == "Away" && world.views.shown_rings == 20);
  EXPECT_FALSE(world.views.shown_record || world.views.quick_toolbar);
}

TEST_F(OptionsWindow, UnusualInputIsTakenAsItIsAndCancelStoresNothing) {
  const auto password = QStringLiteral(" a b") + QString(300, u'7');
  auto& field = Get<QLineEdit>("txtPass");
  field.setText(password);
  EXPECT_EQ(Text("lblPassHint"), "A telephone can key the digits 0 to 9 and # only.");
  field.clear();
  EXPECT_EQ(Text("lblPassHint"), "Without a password anyone who keys * hears the messages.");
  EXPECT_EQ(field.echoMode(), QLineEdit::Password);
  Get<QAction>("actShowPass").trigger();
  EXPECT_EQ(field.echoMode(), QLineEdit::Normal);
  for (const bool stores : {false, true}) {
    Open(1);
    Get<QLineEdit>("txtPass").setText(password);
    Type("cmbModemDev", "No such device");
    EXPECT_EQ(Text("lblNoDevice") + Text("lblDeviceName"), "There is no device of this name now.");
    Get("cmdCancel").setFocus();
    stores ? Click("cmdOK") : QTest::keyClick(&Get("cmdCancel"), Qt::Key_Return);
    EXPECT_EQ(window->result(), stores ? QDialog::Accepted : QDialog::Rejected);
    EXPECT_EQ(Stored("Pass"), stores ? password.toStdString() : "4711");
    EXPECT_EQ(Stored("Modem") + Stored("ModemName"), stores ? "-1No such device" : "0Sim");
  }
  Open(1);
  EXPECT_EQ(Chosen("cmbModemDev"), "No such device");
}

TEST_F(OptionsWindow, NumbersHaveTheirLimits) {
  auto& rings = *Get<QComboBox>("txtNumOfRing").lineEdit();
  QTest::keyClicks(&rings, QStringLiteral("x"));
  rings.selectAll();
  QTest::keyClicks(&rings, QStringLiteral("25"));
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
  EXPECT_EQ(Get<QComboBox>("cmbSoundDev").itemText(1), u"Sound card 1 (not there now)");
  EXPECT_EQ(Chosen("cmbSoundDev"), "Sound card 2 (not there now)");
  world.cards.names = {"Default output", "Camera", "Headset"};
  world.RunFor(2s);
  EXPECT_EQ(Chosen("cmbSoundDev"), "Headset");
  EXPECT_EQ(Get<QComboBox>("cmbSoundDev").count(), 3);
  for (const auto& chosen : {std::string("Home"), machine.settings.ModemName + "!"}) {
    Type("cmbModemDev", chosen.c_str());
    Click("cmdLines");
    EXPECT_EQ(Chosen("cmbModemDev"), chosen == "Home" ? chosen : machine.settings.ModemName);
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
  EXPECT_EQ(Text("lblLevel"), "The caller now: 32 %, heard");
  Get<QSlider>("sldSilence").setValue(40);
  EXPECT_EQ(Text("lblLevel"), "The caller now: 32 %, silent");
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
  EXPECT_TRUE(Get<QAbstractButton>("cmdOK").isEnabled()) << "no folder was chosen";
  world.dialogs.browsed = "/mnt/new";
  Click("cmdBrowsMessagesPath");
  EXPECT_EQ(world.dialogs.browse_title, "Save Messages To");
  world.RunFor(2s + 500ms);
  EXPECT_EQ(Text("lblMoving"), "Moving the messages: 1 of 2");
  EXPECT_EQ(Stored("MassagesPath"), world.messages);
  for (const char* name : {"cmdOK", "cmdCancel", "cmdBrowsMessagesPath"})
    EXPECT_FALSE(Get<QAbstractButton>(name).isEnabled()) << name;
  window->close();
  EXPECT_TRUE(window->isVisible());
  world.RunFor(1s);
  EXPECT_EQ(Text("lblMoving"), "");
  EXPECT_EQ(Get<QLineEdit>("txtMassagesPath").text(), u"/mnt/new/");
  EXPECT_THAT(world.dialogs.informations, ElementsAre(testing::HasSubstr("two.wav")));
  Click("cmdCancel");
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(Stored("MassagesPath"), "/mnt/new/");
  EXPECT_TRUE(world.files.Exists("/mnt/new/one.wav"));
}

class GreetingsInOptions : public OptionsWindow {
 protected:
  void Press(const char* key) { Click(("tlbrGreetingPlayer." + std::string(key)).c_str()); }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (int i = 0; i < list().count(); ++i) names.push_back(list().itemText(i).toStdString());
    return names;
  }
  std::string Selected() { return Chosen("CmbGreetsMessages"); }
  QComboBox& list() { return Get<QComboBox>("CmbGreetsMessages"); }
};

TEST_F(GreetingsInOptions, ButtonsWorkOnTheNameThatIsSelected) {
  EXPECT_THAT(Names(), UnorderedElementsAre("Away", "Hello", "hello"));
  list().setCurrentIndex(list().findText("hello", Qt::MatchFixedString | Qt::MatchCaseSensitive));
  Press("Play");
  EXPECT_EQ(world.WavePlay.played.back().path, Greeting("hello"));
  EXPECT_EQ(Selected(), "hello") << "names that differ in their case only";
  Press("Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  Press("Add");
  EXPECT_EQ(Selected(), "hello") << "the creator was cancelled";
  made = "שלום";
  world.files.Put(Greeting(*made), TimedWave::Sound(1s));
  Press("Add");
  EXPECT_EQ(Selected(), *made);
}

TEST_F(GreetingsInOptions, DeletingAsksAndLeavesTheLastGreeting) {
  const auto before = Names();
  Press("Delete");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete Hello ?"));
  EXPECT_EQ(Names(), before);
  world.dialogs.yes = true;
  Press("Delete");
  EXPECT_FALSE(world.files.Exists(Greeting("Hello")));
  EXPECT_EQ(Selected(), Names().front());
  EXPECT_EQ(Stored("Greeting") + ".wav", world.shared.greeting_file);
  EXPECT_EQ(Stored("Greeting"), Selected());
  EXPECT_EQ(world.views.greetings, Names()) << "the main window follows";
  for (int i = 0; i < 2; ++i) Press("Delete");
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Can't Delete Last Greeting."));
  EXPECT_EQ(Names().size(), 1U);
  world.files.Delete(Greeting(Selected()));
  Open(2);
  for (const char* key : {"Play", "Delete"}) Press(key);
  EXPECT_THAT(Names(), testing::IsEmpty());
  EXPECT_EQ(Stored("Greeting"), "");
}

TEST_F(GreetingsInOptions, WheelChangesNothingUnlessTheListHasTheFocus) {
  list().setCurrentIndex(0);
  for (const bool focus : {false, true}) {
    focus ? list().setFocus() : Get("cmdOK").setFocus();
    const auto place = list().rect().center();
    QWheelEvent wheel(place, list().mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&list(), &wheel);
    EXPECT_EQ(list().currentIndex(), focus ? 1 : 0);
  }
}

}  // namespace
}  // namespace orven::test
