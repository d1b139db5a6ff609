// SPDX-License-Identifier: GPL-3.0-or-later
// The options dialog of a running machine, and the lines dialog with its engine, driven by object names.

#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "options/frmLineEdit.h"
#include "options/frmLines.h"
#include "options/frmOptions.h"
#include "support/scripted_lines.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

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
  std::vector<std::string> Greetings() { return Items("CmbGreetsMessages"); }

  AnsweringMachine& machine = world.Machine();
  std::optional<std::string> made;  ///< the name of the greeting that the greeting creator saves
  OptionsDialog engine{machine.ForOptionsDialog()};
  GreetingPlayer greetings{machine.ForGreetingPlayer([this] { return made; })};
  std::function<std::string()> open_lines;
  std::unique_ptr<frmOptions> window;
};

TEST_F(OptionsWindow, OpensOnTheRequestedTabAndTheNextCallUsesWhatIsChosen) {
  for (int tab = 4; tab-- > 0;) {
    Open(tab);
    for (int frame = 0; frame < 4; ++frame)
      EXPECT_EQ(Visible("Frame" + std::to_string(frame + 1)), frame == tab) << tab;
  }
  ExpectShown({{"lblSilence", "5 %"}, {"lblAutoVoice", "Yes"}, {"txtMassagesPath", world.messages}});
  Do("txtNumOfRing=20 txtRecLong=5 CmbGreetsMessages=Away cmdRecordMessage=false chkQuickToolBar=false "
     "cmdOK");
  const auto& settings = machine.settings;
  EXPECT_TRUE(settings.NumOfRing == 20 && settings.max_record_seconds == 300 && settings.RecordMessage == 0);
  EXPECT_EQ(settings.Greeting + world.views.selected_greeting, "AwayAway");
  EXPECT_FALSE(world.views.shown_record || world.views.quick_toolbar);
}

TEST_F(OptionsWindow, UnusualInputIsTakenAsItIsAndCancelStoresNothing) {
  const std::string password = " a b" + std::string(600, '7');
  for (const auto& [typed, hint] : {std::pair(password, "A telephone can key the digits 0 to 9 and # only."),
                                    {"#0123456789", "Enter it while the greeting plays, then press *"},
                                    {"", "Without a password anyone who keys * hears the messages."}}) {
    Set({{"txtPass", typed}});
    ExpectShown({{"lblPassHint", hint}});
  }
  EXPECT_EQ(Get<QLineEdit>("txtPass").echoMode(), QLineEdit::Password);
  Get<QAction>("actShowPass").trigger();
  EXPECT_EQ(Get<QLineEdit>("txtPass").echoMode(), QLineEdit::Normal);
  Open(1);
  Set({{"txtPass", password}, {"cmbModemDev", "No such device"}});
  ExpectShown({{"lblNoDevice", "There is no device of this name now."}, {"lblDeviceName", ""}});
  ExpectShown({{"txtPass", password.substr(0, 500)}});
  Get("cmdCancel").setFocus();
  QTest::keyClick(&Get("cmdCancel"), Qt::Key_Return);
  ExpectStored({{"Pass", "4711"}, {"ModemName", "Sim"}});
  Open(1);
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
  std::string added;
  open_lines = [&] { return machine.settings.ModemName += "!", added; };
  Open(1);
  EXPECT_EQ(Items("cmbSoundDev").at(1), "Sound card 1 (not connected)");
  ExpectShown({{"cmbSoundDev", "Sound card 2 (not connected)"}});
  world.cards.names = {"Default output", "Camera", "Headset"};
  Do("2s cmbSoundDev:Headset");
  EXPECT_EQ(Items("cmbSoundDev").size(), 3U);
  for (const auto& chosen : {std::string("Home"), machine.settings.ModemName + "!"}) {
    Set({{"cmbModemDev", chosen}});
    Click("cmdLines");
    ExpectShown({{"cmbModemDev", chosen == "Home" ? chosen : machine.settings.ModemName}});
    EXPECT_EQ(Items("cmbModemDev").at(0), "Sim");
  }
  added = "New";
  Do("cmdLines cmbModemDev:New");
}

