// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/actions_dialog.h"

#include <optional>
#include <string_view>

#include "base/runtime_error.h"
#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

constexpr std::size_t kShortest = 6;
constexpr std::string_view kRefused = "!#$%^&*()=+{}[]|\\;:'/?>,< \"";

constexpr const char* kParameters =
    Tr("Parameters:\r\n"
       "Caller Name=<NAME>\r\n"
       "Caller Number=<NUMBER>\r\n"
       "Date=<DATE>\r\n"
       "Time=<TIME>\r\n"
       "Message Path=<MESSAGE_PATH>\r\n"
       "\r\n"
       "For more information look at the help");

constexpr std::int32_t kNormalWindow = 1;  // shown, with the focus

/// Length of the message in a test.
constexpr std::int32_t kTestSeconds = 10;

struct Fault {
  const char* setting;
  Words text;
};

/// The first wrong value, from top to bottom.
std::optional<Fault> FindFault(const Choices& choices) {
  if (choices.On("pMailTo")) {
    if (!IsMailAddress(choices.Text("MailTo"))) return Fault{"MailTo", Words("'E-Mail To' Is Invalid")};
    if (choices.Text("SMTPServer").empty()) return Fault{"SMTPServer", Words("'SMTP' Is Invalid")};
    if (!IsMailAddress(choices.Text("MailFrom")))
      return Fault{"MailFrom", Words("'From(Replay To)' Is Invalid")};
  }
  const auto command = choices.Text("AppTo");
  if (choices.On("pAppTo") && command.empty())
    return Fault{"AppTo", Words("'Application Path' Field Is Empty")};
  if (command.size() > kLongestText)
    return Fault{"AppTo", Words("'Application Path' Is Too Long, %1 Bytes At Most").Arg(kLongestText)};
  return std::nullopt;
}

MailAccount AccountOf(const Choices& choices) {
  MailAccount account{choices.Text("SMTPServer"), choices.Text("SMTPUser"), choices.Text("SMTPPass")};
  account.require_encryption = !account.user.empty() && choices.On("SMTPSecure");
  return account;
}

}  // namespace

bool IsMailAddress(const std::string& text) {
  const auto at = text.find('@');
  if (at == std::string::npos || text.size() < kShortest) return false;
  const auto domain = std::string_view(text).substr(at + 1);
  return domain.find('.') != std::string_view::npos && domain.find('@') == std::string_view::npos &&
         text.find_first_of(kRefused) == std::string::npos && text.find("..") == std::string::npos;
}

MailAccount StoredAccount(SettingsStore& store) {
  return AccountOf(store.StoredChoices(Group::Actions, ErrorTrap::Silent()));
}

void ActionsDialog::Load(const std::function<void(const Choices&)>& show) {
  const auto choices =
      parts_.store.StoredChoices(Group::Actions, ErrorTrap(parts_.log, "ErrActionGetOptions->"));
  ErrorTrap(parts_.log, "ErrLoadActions->")([&] { show(choices); });
}

void ActionsDialog::ShowParameters() {
  parts_.dialogs.Message(Words(kParameters));
}

Words ActionsDialog::Test(std::string command) {
  Words problem;
  const ErrorTrap trap(parts_.log, "Error Send To APP ->");
  trap([&] {
    const auto now = parts_.clock.Now();
    const CallParameters details{.name = "Name Test",
                                 .number = "Number Test",
                                 .time = parts_.clock.TimeText(now),
                                 .date = parts_.clock.DateText(now),
                                 .message_path = parts_.store.Value("MassagesPath") + "Test.wav"};
    SubstituteParameters(command, details);
    try {
      parts_.shell.Run(command, kNormalWindow, CallEnvironment(details, details.message_path, kTestSeconds));
    } catch (const std::exception& error) {
      problem = ReasonOf(error);
      throw;
    }
  });
  return problem;
}

void ActionsDialog::TestMail(const Choices& choices, MailTests::Done show) {
  test_.reset();
  test_ = parts_.mail_tests.SendTestMail(AccountOf(choices), choices.Text("MailFrom"), choices.Text("MailTo"),
                                         std::move(show));
}

const SettingRow* ActionsDialog::Ok(const Choices& choices) {
  if (const auto fault = FindFault(choices)) {
    parts_.dialogs.Information(fault->text);
    return &RowOf(fault->setting);
  }
  const ErrorTrap trap(parts_.log, "ErrActionPutReg->");
  for (const auto* row : RowsOf(Group::Actions, &Order::store)) {
    trap([&] { parts_.store.Set(row->name, choices.Text(row->name)); });
  }
  if (parts_.saved) parts_.saved();
  parts_.Mail1.TryNow();
  return nullptr;
}

}  // namespace orven
