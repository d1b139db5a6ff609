// SPDX-License-Identifier: GPL-3.0-or-later
// Every control of the four dialogs that edit settings: what it shows, and what it stores in which order.
#include "actions/frmActions.h"
#include "gui/window_test.h"
#include "log/frmLog.h"
#include "notify/frmEvents.h"
#include "options/frmOptions.h"

namespace orven::test {
namespace {

using Names = std::vector<std::string>;

/// A setting and its control: what is stored at first (null: nothing) and shown for it, what a person
/// chooses, and what is stored then. The rows are in the order of storing.
struct Control {
  const char *name, *stored, *control, *shown, *chosen, *taken;
};

constexpr Control kOptions[] = {{"SecSilence", "3", "cmbSilenceSec", "3", "12", "12"},
                                {"cDropSilence", "1", "chkDropIfSilnce", "true", "false", "0"},
                                {"ValSilence", "55", "sldSilence", "6", "9", "90"},
                                {"WornDelete", "1", "chkWornDelete", "true", "false", "0"},
                                {"WornClear", "-1", "chkWornClear", "true", "false", "0"},
                                {"ListMessageOnly", "0", "chkListMessagesOnly", "false", "true", "1"},
                                {"Modem", "0", "cmbModemDev", "Sim", "Home", "-1"},
                                {"PreScreen", "0", "chkPreScreen", "false", "true", "1"},
                                {"ModemName", "Sim", "cmbModemDev", "Sim", "Home", "Home"},
                                {"Sound", "1", "cmbSoundDev", "Headset", "Default output", "0"},
                                {"RecordMessage", "1", "cmdRecordMessage", "true", "false", "0"},
                                {"Greeting", "hello", "CmbGreetsMessages", "hello", "Hello", "Hello"},
                                {"NumOfRing", "+3", "txtNumOfRing", "+3", "20", "20"},
                                {"MaxRec", "546", "txtRecLong", "546", "5", "5"},
                                {"AllowRemoteAccess", "1", "chkAllowRemoteAccess", "true", "false", "0"},
                                {"Pass", "4711", "txtPass", "4711", " #12 ", " #12 "},
                                {"CompressMessages", "0", "chkCompress", "false", "true", "1"},
                                {"pQuickToolbar", "1", "chkQuickToolBar", "true", "false", "0"},
                                {"KeepAwake", nullptr, "chkKeepAwake", "false", "true", "1"}};
constexpr Control kActions[] = {
    {"pMailTo", "0", "chkSendToMail", "false", "true", "1"},
    {"MailTo", nullptr, "txtSendToMail", "Not Found", "anna@example.org", "anna@example.org"},
    {"SMTPServer", "", "txtSMTP", "", "smtps://mail.example.org", "smtps://mail.example.org"},
    {"MailFrom", "home", "txtFromMail", "home", "orven@example.org", "orven@example.org"},
    {"ActionsMailAllCalls", "2", "cmbActMail", "Act with messages only!", "Act with all calls", "0"},
    {"pAppTo", "0", "chkApp", "false", "true", "1"},
    {"AppTo", "say <NAME>", "txtAppTo", "say <NAME>", "say \"<NUMBER>\"", "say \"<NUMBER>\""},
    {"pAppToBG", "0", "chkBGAPP", "false", "true", "1"},
    {"ActionsAppAllCalls", "0", "cmbActApp", "Act with all calls", "Act with messages only!", "1"},
    {"SMTPUser", nullptr, "txtSMTPUser", "", "anna", "anna"},
    {"SMTPPass", nullptr, "txtSMTPPass", "", "gehe1m", "gehe1m"},
    {"SMTPSecure", "yes", "chkSMTPSecure", "true", "false", "0"}};
constexpr Control kEvents[] = {{"cPlayInIdle", "1", "chkPlayInMessage", "true", "false", "0"},
                               {"PlayInIdle", "gone.wav", "CmbPlayWhenMessage", "", "ring.wav", "ring.wav"},
                               {"ViewDetails", "0", "chkViewDet", "false", "true", "1"},
                               {"WhenMsgViewMsg", "0", "chkMsgInMsg", "false", "true", "1"},
                               {"PlayInRing", "", "CmbPlayWhenCall", "", "idle.wav", "idle.wav"},
                               {"cPlayInRing", "1", "chkPlayInCall", "false", "true", "1"},
                               {"cAnimation", "0", "chkAnimation", "false", "true", "1"},
                               {"AnimationFast", "400", "sldAnimationFast", "100", "70", "70"},
                               {"cCloseCallerView", "1", "chkCloseCVAfter", "true", "false", "0"},
                               {"CloseCallerView", "45", "cmbCloseCVAfter", "", "20", "20"},
                               {"cOnlyIfGotMessage", "0", "chkOnlyIfGotMessage", "false", "true", "1"},
                               {"NotifyMessage", "0", "chkNotifyMessage", "false", "true", "1"},
                               {"NotifyMissed", nullptr, "chkNotifyMissed", "true", "false", "0"}};
constexpr Control kLog[] = {{"cLogCalls", "0", "chkLogCalls", "false", "true", "1"},
                            {"cLogSys", "1", "chkLogSys", "true", "false", "0"},
                            {"cWornBeforeDelete", "2", "chkWornBeforeDelete", "true", "false", "0"},
                            {"LogFor", "Never", "cmbLogFor", "For Ever", "1 Last Month", "1 Last Month"}};

const std::pair<const char*, std::span<const Control>> kDialogs[] = {
    {"frmOptions", kOptions}, {"frmActions", kActions}, {"frmEvents", kEvents}, {"frmLogProp", kLog}};

class SettingsRows : public WindowTest {
 protected:
  SettingsRows() {
    world.cards.names = {"Default output", "Headset"};
    world.files.Put(std::string(World::kHome) + "/Greets/hello.wav", TimedWave::Sound(1s));
  }
  void Open(const std::string& name) {
    window.reset();
    if (name == "frmOptions")
      window = std::make_unique<frmOptions>(frmOptions::Parts{options, greetings, {}}, 0, nullptr);
    if (name == "frmActions") window = std::make_unique<frmActions>(actions, 0, nullptr);
    if (name == "frmEvents") window = std::make_unique<frmEvents>(events, 0, nullptr);
    if (name == "frmLogProp") window = std::make_unique<frmLogProp>(log, nullptr);
    Show(*window);
  }

