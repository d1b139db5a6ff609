// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QAction>
#include <QTest>

#include "base/runtime_error.h"
#include "options/frmOptions.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

class OptionsWindow : public testing::Test {
 protected:
  OptionsWindow() {
    world.registry.Set("ValSilence", "50");
    world.files.Put("/home/orven/Greets/Away.wav", TimedWave::Sound(1s));
    world.Start().RunFor(1s);
    Open(2);
  }
  void Open(int tab) {
    window.reset();
    window = std::make_unique<frmOptions>(frmOptions::Parts{engine, greetings, open_lines}, tab, nullptr);
    window->show();
  }
  template <class Control>
  Control& Get(const char* name) {
    auto* control = window->findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  void Click(const char* button) { Get<QAbstractButton>(button).click(); }
  void Type(const char* list, const char* text) { Get<QComboBox>(list).setEditText(QString::fromUtf8(text)); }
  std::string Text(const char* label) { return Get<QLabel>(label).text().toStdString(); }
  std::string Stored(const char* name) { return world.registry.Text(name); }

  World world;
  AnsweringMachine& machine = world.Machine();
  OptionsDialog engine{machine.ForOptionsDialog()};
  GreetingPlayer greetings{machine.ForGreetingPlayer([] { return std::nullopt; })};
  std::function<void()> open_lines;
  std::unique_ptr<frmOptions> window;
};

TEST_F(OptionsWindow, ShowsTheSettingsOnTheTabThatWasAskedFor) {
  auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 2);
  EXPECT_EQ(tabs.tabText(0) + u'|' + tabs.tabText(1) + u'|' + tabs.tabText(2) + u'|' + tabs.tabText(3),
            u"General|Devices|Answer Mode|Advanced");
  const char* const frames[] = {"Frame1", "Frame2", "Frame3", "Frame4"};
  for (int tab = 0; tab < 4; ++tab) {
    tabs.setCurrentIndex(tab);
    for (int other = 0; other < 4; ++other)
      EXPECT_EQ(Get<QWidget>(frames[other]).isVisible(), other == tab) << tab << other;
  }
  const std::pair<const char*, const char*> texts[] = {{"cmbSilenceSec", "3"},
                                                       {"txtNumOfRing", "2"},
                                                       {"txtRecLong", "1"},
                                                       {"cmbModemDev", "Sim"},
                                                       {"cmbSoundDev", "Default output"},
                                                       {"CmbGreetsMessages", "Hello"}};
  for (const auto& [name, text] : texts) EXPECT_EQ(Get<QComboBox>(name).currentText().toStdString(), text);
  EXPECT_EQ(Get<QComboBox>("txtNumOfRing").count(), 20);
  EXPECT_EQ(Get<QSlider>("sldSilence").value(), 5);
  EXPECT_EQ(Text("lblSilence"), "5 %");
  EXPECT_EQ(Get<QLineEdit>("txtMassagesPath").text().toStdString(), world.messages);
  EXPECT_TRUE(Get<QLineEdit>("txtMassagesPath").isReadOnly());
  EXPECT_EQ(Text("lblDeviceName"), "Sim");
  EXPECT_EQ(Text("lblAutoVoice"), "Yes");
  const std::pair<const char*, bool> checks[] = {
      {"chkDropIfSilnce", true},      {"cmdRecordMessage", true}, {"chkWornDelete", true},
      {"chkWornClear", true},         {"chkPreScreen", false},    {"chkAllowRemoteAccess", true},
      {"chkListMessagesOnly", false}, {"chkCompress", false},     {"chkQuickToolBar", true},
      {"chkRenOnStart", false}};
  for (const auto& [name, on] : checks) EXPECT_EQ(Get<QCheckBox>(name).isChecked(), on) << name;
  EXPECT_FALSE(Get<QAbstractButton>("cmdLines").isEnabled()) << "there is nothing to set them up with";
}

