// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/actions_dialog.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "actions/actions_engine.h"
#include "base/conversions.h"
#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

constexpr std::size_t kShortest = 6;
constexpr std::string_view kRefused = "!#$%^&*()=+{}[]|\\;:'/?>,< ";

bool Holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// Looks along the shorter of the two texts, as it has always been done.
bool HoldsRefused(std::string_view text) {
  if (text.size() < kRefused.size()) {
    return std::ranges::any_of(text, [](char letter) { return Holds(kRefused, {&letter, 1}); });
  }
  return std::ranges::any_of(kRefused, [&](char letter) { return Holds(text, {&letter, 1}); });
}

constexpr const char* kParameters =
    "Parameters:\r\n"
    "Caller Name=<NAME>\r\n"
    "Caller Number=<NUMBER>\r\n"
    "Date=<DATE>\r\n"
    "Time=<TIME>\r\n"
    "Message Path=<MESSAGE_PATH>\r\n"
    "\r\n"
    "For more information look at the help";

constexpr std::int32_t kNormalWindow = 1;  // shown, with the focus

struct Fault {
  ActionField field;
  std::string text;
};

/// The first field that is wrong, in the order in which a person meets them.
std::optional<Fault> FindFault(const ActionChoices& choices) {
  if (choices.chkSendToMail) {
    if (!IsMailAddress(choices.txtSendToMail))
      return Fault{ActionField::txtSendToMail, "'E-Mail To' Is Invalid"};
    if (choices.txtSMTP.empty()) return Fault{ActionField::txtSMTP, "'SMTP' Is Invalid"};
    if (!IsMailAddress(choices.txtFromMail))
      return Fault{ActionField::txtFromMail, "'From(Replay To)' Is Invalid"};
  }
  if (choices.chkApp && choices.txtAppTo.empty())
    return Fault{ActionField::txtAppTo, "'Application Path' Field Is Empty"};
  if (choices.txtAppTo.size() > kLongestText)
    return Fault{ActionField::txtAppTo,
                 "'Application Path' Is Too Long, " + std::to_string(kLongestText) + " Bytes At Most"};
  return std::nullopt;
}

ActWith ListEntry(const std::string& text) {
  return ToInt16(text) != 0 ? ActWith::MessagesOnly : ActWith::AllCalls;
}

std::string Stored(ActWith entry) {
  return entry == ActWith::MessagesOnly ? "1" : "0";
}

std::string Stored(bool checked) {
  return checked ? "1" : "0";
}

}  // namespace

bool IsMailAddress(const std::string& text) {
  const auto at = text.find('@');
  if (at == std::string::npos || !Holds(text, ".") || text.size() < kShortest) return false;
  const auto domain = std::string_view(text).substr(at + 1);
  if (Holds(domain, "@") || Holds(domain, " ") || !Holds(domain, ".")) return false;
  return !Holds(text, "\"") && !HoldsRefused(text) && !Holds(text, "..");
}

std::string ActionsDialog::Value(const char* name) {
  return GetRegValue(parts_.registry, RegistryRoot::LocalMachine, kSettingsKey, name);
}

void ActionsDialog::Load(const std::function<void(const ActionChoices&)>& show) {
  const ErrorTrap trap(parts_.log, "ErrLoadActions->");
  ActionChoices choices;
  trap([&] { choices = GetOptions(); });
  trap([&] { show(choices); });
}

ActionChoices ActionsDialog::GetOptions() {
  const ErrorTrap trap(parts_.log, "ErrActionGetOptions->");
  // The login is newer than installations are: one that was never given is none.
  const auto optional_value = [this](const char* name) {
    const auto text = Value(name);
    return text == kNotFound ? std::string() : text;
  };
  ActionChoices choices;
  trap([&] { choices.chkSendToMail = ToInt16(Value("pMailTo")) != 0; });
  trap([&] { choices.txtSendToMail = Value("MailTo"); });
  trap([&] { choices.txtSMTP = Value("SMTPServer"); });
  trap([&] { choices.txtFromMail = Value("MailFrom"); });
  trap([&] { choices.cmbActMail = ListEntry(Value("ActionsMailAllCalls")); });
  trap([&] { choices.chkApp = ToInt16(Value("pAppTo")) != 0; });
  trap([&] { choices.txtAppTo = Value("AppTo"); });
  trap([&] { choices.chkBGAPP = ToInt16(Value("pAppToBG")) != 0; });
  trap([&] { choices.cmbActApp = ListEntry(Value("ActionsAppAllCalls")); });
  trap([&] { choices.txtSMTPUser = optional_value("SMTPUser"); });
  trap([&] { choices.txtSMTPPass = optional_value("SMTPPass"); });
  trap([&] { choices.chkSMTPSecure = Value("SMTPSecure") != "0"; });
  return choices;
}

void ActionsDialog::ShowParameters() {
  parts_.dialogs.Message(kParameters);
}

std::string ActionsDialog::Test(std::string command) {
  std::string problem;
  const ErrorTrap trap(parts_.log, "Error Send To APP ->");
  trap([&] {
    const auto now = parts_.clock.Now();
    SubstituteParameters(command, {.name = "Name Test",
                                   .number = "Number Test",
                                   .time = parts_.clock.TimeText(now),
                                   .date = parts_.clock.DateText(now),
                                   .message_path = Value("MassagesPath") + "Test.wav"});
    try {
      parts_.shell.Run(command, kNormalWindow);
    } catch (const std::exception& error) {
      problem = error.what();
      throw;
    }
  });
  return problem;
}

std::optional<ActionField> ActionsDialog::Ok(const ActionChoices& choices) {
  if (const auto fault = FindFault(choices)) {
    parts_.dialogs.Information(fault->text);
    return fault->field;
  }
  PutReg(choices);
  if (parts_.saved) parts_.saved();
  return std::nullopt;
}

void ActionsDialog::PutReg(const ActionChoices& choices) {
  const std::pair<const char*, std::string> values[] = {
      {"pMailTo", Stored(choices.chkSendToMail)},
      {"MailTo", choices.txtSendToMail},
      {"SMTPServer", choices.txtSMTP},
      {"MailFrom", choices.txtFromMail},
      {"ActionsMailAllCalls", Stored(choices.cmbActMail)},
      {"pAppTo", Stored(choices.chkApp)},
      {"AppTo", choices.txtAppTo},
      {"pAppToBG", Stored(choices.chkBGAPP)},
      {"ActionsAppAllCalls", Stored(choices.cmbActApp)},
      {"SMTPUser", choices.txtSMTPUser},
      {"SMTPPass", choices.txtSMTPPass},
      {"SMTPSecure", Stored(choices.chkSMTPSecure)},
  };
  const ErrorTrap trap(parts_.log, "ErrActionPutReg->");
  for (const auto& [name, text] : values) {
    trap([&, &stored_name = name, &stored_text = text] {
      SetRegValue(parts_.registry, RegistryRoot::LocalMachine, kSettingsKey, stored_name, kRegString,
                  stored_text);
    });
  }
}

}  // namespace orven
