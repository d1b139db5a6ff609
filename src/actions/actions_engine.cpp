// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/actions_engine.h"

#include <cmath>
#include <string_view>

#include "base/conversions.h"
#include "core/error_trap.h"

namespace orven {
namespace {

void Fill(std::string& text, std::string_view placeholder, const std::string& value) {
  const auto found = text.find(placeholder);
  if (found == std::string::npos) return;
  NarrowToInt16(static_cast<std::int64_t>(found) + 1);
  text.replace(found, placeholder.size(), value);
}

/// Whether the call has a sound file of its message.
bool IsStored(const Call& call) {
  return call.message_left && call.type_text != kNoMessageType;
}

/// The length of the call's message.
std::int32_t SecondsOf(const Call& call) {
  return IsStored(call) ? ToInt32(call.type_text) : 0;
}

using namespace std::chrono_literals;

constexpr const char* kSenderName = "ORVEN";

/// How long "Mail Was Sent" is shown.
constexpr auto kSentShown = 3s;

// Window styles of a started program.
constexpr std::int32_t kHidden = 0;
constexpr std::int32_t kNormalFocus = 1;

}  // namespace

std::string SubstituteParameters(std::string& text, const CallParameters& call) {
  Fill(text, "<NUMBER>", call.number);
  Fill(text, "<NAME>", call.name);
  Fill(text, "<MESSAGE_PATH>", call.message_path);
  Fill(text, "<DATE>", call.date);
  Fill(text, "<TIME>", call.time);
  return text;
}

Environment CallEnvironment(const CallParameters& call, const std::string& message, std::int32_t seconds) {
  return {{"ORVEN_NAME", call.name},  {"ORVEN_NUMBER", call.number},
          {"ORVEN_DATE", call.date},  {"ORVEN_TIME", call.time},
          {"ORVEN_MESSAGE", message}, {"ORVEN_LENGTH", std::to_string(seconds)}};
}

Words DescribeMails(const MailState& state) {
  const auto failed = static_cast<std::int64_t>(state.failed);
  const auto waiting = static_cast<std::int64_t>(state.waiting);
  if (failed > 0 && waiting > 0) {
    return Words("Mails: %1 failed, %2 not sent yet: %3").Arg(failed).Arg(waiting).Arg(state.reason);
  }
  if (failed == 1) return Words("A mail failed: %1").Arg(state.reason);
  if (failed > 1) return Words("%1 mails failed: %2").Arg(failed).Arg(state.reason);
  if (waiting == 1) return Words("A mail waits: %1").Arg(state.reason);
  if (waiting > 1) return Words("%1 mails wait: %2").Arg(waiting).Arg(state.reason);
  return {};
}

ActionsEngine::ActionsEngine(Ports ports, Settings& settings, std::function<void()> show_line_state)
    : ports_(ports), settings_(settings), show_line_state_(std::move(show_line_state)) {
  ports_.Mail1.SetEvents(this);
}

ActionsEngine::~ActionsEngine() {
  ports_.Mail1.SetEvents(nullptr);
}

void ActionsEngine::DoActions(const std::string& kind, Call& call) {
  const ErrorTrap trap(ports_.log, "ErrDoActions ");
  if (kind == "Mail") {
    if (settings_.ActionsMailAllCalls != 0 || call.message_left) trap([&] { SendMail(call); });
  } else if (kind == "App") {
    if (settings_.pAppTo == 0 || call.sent_to_application) return;
    call.sent_to_application = true;
    ports_.log.WriteSystem("Send To APP");
    SendToApp(call);
  }
}

void ActionsEngine::SendMail(const Call& call) {
  ports_.log.WriteSystem("Start Sending Mail");
  ports_.Mail1.Send(settings_.SMTPServer, settings_.MailFrom, kSenderName, settings_.MailTo,
                    "New Call From " + call.caller_name + " - " + call.caller_number,
                    ports_.folders.PathOf(call.message_file_name), MailText(call));
}

std::string ActionsEngine::MailText(const Call& call) const {
  auto message = Words("Message: %1 seconds, attached").Arg(SecondsOf(call));
  if (!IsStored(call)) message = Words("A message was left, but it could not be stored.");
  if (!call.message_left) message = Words("No message was left.");
  std::string text;
  for (const auto& line :
       {Words("Caller: %1").Arg(call.caller_name), Words("Number: %1").Arg(call.caller_number),
        Words("Date: %1").Arg(call.date), Words("Time: %1").Arg(call.time), message}) {
    text += ports_.translation(line) + "\n";
  }
  return text;
}

void ActionsEngine::SendToApp(const Call& call) {
  const ErrorTrap trap(ports_.log, "Error Send To APP ->");
  trap([&] {
    const CallParameters details{.name = call.caller_name,
                                 .number = call.caller_number,
                                 .time = call.time,
                                 .date = call.date,
                                 .message_path = call.message_file_name};
    const auto command = SubstituteParameters(settings_.AppTo, details);
    const auto message = IsStored(call) ? ports_.folders.PathOf(call.message_file_name) : std::string();
    // The setting's name suggests the reverse.
    ports_.shell.Run(command, settings_.pAppToBG != 0 ? kNormalFocus : kHidden,
                     CallEnvironment(details, message, SecondsOf(call)));
  });
}

void ActionsEngine::Progress(std::int32_t total, std::int32_t sent) {
  if (total == 0) return;
  // Halves are rounded to even.
  const auto percent = std::lrint(static_cast<double>(sent) / total * 100);
  ports_.status.ShowStatus(Words("Send Mail : %1 %").Arg(percent));
  shown_ = ports_.status.Writings();
}

void ActionsEngine::Done(const std::string& recipient) {
  ports_.status.ShowStatus(Words("Mail Was Sent"));
  ports_.loop.After(kSentShown, lifeline_.Bind([this, mine = ports_.status.Writings()] {
    if (ports_.status.Writings() == mine) show_line_state_();
  }));
  ports_.log.WriteSystem("Mail was sent to " + recipient);
}

void ActionsEngine::Error(const std::string& recipient, const Words& description) {
  // The progress of a mail that failed must not stay.
  if (shown_ != 0 && ports_.status.Writings() == shown_) show_line_state_();
  ports_.log.WriteSystem("Error Sending To Mail To : " + recipient + " Becouse:" + description.English());
}

void ActionsEngine::StateChanged() {
  ports_.mail_view.ShowMail(DescribeMails(ports_.Mail1.State()));
}

}  // namespace orven
