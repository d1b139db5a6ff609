// SPDX-License-Identifier: GPL-3.0-or-later
// The set-up assistant of a running machine, driven by the object names of its controls.

#include "gui/window_test.h"
#include "setup/frmSetup.h"
#include "support/scripted_lines.h"
#include "support/scripted_own_caller.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SetupWindow : public WindowTest {
 protected:
  SetupWindow() {
    TelephoneLine first;
    first.name = kFirstLine;
    first.listen = "127.0.0.1:5060";
    lines.configured.lines = {first};
    world.device.device_name = kFirstLine;
    lines.taken.insert("0.0.0.0:5060");
    world.Start().RunFor(1s);
    Use();
    Open(SetupPage::Telephone);
  }
  /// Opens the assistant as the menu item does.
  void Open(SetupPage page) {
    engine.reset();
    window = std::make_unique<frmSetup>(nullptr);
    engine.emplace(world.Machine().ForSetupAssistant(
                       lines, [this] { return Use(); },
                       [this](CreatorTab tab) {
                         tabs.push_back(tab);
                         world.Machine().settings.Greeting = "Mine";
                       },
                       caller),
                   *window);
    window->Attach(*engine);
    engine->Open(page);
    Show(*window);
  }
  /// Makes devices of the stored lines.
  bool Use() {
    std::vector<TelephoneDevice> devices;
    for (const auto& line : lines.configured.lines)
      devices.push_back({VoiceDevice(line.name), std::make_unique<TestLine>(world.time)});
    world.Machine().line.ReplaceDevices([&] { (void)world.Tapi1->Replace(std::move(devices)); });
    return true;
  }
  void Finish(bool passed, const Words& text) {
    const auto done = lines.done;  // the assistant forgets its test
    ASSERT_TRUE(done);
    done({passed, text});
  }
  int Page() const { return Get<QStackedWidget>("pages").currentIndex(); }
  const TelephoneLine& Stored(std::size_t index) const { return lines.configured.lines.at(index); }

  ScriptedLines lines;
  ScriptedOwnCaller caller;
  std::vector<CreatorTab> tabs;
  std::unique_ptr<frmSetup> window;
  std::optional<SetupAssistant> engine;
};

TEST_F(SetupWindow, FiveClicksAndThreeFieldsLeadFromTheMenuItemToACallByItsOwnLine) {
  int clicks = 1;  // the menu item
  const auto click = [&](const char* button) {
    ++clicks;
    QTest::mouseClick(&Get(button), Qt::LeftButton);
    QApplication::processEvents();
  };
  const auto type = [&](const char* text) {
    QTest::keyClicks(window->focusWidget(), QString::fromLatin1(text));
  };
  click("optAccount");
  for (const char* text : {"sip.example.org", "620"}) {
    type(text);
    QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
  }
  type("secret");
  click("cmdNext");
  Finish(true, "The server sip.example.org accepts the account 620.");
  ExpectShown({{"lblFound", "The server sip.example.org accepts the account 620."}});
  EXPECT_TRUE(world.Machine().line.LineOn());
  EXPECT_EQ(world.views.Status(), "Monitoring Telephone");
  click("cmdNext");
  click("cmdNext");
  click("cmdCall");
  EXPECT_TRUE(caller.news);
  EXPECT_EQ(clicks, 6);
  ExpectStored({{"ModemName", "Telephone"}});
  EXPECT_TRUE(Stored(1).server == "sip.example.org" && Stored(1).user == "620" &&
              Stored(1).password == "secret");
}

TEST_F(SetupWindow, EachKindOfTelephoneAsksForWhatItNeedsAndIsStoredOnce) {
  const struct {
    const char* button;
    const char* fields;  ///< what is typed
    const char* result;  ///< the fields of the stored line
    std::size_t index;
  } kinds[] = {
      {"optRouter", "txtUser=620", "192.168.1.1 620 0.0.0.0:50602 ", 1},
      {"optAccount", "txtServer=sip.example.org txtUser=4711", "sip.example.org 4711 0.0.0.0:50602 ", 1},
      {"optTry", "", "  127.0.0.1:50602 ", 0},
      {"optModem", "", "  0.0.0.0:5060 auto", 1},
  };
  lines.taken = {"0.0.0.0:5060", "127.0.0.1:5060"};
  const auto fresh = lines.configured;
  for (const auto& kind : kinds) {
    SCOPED_TRACE(kind.button);
    lines.configured = fresh;
    for (const auto* time : {"the first time", "again"}) {
      SCOPED_TRACE(time);
      Open(SetupPage::Telephone);
      Click(kind.button);
      EXPECT_EQ(Visible("txtServer"), *kind.fields != '\0');
      EXPECT_EQ(Visible("lblNote"), kind.button != std::string("optModem") && time != std::string("again"));
      Do(kind.fields + std::string(" cmdNext"));
      Finish(true, "Found.");
      const auto& line = Stored(kind.index);
      EXPECT_EQ(line.server + ' ' + line.user + ' ' + line.listen + ' ' + line.port, kind.result);
      EXPECT_THAT(lines.configured.lines, SizeIs(kind.index + 1));
      EXPECT_EQ(world.Machine().settings.ModemName, line.name);
      EXPECT_EQ(Page(), 1);
    }
  }
}

