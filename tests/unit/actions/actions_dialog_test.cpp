// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/actions_dialog.h"

#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// Remembers the names of what is written, in order.
class WrittenRegistry : public MemoryRegistry {
 public:
  std::vector<std::string> written;
  bool Write(RegistryRoot root, const std::string& key, std::span<const NamedRegistryValue> values) override {
    for (const auto& value : values) written.push_back(value.name);
    return MemoryRegistry::Write(root, key, values);
  }
};

class ActionsDialogTest : public testing::Test {
 protected:
  ActionChoices Loaded() {
    ActionChoices shown;
    dialog.Load([&](const ActionChoices& choices) { shown = choices; });
    return shown;
  }

  World world;
  WrittenRegistry registry;
  int saved = 0;
  ActionsDialog dialog{
      {registry, world.Machine().log, world.dialogs, world.shell, world.time, [this] { ++saved; }}};
  ActionChoices good{.chkSendToMail = true,
                     .txtSendToMail = "anna@example.org",
                     .txtSMTP = "smtps://mail.example.org",
                     .txtFromMail = "orven@example.org",
                     .cmbActMail = ActWith::MessagesOnly,
                     .txtSMTPUser = "anna",
                     .txtSMTPPass = "gehe1m",
                     .chkApp = true,
                     .txtAppTo = "/usr/bin/say \"<NAME>\"",
                     .chkBGAPP = true,
                     .cmbActApp = ActWith::AllCalls};
};

TEST_F(ActionsDialogTest, OkStoresEverythingInOrderAndTheDialogShowsItAgain) {
  const auto lines = world.LoggedBy([&] { EXPECT_EQ(dialog.Ok(good), std::nullopt); });
  EXPECT_EQ(saved, 1);
  EXPECT_THAT(lines, IsEmpty());
  EXPECT_THAT(world.dialogs.informations, IsEmpty());
  EXPECT_THAT(registry.written,
              ElementsAre("pMailTo", "MailTo", "SMTPServer", "MailFrom", "ActionsMailAllCalls", "pAppTo",
                          "AppTo", "pAppToBG", "ActionsAppAllCalls", "SMTPUser", "SMTPPass", "SMTPSecure"));
  EXPECT_EQ(registry.Text("ActionsMailAllCalls"), "1") << "messages only";
  EXPECT_EQ(registry.Text("ActionsAppAllCalls"), "0");
  const auto shown = Loaded();
  EXPECT_TRUE(shown.chkSendToMail && shown.chkApp && shown.chkBGAPP);
  EXPECT_THAT((std::vector{shown.txtSendToMail, shown.txtSMTP, shown.txtFromMail, shown.txtSMTPUser,
                           shown.txtSMTPPass, shown.txtAppTo}),
              ElementsAre("anna@example.org", "smtps://mail.example.org", "orven@example.org", "anna",
                          "gehe1m", "/usr/bin/say \"<NAME>\""));
  EXPECT_EQ(shown.cmbActMail, ActWith::MessagesOnly);
  EXPECT_EQ(shown.cmbActApp, ActWith::AllCalls);
}

TEST_F(ActionsDialogTest, TheFirstWrongFieldIsNamedAndNothingIsStored) {
  struct Case {
    std::function<void(ActionChoices&)> spoil;
    ActionField field;
    const char* text;
  };
  const Case cases[] = {
      {[](auto& c) { c.txtSendToMail = "a@b.c", c.txtSMTP = ""; }, ActionField::txtSendToMail,
       "'E-Mail To' Is Invalid"},
      {[](auto& c) { c.txtSMTP = c.txtAppTo = ""; }, ActionField::txtSMTP, "'SMTP' Is Invalid"},
      {[](auto& c) { c.txtFromMail = "orven at home", c.txtAppTo = ""; }, ActionField::txtFromMail,
       "'From(Replay To)' Is Invalid"},
      {[](auto& c) { c.chkSendToMail = false, c.txtSendToMail = "no address", c.txtAppTo = ""; },
       ActionField::txtAppTo, "'Application Path' Field Is Empty"},
      {[](auto& c) { c.txtAppTo.assign(2048, 'x'); }, ActionField::txtAppTo,
       "'Application Path' Is Too Long, 2047 Bytes At Most"},
  };
  for (const auto& [spoil, field, text] : cases) {
    auto choices = good;
    spoil(choices);
    world.dialogs.informations.clear();
    EXPECT_EQ(dialog.Ok(choices), field) << text;
    EXPECT_THAT(world.dialogs.informations, ElementsAre(text));
  }
  EXPECT_THAT(registry.written, IsEmpty());
  EXPECT_EQ(saved, 0);

  auto unchecked = good;
  unchecked.chkSendToMail = unchecked.chkApp = false;
  unchecked.txtSendToMail = "no address";
  unchecked.txtSMTP = unchecked.txtAppTo = "";
  EXPECT_EQ(dialog.Ok(unchecked), std::nullopt) << "fields of what is switched off may hold anything";
  EXPECT_EQ(registry.Text("MailTo"), "no address");
}

TEST_F(ActionsDialogTest, ValuesThatAreMissingAreLoggedAndTheOthersRead) {
  registry.Set("pAppTo", "1");
  registry.Set("MailTo", "anna@example.org");
  ActionChoices shown;
  const auto lines = world.LoggedBy([&] { shown = Loaded(); });
  EXPECT_THAT(lines, testing::AllOf(testing::SizeIs(4),
                                    testing::Each(std::string("ErrActionGetOptions->13 Type mismatch"))));
  EXPECT_TRUE(shown.chkApp);
  EXPECT_EQ(shown.txtSendToMail, "anna@example.org");
  EXPECT_EQ(shown.txtSMTPUser, "") << "a login that was never given";
  EXPECT_EQ(shown.txtSMTPPass, "");
  EXPECT_TRUE(shown.chkSMTPSecure);
}

TEST_F(ActionsDialogTest, TheTestRunsTheProgramWithMadeUpDetails) {
  registry.Set("MassagesPath", world.messages);
  EXPECT_EQ(dialog.Test("say \"<NAME>\" <NUMBER> <MESSAGE_PATH> <DATE> <TIME> <name> <NAME>"), "");
  EXPECT_THAT(world.shell.started,
              ElementsAre(Pair("say \"Name Test\" Number Test /home/orven/Messages/Test.wav " +
                                   world.time.DateText(world.time.Now()) + " 14:05:07 <name> <NAME>",
                               1)));
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound, "say"); };
  const auto lines = world.LoggedBy(
      [&] { EXPECT_EQ(dialog.Test("say"), "File not found: say") << "told beside the button"; });
  EXPECT_THAT(lines, ElementsAre("Error Send To APP ->53 File not found: say"));
}

}  // namespace
}  // namespace orven::test