TEST_F(OptionsWindow, EveryControlStoresItsSetting) {
  const std::pair<const char*, const char*> checks[] = {{"chkDropIfSilnce", "cDropSilence"},
                                                        {"cmdRecordMessage", "RecordMessage"},
                                                        {"chkWornDelete", "WornDelete"},
                                                        {"chkWornClear", "WornClear"},
                                                        {"chkListMessagesOnly", "ListMessageOnly"},
                                                        {"chkPreScreen", "PreScreen"},
                                                        {"chkAllowRemoteAccess", "AllowRemoteAccess"},
                                                        {"chkCompress", "CompressMessages"},
                                                        {"chkQuickToolBar", "pQuickToolbar"}};
  world.cards.names = {"Default output", "Headset"};
  for (const bool on : {false, true}) {
    Open(0);
    for (const auto& [name, setting] : checks) Get<QCheckBox>(name).setChecked(on);
    Get<QCheckBox>("chkRenOnStart").setChecked(on);
    Get<QComboBox>("cmbSoundDev").setCurrentIndex(1);
    Get<QComboBox>("CmbGreetsMessages").setCurrentText("Away");
    Get<QSlider>("sldSilence").setValue(on ? 5 : 9);
    Type("cmbSilenceSec", on ? "12" : "4");
    Type("txtNumOfRing", "20");
    Type("txtRecLong", "5");
    Click("cmdOK");
    EXPECT_EQ(window->result(), QDialog::Accepted);
    for (const auto& [name, setting] : checks) EXPECT_EQ(Stored(setting), on ? "1" : "0") << setting;
    EXPECT_EQ(world.registry.Text("ORVEN", kAutostartKey), on ? "/home/orven/ORVEN.exe -st" : kNotFound);
  }
  const std::pair<const char*, const char*> stored[] = {
      {"ValSilence", "50"}, {"SecSilence", "12"}, {"NumOfRing", "20"}, {"MaxRec", "5"},
      {"Sound", "1"},       {"Greeting", "Away"}, {"Modem", "0"},      {"ModemName", "Sim"}};
  for (const auto& [name, text] : stored) EXPECT_EQ(Stored(name), text) << name;
  EXPECT_EQ(world.views.selected_greeting, "Away");
}

TEST_F(OptionsWindow, UnusualInputIsTakenAsItIsAndCancelTakesNothing) {
  const auto password = QStringLiteral(" a b") + QString(300, u'7');
  Get<QLineEdit>("txtPass").setText(password);
  EXPECT_EQ(Text("lblPassHint"), "A telephone can key the digits 0 to 9 and # only.");
  Get<QCheckBox>("chkAllowRemoteAccess").setChecked(false);
  Get<QLineEdit>("txtPass").clear();
  EXPECT_EQ(Text("lblPassHint"), "Without a password anyone who keys * hears the messages.");
  Get<QLineEdit>("txtPass").setText(password);
  EXPECT_EQ(Get<QLineEdit>("txtPass").echoMode(), QLineEdit::Password);
  Get<QAction>("actShowPass").trigger();
  EXPECT_EQ(Get<QLineEdit>("txtPass").echoMode(), QLineEdit::Normal);
  Type("cmbModemDev", "No such device");
  EXPECT_EQ(Text("lblNoDevice"), "There is no device of this name now.");
  EXPECT_EQ(Text("lblDeviceName"), "");
  Type("txtNumOfRing", "two");
  Get<QWidget>("cmdCancel").setFocus();
  QTest::keyClick(&Get<QWidget>("cmdCancel"), Qt::Key_Return);
  EXPECT_EQ(window->result(), QDialog::Rejected);
  EXPECT_EQ(Stored("Pass") + Stored("ModemName"), "4711Sim");

  Open(1);
  Get<QLineEdit>("txtPass").setText(password);
  Type("cmbModemDev", "No such device");
  Type("txtNumOfRing", "two");
  Click("cmdOK");
  EXPECT_EQ(Stored("Pass"), password.toStdString());
  EXPECT_EQ(Stored("Modem") + Stored("ModemName"), "-1No such device");
  EXPECT_EQ(Stored("NumOfRing"), "2") << "what is no number is left out";
  Open(1);
  EXPECT_EQ(Get<QComboBox>("cmbModemDev").currentText(), u"No such device");
}