TEST_F(OptionsWindow, TheLevelOfTheCallerIsShownWhileTheDialogIsOpen) {
  const auto& meter = Get<SilenceMeter>("prgSilence");
  EXPECT_EQ(meter.Level(), std::nullopt);
  world.CallAndWaitForAnswer();
  world.Wave1.SetLevel(320);
  for (const auto* heard : {"the greeting", "the beep", "the recording"}) {
    world.RunFor(1s);
    EXPECT_EQ(meter.Level(), 320) << heard;
  }
  ExpectShown({{"lblLevel", "The caller's level now: 32 % (heard)"}});
  Set({{"sldSilence", "40"}});
  ExpectShown({{"lblLevel", "The caller's level now: 32 % (silent)"}});
  window.reset();
  world.RunFor(100ms);
}

TEST_F(OptionsWindow, StaysOpenWhileMessagesMoveAndKeepsTheNewFolderEvenIfCancelled) {
  for (const char* name : {"one.wav", "two.wav"}) world.AddMessage(name, 1s);
  world.background.takes = 1s;
  Do("cmdBrowsMessagesPath");
  EXPECT_TRUE(Enabled("cmdOK")) << "no folder was chosen";
  world.dialogs.chosen = "/mnt/new";
  Do("cmdBrowsMessagesPath 2s 500ms");
  ExpectShown({{"lblMoving", "Moving the messages: 1 of 2"}});
  EXPECT_FALSE(Enabled("cmdOK") || Enabled("cmdCancel") || Enabled("cmdBrowsMessagesPath"));
  window->close();
  EXPECT_TRUE(window->isVisible());
  Do("1s lblMoving: txtMassagesPath:/mnt/new/ cmdCancel");
  EXPECT_FALSE(window->isVisible());
  ExpectStored({{"MassagesPath", "/mnt/new/"}});
}

TEST_F(OptionsWindow, TheGreetingButtonsActOnTheSelectedNameAndKeepTheLastGreeting) {
  Set({{"CmbGreetsMessages", "hello"}});
  Press("Play");
  EXPECT_EQ(world.WavePlay.played.back().first, Greeting("hello"));
  for (const char* key : {"Stop", "Add"}) Press(key);
  EXPECT_TRUE(!world.WavePlay.IsPlaying() && Shown("CmbGreetsMessages") == "hello");
  made = "Away";
  Do("tlbrGreetingPlayer.Add CmbGreetsMessages:Away");
  Press("Delete");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Delete Away ?"));
  EXPECT_TRUE(world.files.Exists(Greeting("Away")));
  world.dialogs.yes = true;
  Press("Delete");
  EXPECT_FALSE(world.files.Exists(Greeting("Away")));
  ExpectShown({{"CmbGreetsMessages", Greetings().front()}});
  ExpectStored({{"Greeting", Greetings().front()}});
  EXPECT_EQ(world.Machine().settings.Greeting, Greetings().front());
  EXPECT_EQ(world.views.greetings, Greetings()) << "the main window is updated";
  for (int i = 0; i < 2; ++i) Press("Delete");
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Can't Delete Last Greeting."));
  EXPECT_EQ(Greetings().size(), 1U);
  world.files.Delete(Greeting(Greetings().front()));
  Open(2);
  for (const char* key : {"Play", "Delete"}) Press(key);
  EXPECT_THAT(Greetings(), testing::IsEmpty());
}

class LinesWindow : public WindowTest {
 protected:
  LinesWindow() {
    TelephoneLine home, modem;
    std::tie(home.name, home.server, home.user, home.password, home.srtp, home.origin) =
        std::tuple("Home", "192.168.1.1", "100", "secret", "yes", 1);
    std::tie(modem.name, modem.kind, modem.port, modem.origin) =
        std::tuple("Old modem", LineKind::Modem, "/dev/gone", 8);
    lines.configured = {{home, modem}, {"lines.ini:3: something is wrong"}};
    lines.states = {{"Home", "Registering"}};
    Open();
  }
  void Open() {
    auto& machine = world.Machine();
    engine = std::make_unique<LinesDialog>(LinesDialog::Parts{lines, world.dialogs, machine.log,
                                                              machine.store, machine.settings,
                                                              [this] { return ++used, !call_up; }});
    window = std::make_unique<frmLines>(*engine, nullptr);
    Show(*window);
  }
  QTreeWidget& List() { return *window->findChild<QTreeWidget*>(); }
  std::string Row(int row) {
    QStringList cells;
    for (int column = 0; column < 4; ++column) cells << List().topLevelItem(row)->text(column);
    return cells.join(u'|').toStdString();
  }
  void Select(int row) { List().setCurrentItem(List().topLevelItem(row)); }