TEST_F(SetupWindow, AFailedTestSaysWhyAndKeepsThePageUntilTheLineIsChangedOrUsedAnyway) {
  QTest::keyClick(&Get("optRouter"), Qt::Key_Tab);
  EXPECT_EQ(Focused(), "txtServer");
  Click("cmdNext");
  ExpectShown({{"lblFound", lines.fault}});
  EXPECT_FALSE(Visible("cmdUseAnyway"));
  Do("txtUser=620 cmdNext lblFound:Testing…");
  EXPECT_FALSE(Enabled("cmdNext"));
  Finish(false, "The password is wrong.");
  EXPECT_TRUE(Enabled("cmdNext") && Visible("cmdUseAnyway") && Page() == 0);
  Do("optRouter txtUser:620");
  QTest::keyClicks(&Get("txtPassword"), QStringLiteral("x"));
  ExpectShown({{"lblFound", ""}});
  Get("txtPassword").setFocus();
  QTest::keyClick(&Get("txtPassword"), Qt::Key_Return);
  Finish(false, "There is no answer.");
  Do("@txtPassword");
  lines.before_store = [] { throw std::runtime_error("the disk is full"); };
  Click("cmdUseAnyway");
  EXPECT_EQ(Page(), 0);
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("the disk is full")));
  EXPECT_NE(world.registry.Text("ModemName"), "Telephone");
  lines.before_store = [] {};
  Do("cmdNext");
  Finish(false, "There is no answer.");
  Click("cmdUseAnyway");
  EXPECT_EQ(Page(), 1);
  ExpectStored({{"ModemName", "Telephone"}});
}

TEST_F(SetupWindow, ALineThatWasMadeInTheOptionsIsKnownByItsAccount) {
  TelephoneLine office;
  office.name = "Office";
  office.server = "192.168.1.1";
  office.user = "620";
  office.proxy = "proxy.example.org";
  lines.configured.lines.push_back(office);
  Use();
  Open(SetupPage::Telephone);
  Do("txtUser=620 txtPassword=new cmdNext");
  Finish(true, "Found.");
  EXPECT_THAT(lines.configured.lines, SizeIs(2));
  EXPECT_TRUE(Stored(1).password == "new" && Stored(1).proxy == office.proxy);
}

TEST_F(SetupWindow, TheGreetingIsHeardAndMadeAndTheEmptyListOffersWhatIsNotDone) {
  world.Machine().settings.Greeting = "Default";
  const auto& steps = world.Machine().steps;
  EXPECT_EQ(steps.Offers(), (SetupOffers{true, true, true}));
  Do("cmdSkip cmdPlay");
  EXPECT_TRUE(world.views.Had("sound:/home/orven/Greets/Default.wav"));
  Do("cmdSkip cmdBack");
  EXPECT_EQ(steps.Offers(), (SetupOffers{false, true, true})) << "the telephone was passed by knowingly";
  Do("cmdType cmdSpeak cmdNext cmdNext");
  EXPECT_THAT(tabs, ElementsAre(CreatorTab::TextToSpeech, CreatorTab::Speaker));
  EXPECT_EQ(steps.Offers(), SetupOffers());
}

TEST_F(SetupWindow, ThePasswordAndTheMailAreStoredAndAWrongAddressKeepsThePage) {
  Open(SetupPage::Away);
  EXPECT_FALSE(Visible("txtSMTP"));
  ExpectShown({{"txtPass", "4711"}});
  Do("txtPass=123456 chkSendToMail=true txtSendToMail=anna cmdNext @txtSendToMail");
  EXPECT_THAT(world.dialogs.informations, SizeIs(1));
  Do("txtSendToMail=anna@example.org txtSMTP=mail.example.org txtPass=654321 chkKeepAwake=true cmdTestMail");
  EXPECT_EQ(world.mail_tests.recipient + world.mail_tests.sender + world.mail_tests.account.server,
            "anna@example.organna@example.orgmail.example.org");
  world.mail_tests.done({false, "No such server."});
  ExpectShown({{"lblFound", "No such server."}});
  Do("cmdNext");
  EXPECT_EQ(Page(), 3);
  ExpectStored({{"Pass", "654321"},
                {"KeepAwake", "1"},
                {"pMailTo", "1"},
                {"MailTo", "anna@example.org"},
                {"MailFrom", "anna@example.org"}});
  EXPECT_EQ(world.Machine().settings.Pass + world.Machine().settings.SMTPServer, "654321mail.example.org");
}

TEST_F(SetupWindow, ReadyShowsTheLineAndTicksOffTheStepsOfTheCall) {
  caller.obstacle = "This line cannot be called by the program.";
  lines.states = {{kFirstLine, "Waiting for calls"}};
  Open(SetupPage::Ready);
  ExpectShown({{"lblLine", std::string(kFirstLine) + ": Waiting for calls"},
               {"lblObstacle", caller.obstacle.English()}});
  EXPECT_FALSE(Enabled("cmdCall"));
  caller.obstacle = {};
  Do("1s cmdCall");
  caller.news({OwnCallerNews::Kind::Over, "The line does not ring."});
  const auto& step = *Get<QListWidget>("lstSteps").item(0);
  EXPECT_EQ(step.text(), u"The line does not ring.");
  EXPECT_FALSE(step.icon().isNull());
}

}  // namespace
}  // namespace orven::test
