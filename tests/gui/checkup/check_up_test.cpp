// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkup/frmCheckUp.h"
#include "gui/window_test.h"
#include "support/scripted_lines.h"
#include "support/scripted_own_caller.h"

namespace orven::test {
namespace {

using testing::HasSubstr;

class CheckUpWindow : public WindowTest {
 protected:
  CheckUpWindow() {
    world.cards.names = {"Default output", "USB"};
    world.registry.Set("pMailTo", "1");
    world.files.Put(World::kHome + std::string("/Calls"), "");
    world.Start();
    Mend();
  }
  void Mend() {
    lines.configured.complaints.clear();
    lines.configured.lines.resize(1);
    lines.configured.lines[0].name = "Sim";
    lines.configured.lines[0].server = "box";
    line = {true, "The server box accepts it."};
    mail = {true, "mail takes mails."};
    greeting = beep = {1};
    world.disk.Mend();
    world.files.room = 1'000'000'000;
    world.Machine().settings.Sound = 0;
    world.Machine().settings.ModemName = "Sim";
    world.Machine().line.Trouble(0, {});
    world.window->TurnOn();
  }
  /// Opens the window, lets every check but those of `hangs` end, and returns what the rows show.
  std::string Check(const std::string& hangs = "") {
    window.emplace(world.Machine().ForCheckUp(lines, world.waveforms), world.Machine().ForOwnCall(caller),
                   nullptr);
    Show(*window);
    if (hangs != "line" && lines.done) lines.done(line);
    for (const auto& peaks : {greeting, beep}) world.waveforms.done({peaks, 1s});
    if (world.mail_tests.done) world.mail_tests.done(mail);
    world.RunFor(hangs.empty() ? 1s : 31s);
    std::string text;
    const auto& list = Get<QListWidget>("lstLinks");
    for (int i = 0; i < list.count(); ++i) text += list.item(i)->text().toStdString() + '\n';
    return text;
  }

  ScriptedLines lines;
  ScriptedOwnCaller caller;
  LineTestResult line;
  MailTestResult mail;
  std::vector<float> greeting, beep;
  std::optional<frmCheckUp> window;
};

TEST_F(CheckUpWindow, ShowsEachBrokenLinkWithItsRemedyAndOnlyThat) {
  struct Case {
    const char* found;
    std::function<void()> spoil;
    const char* hangs = "";
  };
  const Case cases[] = {
      {"", [&] { world.Machine().settings.ModemName = "Another, which is not open yet"; }},
      {"Line: It is off, so nobody answers", [&] { world.window->TurnOff(); }},
      {"Line: Unplugged: plug it in.", [&] { world.Machine().line.Trouble(0, "Unplugged: plug it in."); }},
      {"Line: lines.ini:7: ", [&] { lines.configured.complaints = {"lines.ini:7: what is this?"}; }},
      {"Port: Port 5060 is taken",
       [&] {
         line = {false, "Port 5060 is taken: end it.", "txtListen"};
       }},
      {"Port: No telephone line is chosen", [&] { lines.configured.lines.clear(); }},
      {"Registration: The password is wrong.",
       [&] {
         line = {false, "The password is wrong."};
       }},
      {"Registration: There was no answer within 30 s", [] {}, "line"},
      {"Greeting: \"Hello\" cannot be played", [&] { greeting.clear(); }},
      {"Greeting: \"Hello\" is silent",
       [&] {
         greeting = {0.001F, 0};
       }},
      {"Beep: beep.wav cannot be played", [&] { beep.clear(); }},
      {"Room: There is room for only 10 minutes", [&] { world.files.room = 10 * 60 * 16'000; }},
      {"Records: Calls and messages cannot be stored: ", [&] { world.disk.FailAt(1); }},
      {"Sound card: The chosen sound card is not there", [&] { world.Machine().settings.Sound = 2; }},
      {"Mail: mail is silent.",
       [&] {
         mail = {false, "mail is silent."};
       }},
      {"Clock: It shows 12/29/2003", [&] { world.time.TurnClock(-172'800s); }},
  };
  for (const auto& [found, spoil, hangs] : cases) {
    Mend();
    spoil();
    const auto shown = Check(hangs);
    EXPECT_THAT(shown, HasSubstr(found));
    EXPECT_EQ(Shown("lblResult"),
              *found == 0 ? "Everything that was checked is in order." : "Something needs your attention.")
        << shown;
    window.reset();
  }
}

TEST_F(CheckUpWindow, CallsItselfUntilAStepFailsOrThePersonHangsUp) {
  Check();
  Do("cmdCall");
  EXPECT_TRUE(Visible("lstSteps"));
  caller.news({OwnCallerNews::Kind::Over, "The line does not ring."});
  EXPECT_EQ(Get<QListWidget>("lstSteps").item(0)->text(), "The line does not ring.");
  Do("cmdCall cmdCall");
  EXPECT_EQ(Get<QListWidget>("lstSteps").item(0)->text(), "It was cancelled.");
  world.window->TurnOff();
  Do("cmdAgain");
  EXPECT_FALSE(Enabled("cmdCall"));
}

}  // namespace
}  // namespace orven::test