  /// Clicks the button that opens the window of one line and runs `act`, which must close that window.
  void InEditor(const char* button, const std::function<void()>& act) {
    QTimer::singleShot(0, [&] {
      auto& editor = *QApplication::activeModalWidget();
      Show(editor);
      act();
      EXPECT_FALSE(editor.isVisible()) << "it should have closed";
      editor.close();
      Show(*window);
    });
    Click(button);
  }

  ScriptedLines lines;
  int used = 0;
  bool call_up = false;
  std::unique_ptr<LinesDialog> engine;
  std::unique_ptr<frmLines> window;
};

TEST_F(LinesWindow, ShowsTheLinesAndTheirStateAsItChanges) {
  EXPECT_EQ(Row(0), "Home|SIP account|100@192.168.1.1|Registering");
  EXPECT_EQ(Row(1), "Old modem|Modem|/dev/gone|Off");
  ExpectShown({{"lblComplaints", "lines.ini:3: something is wrong"}});
  lines.states["Home"] = "Registered";
  EXPECT_TRUE(QTest::qWaitFor([&] { return Row(0).ends_with("|Registered"); }));
  EXPECT_TRUE(List().topLevelItem(0)->isSelected()) << "the selection is kept";
  // Enter in the list opens the line's window and stores nothing.
  QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
  EXPECT_FALSE(Get<QPushButton>("cmdTest").autoDefault() || Get<QPushButton>("cmdOK").isDefault());
  QTest::keyClick(&List(), Qt::Key_Return);
  EXPECT_TRUE(window->isVisible() && used == 0);
}

TEST_F(LinesWindow, ALineIsAddedAndBadInputIsNamedBelowItsField) {
  InEditor("cmdAdd", [&] {
    const auto& fault = Get<QLabel>("lblFault");
    Do("txtName=Home cmdOK");
    EXPECT_THAT(Shown("lblFault"), HasSubstr("Another line"));
    Do("txtName=Büro txtUser=7");
    EXPECT_FALSE(fault.isVisible());
    for (int word = 0; word < 40; ++word) lines.fault += " wrong";  // makes the text several lines long
    Do("cmdOK @txtServer");
    ExpectShown({{"lblFault", lines.fault}});
    ExpectTidy(*fault.window());
    EXPECT_FALSE(Visible("txtListen")) << "few people need it";
    const auto y = [&](const QWidget& control) { return control.mapTo(control.window(), QPoint()).y(); };
    EXPECT_TRUE(y(fault) > y(Get("txtServer")) && y(fault) < y(Get("txtUser")));
    Set({{"txtServer", " pbx.example.org "}, {"txtPassword", " x"}});
    Do("cmdOK @txtPassword");
    Set({{"txtPassword", "y"}});
    Click("cmdTest");
    lines.done({false, lines.fault, "txtListen"});
    EXPECT_TRUE(Visible("txtListen")) << "it has to be changed";
    ExpectTidy(*fault.window());
    Do("txtUser=8 cmdMore txtUser=7");
    EXPECT_FALSE(Visible("txtListen"));
    EXPECT_EQ(Get<QLineEdit>("txtPassword").echoMode(), QLineEdit::Password);
    Click("chkShowPassword");
    EXPECT_EQ(Get<QLineEdit>("txtPassword").echoMode(), QLineEdit::Normal);
    Set({{"txtPassword", "x y"}});
    Click("cmdMore");
    Get<QComboBox>("cmbTransport").setCurrentIndex(4);
    Do("txtListen=1.1.1.1:9 cmdMore");
    Do("spnRing=61 cmdOK");
  });
  EXPECT_EQ(Row(2), "Büro|SIP account|7@pbx.example.org|Off");
  EXPECT_TRUE(List().topLevelItem(2)->isSelected());
  EXPECT_THAT(lines.configured.lines, SizeIs(2)) << "nothing is stored before OK";
  Click("cmdOK");
  const auto& added = lines.configured.lines.at(2);
  EXPECT_EQ(added.password + "|" + added.transport + "|" + added.srtp, "x y|tls|no");
  EXPECT_EQ(added.listen, "1.1.1.1:9") << "hidden again, but not forgotten";
  EXPECT_TRUE(added.ring_seconds == 60 && used == 1 && !window->isVisible());
}

