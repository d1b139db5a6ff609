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
constexpr std::string_view kRefused = "!#$%^&*()=+{}[]|\\;:'/?>,< \"";

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

/// The first wrong field, from top to bottom.
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

std::string Stored(ActWith entry) {
  return entry == ActWith::MessagesOnly ? "1" : "0";
}

std::string Stored(bool checked) {
  return checked ? "1" : "0";
}

}  // namespace

bool IsMailAddress(const std::string& text) {
  const auto at = text.find('@');
  if (at == std::string::npos || text.size() < kShortest) return false;
  const auto domain = std::string_view(text).substr(at + 1);
  return domain.find('.') != std::string_view::npos && domain.find('@') == std::string_view::npos &&
         text.find_first_of(kRefused) == std::string::npos && text.find("..") == std::string::npos;
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
  const auto checked = [&](const char* name, bool& box) { trap([&] { box = ToInt16(Value(name)) != 0; }); };
  const auto entry = [&](const char* name, ActWith& list) {
    trap([&] { list = ToInt16(Value(name)) != 0 ? ActWith::MessagesOnly : ActWith::AllCalls; });
  };
  // Older installations have no login.
  const auto optional_value = [this](const char* name) {
    const auto text = Value(name);
    return text == kNotFound ? std::string() : text;
  };
  ActionChoices choices;
  checked("pMailTo", choices.chkSendToMail);
  choices.txtSendToMail = Value("MailTo");
  choices.txtSMTP = Value("SMTPServer");
  choices.txtFromMail = Value("MailFrom");
  entry("ActionsMailAllCalls", choices.cmbActMail);
  checked("pAppTo", choices.chkApp);
  choices.txtAppTo = Value("AppTo");
  checked("pAppToBG", choices.chkBGAPP);
  entry("ActionsAppAllCalls", choices.cmbActApp);
  choices.txtSMTPUser = optional_value("SMTPUser");
  choices.txtSMTPPass = optional_value("SMTPPass");
  choices.chkSMTPSecure = Value("SMTPSecure") != "0";
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