TEST_F(OptionsWindow, NumbersHaveTheirLimits) {
  auto& rings = *Get<QComboBox>("txtNumOfRing").lineEdit();
  QTest::keyClicks(&rings, QStringLiteral("x"));
  rings.selectAll();
  QTest::keyClicks(&rings, QStringLiteral("25"));
  EXPECT_EQ(rings.text(), u"2");
  rings.clear();
  QTest::keyClick(&rings, Qt::Key_Return);
  EXPECT_EQ(rings.text(), u"2") << "an emptied field keeps what it had";
}

TEST_F(OptionsWindow, AVanishedCardAndChangedLinesKeepWhatIsChosen) {
  world.registry.Set("Sound", "1");
  machine.settings.Sound = 1;
  open_lines = [this] { machine.settings.ModemName += "!"; };
  Open(1);
  EXPECT_EQ(Get<QComboBox>("cmbSoundDev").currentText(), u"Sound card 1 (not there now)");
  world.cards.names = {"Default output", "Headset"};
  world.RunFor(2s);
  EXPECT_EQ(Get<QComboBox>("cmbSoundDev").currentText(), u"Headset");
  EXPECT_EQ(Get<QComboBox>("cmbSoundDev").count(), 2);
  Type("cmbModemDev", "Home");
  Click("cmdLines");
  EXPECT_EQ(Get<QComboBox>("cmbModemDev").currentText(), u"Home");
  EXPECT_EQ(Get<QComboBox>("cmbModemDev").itemText(0), u"Sim");
  Type("cmbModemDev", machine.settings.ModemName.c_str());
  Click("cmdLines");
  EXPECT_EQ(Get<QComboBox>("cmbModemDev").currentText().toStdString(), machine.settings.ModemName);
}

TEST_F(OptionsWindow, TheLevelOfAMessageIsShownWhileItIsRecorded) {
  auto& meter = Get<SilenceMeter>("prgSilence");
  EXPECT_EQ(meter.Level(), std::nullopt);
  world.CallAndWaitForRecording();
  world.loud = 320;
  world.RunFor(100ms);
  EXPECT_EQ(meter.Level(), 320);
  EXPECT_EQ(Text("lblLevel"), "The caller now: 32 %, heard");
  Get<QSlider>("sldSilence").setValue(40);
  EXPECT_EQ(Text("lblLevel"), "The caller now: 32 %, silent");
  window.reset();
  world.RunFor(100ms);
}

TEST_F(OptionsWindow, MessagesMoveWithTheFolderThoughTheDialogIsCancelled) {
  world.AddMessage("one.wav", 1s);
  world.AddMessage("two.wav", 1s);
  world.files.before_write = [](const std::string& path) {
    if (path == "/mnt/new/two.wav") throw RuntimeError(ErrorNumber::DiskFull, path);
  };
  world.dialogs.browsed = "/mnt/new";
  Click("cmdBrowsMessagesPath");
  EXPECT_EQ(world.dialogs.browse_title, "Save Messages To");
  world.RunFor(100ms);
  EXPECT_EQ(Get<QLineEdit>("txtMassagesPath").text(), u"/mnt/new/");
  EXPECT_THAT(world.dialogs.informations, ElementsAre(testing::HasSubstr("two.wav")));
  Click("cmdCancel");
  EXPECT_EQ(Stored("MassagesPath"), "/mnt/new/");
  EXPECT_TRUE(world.files.Exists("/mnt/new/one.wav"));
}

TEST_F(OptionsWindow, StaysWhileMessagesAreMoved) {
  for (const char* name : {"one.wav", "two.wav"}) world.AddMessage(name, 1s);
  world.background.takes = 1s;
  world.dialogs.browsed = "/mnt/new";
  Click("cmdBrowsMessagesPath");
  world.RunFor(2s + 500ms);
  EXPECT_EQ(Text("lblMoving"), "Moving the messages: 1 of 2");
  for (const char* name : {"cmdOK", "cmdCancel", "cmdBrowsMessagesPath"}) {
    EXPECT_FALSE(Get<QAbstractButton>(name).isEnabled()) << name;
  }
  window->close();
  EXPECT_TRUE(window->isVisible());
  world.RunFor(1s);
  EXPECT_EQ(Text("lblMoving"), "");
  EXPECT_TRUE(Get<QAbstractButton>("cmdBrowsMessagesPath").isEnabled());
  window->close();
  EXPECT_FALSE(window->isVisible());
}

}  // namespace
}  // namespace orven::test