  AnsweringMachine& machine = world.Machine();
  OptionsDialog options{machine.ForOptionsDialog()};
  GreetingPlayer greetings{machine.ForGreetingPlayer([] { return std::nullopt; })};
  ActionsDialog actions{{machine.store, machine.log, world.dialogs, world.shell, world.time, world.Mail1,
                         world.mail_tests, [this] { machine.store.GetMainAction(); }}};
  EventsDialog events{{machine.settings, machine.store, machine.home, world.files, machine.sounds,
                       machine.player, world.dialogs, machine.caller_view}};
  LogProperties log{machine.settings, machine.store, machine.log, [] {}};
  std::unique_ptr<QDialog> window;
};

TEST_F(SettingsRows, EachControlShowsItsSettingAndOkStoresWhatWasChosen) {
  for (const auto& [name, rows] : kDialogs)
    for (const auto& row : rows) {
      world.registry.Delete(RegistryRoot::LocalMachine, kSettingsKey, row.name);
      if (row.stored != nullptr) world.registry.Set(row.name, row.stored);
    }
  world.Start().RunFor(1s);
  for (const auto& [name, rows] : kDialogs) {
    Open(name);
    Names order;
    for (const auto& row : rows) ExpectShown({{row.control, row.shown}}), order.push_back(row.name);
    for (const auto& row : rows) Set({{row.control, row.chosen}});
    if (order[0] == "SecSilence") Set({{"chkRenOnStart", "true"}}), order.push_back("ORVEN");
    world.registry.changed.clear();
    Click("cmdOK");
    EXPECT_EQ(world.registry.changed, order);
    EXPECT_EQ(window->result(), QDialog::Accepted);
    machine.store.GetMainEvents();
    Open(name);
    for (const auto& row : rows)
      ExpectStored({{row.name, row.taken}}), ExpectShown({{row.control, row.chosen}});
  }
  EXPECT_EQ(world.registry.Text("ORVEN", kAutostartKey), "/home/orven/ORVEN.exe -st");
  Open("frmOptions");
  Do("chkRenOnStart:true chkRenOnStart=false cmdOK");
  EXPECT_EQ(world.registry.Text("ORVEN", kAutostartKey), kNotFound);
}

TEST_F(SettingsRows, EachReaderLogsEveryBadNumberUnderItsOwnLabel) {
  world.Start();
  for (const auto& [dialog, rows] : kDialogs)
    for (const auto& row : rows) world.registry.Set(row.name, "x");
  const std::tuple<const char*, int, std::function<void()>> readers[] = {
      {"ErrGetMainOptions ", 15, [&] { machine.store.GetMainOptions(); }},
      {"ErrGetMainAction ", 5, [&] { machine.store.GetMainAction(); }},
      {"ErrGetMainEvents ", 9, [&] { machine.store.GetMainEvents(); }},
      {"ErrGetAppOption ", 3, [&] { machine.store.GetAppOptions([] {}); }},
      {"ErrGetOptions->", 14, [&] { Open("frmOptions"); }},
      {"ErrActionGetOptions->", 5, [&] { Open("frmActions"); }},
      {"", 0, [&] { Open("frmEvents"), Open("frmLogProp"); }}};
  for (const auto& [label, numbers, read] : readers)
    EXPECT_EQ(world.LoggedBy(read), Names(numbers, label + std::string("13 Type mismatch")));
}

TEST_F(SettingsRows, ABadValueIsLoggedAndTheOthersAreShownAndStored) {
  world.Start().RunFor(1s);
  for (const char* name : {"SecSilence", "cDropSilence", "Sound"}) world.registry.Set(name, "loud");
  world.registry.Set("NumOfRing", "40000");
  Open("frmOptions");
  ExpectShown(
      {{"cmbSilenceSec", ""}, {"chkDropIfSilnce", "false"}, {"cmbSoundDev", ""}, {"txtNumOfRing", "40000"}});
  Get<QComboBox>("CmbGreetsMessages").setCurrentIndex(-1);
  EXPECT_THAT(Do("cmbSilenceSec=soon txtRecLong=547 cmbModemDev=Nowhere cmdOK"),
              testing::ElementsAre("ErrSaveOptionOption 13 Type mismatch", "ErrSaveOptionOption 6 Overflow",
                                   "ErrSaveOptionOption 6 Overflow"));
  ExpectStored({{"SecSilence", "loud"}, {"cDropSilence", "0"}, {"Sound", "loud"}, {"Greeting", "Hello"}});
  ExpectStored({{"NumOfRing", "40000"}, {"MaxRec", "547"}, {"Modem", "-1"}, {"ModemName", "Nowhere"}});
  EXPECT_EQ(machine.settings.NumOfRing, 2);
  EXPECT_EQ(machine.settings.max_record_seconds, 60) << "547 minutes, in seconds, do not fit in 16 bits";
  EXPECT_TRUE(world.Tapi1->IsLineOpen(0)) << "an open line stays as it is";
  machine.settings.CloseCallerView = 45;
  Open("frmEvents");
  Do("cmbCloseCVAfter: cmdOK");
  ExpectStored({{"CloseCallerView", "45"}});  // kept although the list does not offer it
}

TEST_F(SettingsRows, OptionsThatCannotBeStoredAreReportedAndUsedUntilExit) {
  world.Start().RunFor(1s);
  Open("frmOptions");
  world.registry.refuse_writes = true;
  Do("txtPass=4712 chkRenOnStart=true cmdOK");
  EXPECT_THAT(world.dialogs.informations,
              testing::ElementsAre(testing::HasSubstr("could not be stored"),
                                   testing::HasSubstr("does not start with the desktop")));
  EXPECT_EQ(machine.settings.Pass, "4712");
}

}  // namespace
}  // namespace orven::test
