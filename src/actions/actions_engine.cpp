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
                    ports_.folders.PathOf(call.message_file_name));
}

void ActionsEngine::SendToApp(const Call& call) {
  const ErrorTrap trap(ports_.log, "Error Send To APP ->");
  trap([&] {
    const auto command = SubstituteParameters(settings_.AppTo, {.name = call.caller_name,
                                                                .number = call.caller_number,
                                                                .time = call.time,
                                                                .date = call.date,
                                                                .message_path = call.message_file_name});
    // The setting's name suggests the reverse.
    ports_.shell.Run(command, settings_.pAppToBG != 0 ? kNormalFocus : kHidden);
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

void ActionsEngine::Error(const std::string& recipient, const std::string& description) {
  // The progress of a mail that failed must not stay.
  if (shown_ != 0 && ports_.status.Writings() == shown_) show_line_state_();
  ports_.log.WriteSystem("Error Sending To Mail To : " + recipient + " Becouse:" + description);
}

}  // namespace orven