TEST_F(LinesWindow, TheChosenLineStaysChosenUnderAnotherName) {
  world.Machine().settings.ModemName = "Home";
  InEditor("cmdEdit", [&] {
    EXPECT_TRUE(!Enabled("cmbKind") && Shown("txtPassword") == "secret");
    EXPECT_TRUE(Visible("txtListen")) << "this line has an unusual value";
    Do("txtName=House cmdOK");
  });
  call_up = true;
  Click("cmdOK");
  ExpectStored({{"ModemName", "House"}});
  EXPECT_EQ(lines.configured.lines[0].srtp, "yes") << "values written by hand are kept";
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("when it is over")));
}

TEST_F(LinesWindow, AModemsPortIsChosenFromThoseFoundAndTheStoredOneStays) {
  Select(1);
  InEditor("cmdEdit", [&] {
    EXPECT_FALSE(Visible("txtServer"));
    lines.ports = {{"/dev/ttyUSB0", "/dev/ttyUSB0"}};
    Do("cmdFindPorts cmbPort:/dev/gone cmbPort=/dev/ttyUSB0");
    QTest::keyClick(&Get("cmdTest"), Qt::Key_Return);
    EXPECT_EQ(lines.tested.at(0).port, "/dev/ttyUSB0");
    lines.done({false, "Nothing answers."});
    ExpectShown({{"lblTestResult", "Nothing answers."}});
    Do("txtName=Modem lblTestResult: cmdOK");
  });
  EXPECT_EQ(Row(1), "Modem|Modem|/dev/ttyUSB0|Off");
}

TEST_F(LinesWindow, ATestCanBeStoppedAndEndsWithTheWindow) {
  const std::function<void()> ends[] = {[&] { Click("cmdTest"); }, [&] { Select(1); },
                                        [&] { window.reset(); }};
  for (const auto& end : ends) {
    Do("cmdTest lblTestResult:Testing…");
    EXPECT_EQ(lines.tested.back().name, "Home");
    end();
    EXPECT_EQ(lines.done, nullptr) << &end - ends;
    if (window) Select(0);
  }
}

TEST_F(LinesWindow, RemoveAsksCancelStoresNothingAndAFailureKeepsTheWindow) {
  Click("cmdRemove");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Remove the line \"Home\" ?"));
  EXPECT_EQ(List().topLevelItemCount(), 2);
  world.dialogs.yes = true;
  Do("cmdRemove cmdRemove");
  EXPECT_EQ(List().topLevelItemCount(), 0);
  EXPECT_FALSE(Enabled("cmdEdit") || Enabled("cmdRemove") || Enabled("cmdTest"));
  lines.before_store = [] { throw RuntimeError(ErrorNumber::DiskFull, "lines.ini"); };
  Click("cmdOK");
  EXPECT_TRUE(window->isVisible());
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("Disk full: lines.ini")));
  QTest::keyClick(window.get(), Qt::Key_Escape);
  EXPECT_TRUE(!window->isVisible() && window->result() == QDialog::Rejected);
  EXPECT_THAT(lines.configured.lines, SizeIs(2));
  lines.before_store = [] { FAIL() << "nothing was changed"; };
  Open();
  Click("cmdOK");
  EXPECT_EQ(used, 0);
}

}  // namespace
}  // namespace orven::test
