// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/promises.h"

#include "core/conversions.h"
#include "records/call_fields.h"
#include "simulation/log_order.h"

namespace orven::test {

Promises::Promises(World& world) : world_(world), program_(world.Machine().sequence) {
  world_.Tapi1->SetEvents(this);
}

void Promises::Expect(bool kept, const std::string& promise) {
  if (!kept) broken_.push_back(std::to_string(world_.time.Uptime().count()) + " ms: " + promise);
}

void Promises::InCommingCall(std::int32_t line, const CallInformation& call) {
  ++offered_;
  written_before_ = world_.Wave1.written;
  program_.InCommingCall(line, call);
}

void Promises::Idle(std::int32_t line) {
  ++idle_;
  const auto records = world_.database.Records().size();
  const bool message_only = world_.Machine().settings.ListMessageOnly != 0;
  const auto mails = world_.Mail1.mails.size();
  const auto programs = world_.shell.started.size();
  program_.Idle(line);
  CheckActions(world_.Mail1.mails.size() - mails, world_.shell.started.size() - programs);
  CheckQuiet();
  CheckFiling(world_.database.Records().size() - records, message_only);
}

void Promises::CheckQuiet() {
  Expect(!world_.Machine().recorder.TimersRunning(), "both recording timers are off after a call");
  Expect(!world_.Wave1.IsRecording() || world_.Machine().microphone.Recording(),
         "nothing but the microphone records after a call");
  Expect(!world_.Wave1.IsPlaying(), "nothing plays on the line after a call");
  Expect(!world_.Tapi1->IsCallConnected(0), "no call is connected after a call");
  Expect(!world_.CurrentCall().in_progress && !world_.CurrentCall().answering, "the call's flags are clear");
  Expect(world_.Machine().progress.State() == CallState::Idle, "the call's state is idle");
}

void Promises::CheckFiling(std::size_t filed, bool message_only) {
  const auto& call = world_.CurrentCall();
  if (call.admin_mode) {
    Expect(filed == 0, "no administrator call is filed");
    return;
  }
  if (message_only && !call.message_left) {
    Expect(filed == 0, "a call without a message is not filed when only messages are wanted");
    return;
  }
  ++waiting_;
  if (world_.database_full) return;
  Expect(filed == waiting_, "every call is filed exactly once, as soon as that can be");
  waiting_ = 0;
  Expect(world_.views.rows.size() == world_.database.Records().size(), "the list shows every record");
  if (filed > 0) CheckMessage();
}

void Promises::CheckActions(std::size_t mails, std::size_t programs) {
  const auto& call = world_.CurrentCall();
  const auto& settings = world_.Machine().settings;
  const bool wanted = !call.admin_mode && (call.message_left || settings.ActionsMailAllCalls != 0);
  Expect(mails == (wanted && settings.pMailTo != 0 ? 1U : 0U),
         "a mail is sent once for each call that asks for it");
  Expect(programs == (wanted && settings.pAppTo != 0 ? 1U : 0U),
         "the program is started once for each such call");
  mails_ += mails;
  programs_ += programs;
  if (mails > 0) {
    const auto attachment = settings.MassagesPath + call.message_file_name;
    Expect(world_.Mail1.mails.back().attachment == attachment, "the mail carries the call's own message");
  }
  const auto& window = world_.views.caller_view;
  Expect(window.open == world_.Machine().caller_view.IsOpen(), "the caller view is where it says it is");
  Expect(!window.open || !window.commands, "no command is offered for a call that is over");
}

void Promises::CheckMessage() {
  const auto newest = world_.database.Records().size() - 1;
  const auto type = world_.database.Field(newest, kType);
  const int written = world_.Wave1.written - written_before_;
  Expect(written <= 1, "a call has one message at most");
  Expect((type == kNoMessageType) == (written == 0),
         "the record says -1 exactly when no message was recorded");
  if (written == 0) return;
  const auto path = world_.messages + world_.database.Field(newest, kCallMassageName);
  Expect(path == world_.Wave1.last_recorded_path, "the record names the message that was recorded");
  Expect(world_.files.Content(path) == TimedWave::Sound(world_.Wave1.last_recorded_length),
         "the message is there, at the recorded length");
  Expect(type == ToText(static_cast<double>(world_.Wave1.last_recorded_length.count()) / 1000),
         "the record has the message's length");
}

void Promises::CheckWindow() {
  const auto& list = world_.Machine().ListView1;
  const auto& shown = world_.views.rows;
  Expect(static_cast<std::int32_t>(shown.size()) == list.Count(),
         "the window shows as many rows as the list has");
  Expect(shown.size() == world_.database.Records().size(), "the list has a row for every record");
  std::int32_t unread = 0;
  for (std::int32_t row = 1; row <= std::min(list.Count(), static_cast<std::int32_t>(shown.size())); ++row) {
    const auto& seen = shown[static_cast<std::size_t>(row) - 1];
    const auto is = list.Row(row);
    Expect(seen.key == is.key && seen.icon == is.icon, "row " + std::to_string(row) + " shows its call");
    if (is.icon == kUnreadMessage || is.icon == kUnreadNoMessage) ++unread;
  }
  Expect(list.NewCalls() == unread, "the new calls are counted");
  Expect(world_.views.selection == list.Selected() && list.Selected() <= list.Count(),
         "the selection is shown");
  const auto tip = "ORVEN - Calls:" + std::to_string(list.Count()) + "  New:" + std::to_string(unread);
  Expect(world_.shell.icon.tip.c_str() == tip, "the tip of the tray icon is " + tip);
  const auto& player = world_.Machine().player;
  Expect(player.Playing() == world_.views.slider_enabled, "the slider can be moved while a message plays");
}

void Promises::CheckEnd() {
  Expect(world_.Mail1.mails.size() == mails_, "no mail is sent but for a call that is over");
  Expect(world_.shell.started.size() == programs_, "no program is started but for a call that is over");
  Expect(offered_ == idle_, "every call that was offered became idle");
  Expect(!world_.line->HasCall(), "the line has no call left");
  CheckQuiet();
  const std::string expected = world_.ended ? "Off Mode" : "Monitoring Sim";
  Expect(world_.views.Status() == expected, "the status is " + expected + ", not " + world_.views.Status());
  for (const auto& fault : FaultsInLog(world_.SystemLog())) Expect(false, fault);
}

void Promises::Proc(std::int32_t line, std::int32_t request, std::int32_t result) {
  program_.Proc(line, request, result);
  const bool hung_up = request == result && !world_.Tapi1->IsCallConnected(line);
  if (hung_up && world_.line->IsAnswered()) Expect(!world_.Wave1.IsPlaying(), "hanging up ends every play");
}
void Promises::MonitorDigit(std::int32_t line, char digit) {
  program_.MonitorDigit(line, digit);
}
void Promises::Disconnected(std::int32_t line) {
  program_.Disconnected(line);
}
void Promises::Connected(std::int32_t line) {
  program_.Connected(line);
}
void Promises::Ring(std::int32_t line, std::int32_t count) {
  program_.Ring(line, count);
}
void Promises::CallerID(std::int32_t line, const std::string& name, const std::string& number) {
  program_.CallerID(line, name, number);
}

}  // namespace orven::test
