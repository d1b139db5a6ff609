// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/settings.h"

#include <algorithm>
#include <stdexcept>

#include "base/words.h"

namespace orven {
namespace {

using S = Settings;
using Kind = Row::Kind;

constexpr const char* kRings[] = {"1",  "2",  "3",  "4",  "5",  "6",  "7",  "8",  "9",  "10",
                                  "11", "12", "13", "14", "15", "16", "17", "18", "19", "20"};
constexpr const char* kMinutes[] = {"1", "2", "5"};
constexpr const char* kSilences[] = {"2", "3", "4", "5", "6", "8", "10", "15", "20", "30"};
constexpr const char* kActWith[] = {Tr("Act with all calls"), Tr("Act with messages only!")};
constexpr const char* kCloseSeconds[] = {"10", "20", "30", "60"};
constexpr const char* kLogFor[] = {Tr("1 Last Month"), Tr("2 Last Month"), Tr("3 Last Month"),
                                   Tr("For Ever")};

/// Stored values are limited to 2048 bytes; a character takes up to four.
constexpr int kLongestPassword = 500;

/// Minutes of the longest message whose seconds fit into 16 bits.
constexpr int kLongestMessage = 546;

/// A setting's page and its place when it is loaded and stored (Order).
struct Place {
  int page = 0;
  int load = Order().load;
  int store = Order().store;
};

/// What only some controls have (Row).
struct Details {
  const char* purpose = "";
  const char* unit = "";
  int least = 0;
  int most = 0;
  std::span<const char* const> items = {};
  int scale = 1;
};

/// `first` is what the first start stores; null: nothing.
constexpr SettingRow Setting(std::string_view name, SettingRow::Field field, const char* first,
                             Kind kind = Kind::None, const Place& place = {}, const char* control = "",
                             const char* label = "", const char* tip = "", const Details& details = {}) {
  SettingRow row;
  row.name = name, row.field = field, row.first = first;
  row.kind = kind, row.control = control;
  row.page = place.page, row.order = {place.load, place.store};
  row.label = label, row.tip = tip;
  row.purpose = details.purpose, row.unit = details.unit;
  row.least = details.least, row.most = details.most;
  row.items = details.items, row.scale = details.scale;
  return row;
}

// In twips, 15 to a pixel: 800 by 550 pixels.
constexpr SettingRow kWindow[] = {
    Setting("MeTop", &S::MeTop, "1500"),        Setting("MeLeft", &S::MeLeft, "1500"),
    Setting("MeWinState", &S::MeWinState, "0"), Setting("MeWidth", &S::MeWidth, "12000"),
    Setting("MeHeight", &S::MeHeight, "8250"),
};

constexpr SettingRow kOptions[] = {
    // At first any line that can do voice.
    Setting("Modem", &S::Modem, "-1", Kind::None, {.store = 7}),
    Setting("ModemName", &S::ModemName, "", Kind::Entry, {.page = 1, .store = 9}, "cmbModemDev",
            Tr("&Modem device:"),
            Tr("The telephone line to answer; a change takes effect when the line is next opened"),
            {Tr("Modem device")}),
    Setting("MassagesPath", &S::MassagesPath, nullptr),
    Setting("SecSilence", &S::SecSilence, "8", Kind::Number, {.page = 3, .store = 1}, "cmbSilenceSec", "", "",
            {Tr("Seconds of silence that end a message"), Tr("seconds"), 1, 600, kSilences}),
    Setting("cDropSilence", &S::cDropSilence, "1", Kind::Check, {.page = 3, .store = 2}, "chkDropIfSilnce",
            Tr("Hang up when the caller is silent for"),
            Tr("Otherwise a message ends when the caller hangs up, or when it is too long")),
    // 20 thousandths are above a telephone line's noise and below quiet speech.
    Setting("ValSilence", &S::ValSilence, "20", Kind::Slider, {.page = 3, .store = 3}, "sldSilence",
            Tr("Sil&ence is up to:"), Tr("Choose a level above the noise of the line and below speech"),
            {Tr("Level up to which a caller is silent, in percent of full level"), "", 0, 100, {}, 10}),
    Setting("RecordMessage", &S::RecordMessage, "1", Kind::Check, {.page = 2, .store = 11},
            "cmdRecordMessage", Tr("Record a message after the greeting"),
            Tr("Otherwise the call ends after the greeting")),
    Setting("NumOfRing", &S::NumOfRing, "4", Kind::Number, {.page = 2, .store = 13}, "txtNumOfRing",
            Tr("&Answer after:"), "", {Tr("Rings before a call is answered"), Tr("rings"), 1, 20, kRings}),
    Setting("MaxRec", &S::MaxRec, "2", Kind::Number, {.page = 2, .store = 14}, "txtRecLong",
            Tr("Longest &message:"), "",
            {Tr("Minutes of the longest message"), Tr("minutes"), 1, kLongestMessage, kMinutes}),
    Setting("Pass", &S::Pass, nullptr, Kind::Secret, {.page = 3, .store = 16}, "txtPass", Tr("&Password:"),
            Tr("Digits that a telephone can key"), {.most = kLongestPassword}),
    Setting("WornDelete", &S::WornDelete, "1", Kind::Check, {.store = 4}, "chkWornDelete",
            Tr("Ask before deleting a call"), Tr("A deleted call's message is deleted with it")),
    Setting("WornClear", &S::WornClear, "1", Kind::Check, {.store = 5}, "chkWornClear",
            Tr("Ask before clearing the calls list"), Tr("Clearing leaves the message files where they are")),
    Setting("ListMessageOnly", &S::ListMessageOnly, "0", Kind::Check, {.store = 6}, "chkListMessagesOnly",
            Tr("List only calls that left a message"),
            Tr("Calls without a message are not added to the calls list")),
    Setting("Sound", &S::Sound, "0", Kind::Choice, {.page = 1, .load = 1, .store = 10}, "cmbSoundDev",
            Tr("&Sound card:"), Tr("Where messages and greetings are heard and greetings are recorded"),
            {Tr("Sound card")}),
    Setting("Greeting", &S::Greeting, "Default", Kind::ByHand, {.page = 2, .load = 1, .store = 12}),
    Setting("AllowRemoteAccess", &S::AllowRemoteAccess, "1", Kind::Check, {.page = 3, .load = 1, .store = 15},
            "chkAllowRemoteAccess", Tr("Hear my messages from another telephone"),
            Tr("Call this machine, key the password while the greeting plays, then the star key. "
               "The password works whether this is checked or not")),
    Setting("CompressMessages", &S::CompressMessages, "0", Kind::Check, {.page = 3, .load = 1, .store = 17},
            "chkCompress", Tr("Store messages compressed"),
            Tr("Half the size, in the quality of the telephone")),
    Setting("pQuickToolbar", &S::pQuickToolbar, "1", Kind::Check, {.load = 1, .store = 18}, "chkQuickToolBar",
            Tr("Show the quick options toolbar"), Tr("Greeting, rings and recording in the main window")),
    Setting("PreScreen", &S::PreScreen, "0", Kind::Check, {.page = 2, .store = 8}, "chkPreScreen",
            Tr("Listen in while a message is recorded"), Tr("The caller is heard on the sound card")),
    Setting("KeepAwake", {}, "0", Kind::Check, {.store = 19}, "chkKeepAwake",
            Tr("Keep the computer awake while the line is on"), Tr("A computer that sleeps takes no calls")),
};

constexpr SettingRow kActions[] = {
    Setting("pMailTo", &S::pMailTo, "0", Kind::Check, {}, "chkSendToMail", Tr("Send Calls To E- Mail")),
    Setting("MailTo", &S::MailTo, "", Kind::Text, {}, "txtSendToMail", Tr("E-Mail To:")),
    Setting("SMTPServer", &S::SMTPServer, "", Kind::Text, {}, "txtSMTP", Tr("SMTP :"),
            Tr("The mail server: its name, name:port, smtp://… or smtps://…")),
    Setting("MailFrom", &S::MailFrom, "", Kind::Text, {}, "txtFromMail", Tr("From(Replay To):")),
    Setting("ActionsMailAllCalls", &S::ActionsMailAllCalls, "0", Kind::Choice, {}, "cmbActMail", "", "",
            {.purpose = Tr("Calls that this applies to"), .items = kActWith}),
    Setting("pAppTo", &S::pAppTo, "0", Kind::Check, {.page = 1}, "chkApp", Tr("Send Calls To Application")),
    Setting("AppTo", &S::AppTo, "", Kind::Text, {.page = 1}, "txtAppTo", Tr("Application Path:"),
            Tr("The program and its arguments; put arguments with blanks in double quotes")),
    Setting("pAppToBG", &S::pAppToBG, "0", Kind::Check, {.page = 1}, "chkBGAPP", Tr("Background")),
    Setting("ActionsAppAllCalls", &S::ActionsAppAllCalls, "0", Kind::Choice, {.page = 1}, "cmbActApp", "", "",
            {.purpose = Tr("Calls that this applies to"), .items = kActWith}),
    Setting("SMTPUser", {}, nullptr, Kind::Text, {}, "txtSMTPUser", Tr("User:"),
            Tr("Leave empty if the mail server needs no login")),
    Setting("SMTPPass", {}, nullptr, Kind::Secret, {}, "txtSMTPPass", Tr("Password:")),
    Setting("SMTPSecure", {}, nullptr, Kind::Check, {}, "chkSMTPSecure",
            Tr("Log in over an encrypted connection only")),
};

constexpr SettingRow kEvents[] = {
    Setting("PlayInRing", &S::PlayInRing, "Ring.wav", Kind::ByHand, {.page = 1, .store = 5}),
    Setting("cPlayInRing", &S::cPlayInRing, "0", Kind::Check, {.page = 1, .store = 6}, "chkPlayInCall",
            Tr("Play Sound:")),
    Setting("cOnlyIfGotMessage", &S::cOnlyIfGotMessage, "1", Kind::Check, {.page = 2, .store = 11},
            "chkOnlyIfGotMessage", Tr("Only If Got Message")),
    Setting("PlayInIdle", &S::PlayInIdle, "Message.wav", Kind::ByHand, {.page = 2, .store = 2}),
    Setting("cPlayInIdle", &S::cPlayInIdle, "1", Kind::Check, {.page = 2, .store = 1}, "chkPlayInMessage",
            Tr("Play Sound:")),
    Setting("WhenMsgViewMsg", &S::WhenMsgViewMsg, "1", Kind::Check, {.page = 2, .store = 4}, "chkMsgInMsg",
            Tr("Display Caller View")),
    Setting("ViewDetails", &S::ViewDetails, "1", Kind::Check, {.page = 1, .store = 3}, "chkViewDet",
            Tr("Display Caller View")),
    Setting("cAnimation", &S::cAnimation, "0", Kind::Check, {.store = 7}, "chkAnimation",
            Tr("Animate Caller View")),
    Setting("AnimationFast", &S::AnimationFast, "50", Kind::Slider, {.store = 8}, "sldAnimationFast",
            Tr("Speed:"), "", {.purpose = Tr("Speed of the caller view"), .most = 100}),
    Setting("cCloseCallerView", &S::cCloseCallerView, "1", Kind::Check, {.store = 9}, "chkCloseCVAfter",
            Tr("Close Caller View after")),
    Setting("CloseCallerView", &S::CloseCallerView, "30", Kind::List, {.store = 10}, "cmbCloseCVAfter", "",
            "", {Tr("Seconds after which the caller view closes"), Tr("Sec'"), 0, 0, kCloseSeconds}),
    Setting("NotifyMessage", {}, nullptr, Kind::Check, {}, "chkNotifyMessage",
            Tr("Notify me of a new message"),
            Tr("The desktop shows who called, unless this window is in front")),
    Setting("NotifyMissed", {}, nullptr, Kind::Check, {}, "chkNotifyMissed",
            Tr("Notify me of a call without a message"),
            Tr("The desktop shows who called, unless this window is in front")),
};

constexpr SettingRow kLog[] = {
    Setting("cLogCalls", &S::cLogCalls, "1", Kind::Check, {}, "chkLogCalls", Tr("Log Calls"),
            Tr("Write a line for each call")),
    Setting("cLogSys", &S::cLogSys, "1", Kind::Check, {}, "chkLogSys", Tr("Log System"),
            Tr("Write each step of the line and each failure")),
    Setting("LogFor", &S::LogFor, "3 Last Month", Kind::List, {.store = 100}, "cmbLogFor", Tr("Log For:"),
            Tr("Older files in the log folder are deleted"), {.items = kLogFor}),
    Setting("cWornBeforeDelete", &S::cWornBeforeDelete, "1", Kind::Check, {}, "chkWornBeforeDelete",
            Tr("Worn before delete"), Tr("Ask before the log viewer deletes a log")),
};

/// By their groups.
constexpr std::span<const SettingRow> kTables[] = {kWindow, kOptions, kActions, kEvents, kLog};

}  // namespace

std::vector<const SettingRow*> RowsOf(Group group, int Order::*order) {
  std::vector<const SettingRow*> rows;
  for (const auto& row : kTables[static_cast<std::size_t>(group)]) rows.push_back(&row);
  if (order != nullptr) {
    std::ranges::stable_sort(rows, {}, [order](const SettingRow* row) { return row->order.*order; });
  }
  return rows;
}

const SettingRow& RowOf(std::string_view name) {
  for (const auto table : kTables) {
    const auto row = std::ranges::find(table, name, &SettingRow::name);
    if (row != table.end()) return *row;
  }
  throw std::out_of_range(std::string(name));
}

}  // namespace orven
