// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/promises.h"

#include <algorithm>
#include <set>

#include "base/conversions.h"
#include "base/paths.h"
#include "records/call.h"

namespace orven::test {

static constexpr int kIdleSeconds = 120;

Promises::Promises(World& world) : world_(world), second_(world.time.MakeTimer([this] { CountSilence(); })) {
  second_->Start(1s);
  world_.Wave1.on_play = [this](const std::string& path) { OwnerHears(path); };
  Connect();
  world_.files.on_append = [this](const std::string& path, std::string_view text) { Hear(path, text); };
  world_.disk.on_failure = [this](const std::string& path) {
    if (path == world_.database.opened_path || path.find("/.call-") != path.npos) kept_ = false;
  };
}

void Promises::Play(const Step& step) {
  const auto is = [&](std::string_view begin) { return step.what.starts_with(begin); };
  if (is("drop") || is("view: drop") || is("line off") || is("exit")) cut_short_ = true;
  if (is("the clock")) turned_ = true;
  if (is("the records' f")) {
    lost_ = stale_ = cut_short_ = true;
    lost_at_ = world_.time.Uptime();
  }
  const bool running = !world_.ended;
  const int refused = world_.database.refused;
  if (is("started again")) {
    Restart(step);
  } else if (running) {
    step.act(world_);
  }
  if (!world_.ended) return CheckWindow();
  CountFiled();  // includes calls that were filed when the program ended
  if (running && RecordsWork() && world_.database.refused == refused && !unsure_)
    Expect(waiting_ == 0, "every call is filed when the program ends");
}

void Promises::Expect(bool kept, const std::string& promise) {
  if (!kept) broken.push_back(std::to_string(world_.time.Uptime().count()) + " ms: " + promise);
}

void Promises::Restart(const Step& step) {
  const auto call = world_.CurrentCall();
  const bool interrupted = call.InProgress() && !world_.ended;
  const int most = interrupted && !call.admin_mode ? 1 : 0;
  // Only the recovery knows whether a message had begun.
  const int least = world_.Machine().settings.ListMessageOnly == 0 ? most : 0;
  CountFiled();
  step.act(world_);
  Connect();
  if (interrupted) ++idle_;  // the call ended with the program
  stale_ = false;
  const int recovered = world_.database.added - filed_;
  const bool noticed = world_.time.Uptime() - lost_at_ > 1s;  // that the records' file was lost
  if (world_.disk.Failures() > 0 || !RecordsWork() || !noticed) unsure_ = true;
  Expect(unsure_ || (recovered >= waiting_ + least && recovered <= waiting_ + most),
         "the next start files an interrupted call once");
  filed_ = world_.database.added;
  waiting_ = 0;
}

/// Collects log lines as they are written. After a clock change, the log files are not in order.
void Promises::Hear(const std::string& path, std::string_view text) {
  constexpr std::size_t kTime = 11;  // "14:05:07 : "
  if (!path.ends_with("_Sys.txt")) return;
  log.emplace_back(text.substr(kTime, text.size() - kTime - 2));
  if (world_.disk.Failures() > 0) return;
  const auto day = FileStamp(world_.time.DateText(world_.time.Now()), "");
  Expect(path.ends_with("/" + day + "_Sys.txt"), "a log line is in the file of its day");
  Expect(text.starts_with(world_.time.TimeText(world_.time.Now())), "a log line has the current time");
  Expect(!log.back().ends_with("the line ends the call") || silent_ >= kIdleSeconds - 1,
         "the line never ends an active call");
}

/// Subtracts the records that were added since the last check from the waiting calls.
void Promises::CountFiled() {
  waiting_ -= world_.database.added - filed_;
  filed_ = world_.database.added;
}

std::string Promises::Newest(std::string_view field) const {
  return world_.database.Field(world_.database.Records().size() - 1, field);
}

/// Returns the path of a record's message, or "" if it has none.
std::string Promises::Message(std::size_t record) const {
  const auto& database = world_.database;
  if (database.Field(record, kType) == kNoMessageType) return "";
  return world_.messages + database.Field(record, kCallMassageName);
}

void Promises::CheckQuiet() {
  auto& machine = world_.Machine();
  Expect(!machine.recorder.TimersRunning(), "both recording timers are off after a call");
  Expect(!world_.Wave1.IsRecording() || machine.microphone.Recording(),
         "nothing but the microphone records after a call");
  Expect(!world_.Wave1.IsPlaying(), "nothing plays on the line after a call");
  Expect(!world_.Tapi1->IsCallConnected(0), "no call is connected after a call");
  Expect(machine.call.state == CallState::Idle, "the call's state is idle");
}

void Promises::CheckFiling(int filed, bool message_only, bool could_be) {
  const auto& call = world_.CurrentCall();
  if (call.admin_mode) {
    Expect(filed == 0, "no administrator call is filed");
    Expect(cut_short_ || NextUnheard() == 0, "the owner hears every message");
    return;
  }
  if (message_only && !call.message_left) {
    Expect(filed == 0, "a call without a message is not filed when only messages are wanted");
    return;
  }
  ++waiting_;
  CountFiled();
  if (unsure_) waiting_ = could_be && filed > 0 ? 0 : 1;  // their number is unknown
  Expect(waiting_ >= 0, "no call is filed twice");
  if (could_be) Expect(waiting_ == 0, "every call is filed as soon as possible");
  if (waiting_ != 0) return;
  stale_ = false;
  Expect(Newest(kCallDate) == date_ && Newest(kCallTime) == time_,
         "a record has the time when its call came in");
  Expect(Newest(kCallName) == name_ && Newest(kCallNumber) == number_, "a record has its caller");
  CheckMessage();
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
  Expect(window.open == world_.Machine().caller_view.IsOpen(), "the caller view is open when it says so");
  Expect(!window.open || window.commands == CallerCommands::None,
         "no command is offered for a call that has ended");
}

void Promises::CheckMessage() {
  const auto& wave = world_.Wave1;
  const int written = wave.written - written_before_;
  const auto path = Message(world_.database.Records().size() - 1);
  Expect(written <= 1, "a call has one message at most");
  Expect(!whole || written == (world_.Machine().settings.RecordMessage != 0 ? 1 : 0),
         "a call without any fault leaves its message");
  Expect(path.empty() == (written == 0), "the record says -1 exactly when no message was recorded");
  if (written == 0) return;
  Expect(path == wave.last_recorded_path, "the record names the message that was recorded");
  Expect(world_.files.Content(path) == TimedWave::Sound(wave.last_recorded_length),
         "the message is there, at the recorded length");
  Expect(Newest(kType) == ToText(static_cast<double>(wave.last_recorded_length.count()) / 1000),
         "the record has the message's length");
}

void Promises::CountSilence() {
  const bool used = world_.Wave1.IsPlaying() || world_.Wave1.IsRecording();
  silent_ = world_.Tapi1->IsCallConnected(0) && !used ? silent_ + 1 : 0;
  Expect(silent_ != kIdleSeconds + 2, "a silent line is released");
}

/// Returns the number of the newest record with a message that the owner has not heard, or 0.
std::size_t Promises::NextUnheard() const {
  if (world_.database.gone) return 0;
  for (auto record = world_.database.Records().size(); record > 0; --record) {
    const auto identity = world_.database.Identity(static_cast<std::int32_t>(record));
    if (identity < heard_ && !Message(record - 1).empty()) return record;
  }
  return 0;
}

void Promises::OwnerHears(const std::string& path) {
  if (!world_.CurrentCall().admin_mode) return;
  const auto record = NextUnheard();
  Expect(record > 0 && path == Message(record - 1), "the owner hears each message once, the newest first");
  heard_ = record > 0 ? world_.database.Identity(static_cast<std::int32_t>(record)) : 0;
  if (world_.Wave1.play_result != kWaveOk || !world_.files.Exists(path)) cut_short_ = true;
}

void Promises::CheckWindow() {
  if (stale_ || world_.database.gone) return;
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
  Expect(world_.Machine().player.Playing() == world_.views.slider_enabled,
         "the slider can be moved while a message plays");
}

void Promises::CheckEnd() {
  // If that could not be written down, the next start does not know that a mail was sent.
  Expect(!kept_ || world_.Mail1.mails.size() == mails_, "a mail is sent only for a call that has ended");
  Expect(world_.shell.attempts == programs_, "a program is started only for a call that has ended");
  Expect(offered == idle_, "every call that was offered became idle");
  Expect(!world_.line->HasCall(), "the line has no call left");
  CheckQuiet();
  Expect(waiting_ >= 0 || unsure_, "no call is filed twice");
  // A recording whose record was lost is filed again as a separate call.
  // If a step was not kept, the next start does not know whose recording it finds.
  Expect(!kept_ || lost_ || world_.database.added <= offered, "no more records than calls");
  std::set<std::string> paths;
  for (std::size_t record = 0; record < world_.database.Records().size(); ++record) {
    const auto path = Message(record);
    if (path.empty()) continue;
    Expect(world_.files.Exists(path), "every message of the list is there, " + path);
    Expect(paths.insert(path).second, "each call has a message of its own, " + path);
  }
  if (!world_.ended) CheckWindow();
  const std::string expected = world_.ended ? "Off Mode" : "Monitoring Sim";
  Expect(world_.views.Status() == expected, "the status is " + expected + ", not " + world_.views.Status());
  // Lines that wait for one day's file do not delay another day's, so they may be out of order.
  if (unsure_ || (turned_ && world_.disk.Failures() > 0)) return;
  for (const auto& fault : FaultsInLog(log, lost_)) Expect(false, fault);
}

/// Puts the promises between the line and the program.
void Promises::Connect() {
  world_.Tapi1->SetEvents([this](const LineEvent& event) { Handle(event); });
}

void Promises::Handle(const LineEvent& event) {
  using Kind = LineEvent::Kind;
  const auto answered = [&] { return world_.Tapi1->IsCallConnected(event.line); };
  if (event.kind == Kind::Idle) return HandleIdle(event);
  if (event.kind == Kind::MonitorDigit) return HandleDigit(event);
  if (event.kind == Kind::Disconnected) cut_short_ = true;
  if (event.kind == Kind::InCommingCall) {
    ++offered;
    silent_ = 0;
    written_before_ = world_.Wave1.written;
    date_ = world_.time.DateText(world_.time.Now());
    time_ = world_.time.TimeText(world_.time.Now());
    name_ = number_ = "UNKNOWN";
  }
  if (event.kind == Kind::CallerID) {
    name_ = event.name;
    number_ = event.text;
  }
  Pass(event);
  if (event.kind == Kind::Proc) {
    const bool hung_up = event.number == event.result && !answered();
    if (hung_up && world_.line->IsAnswered()) Expect(!world_.Wave1.IsPlaying(), "hanging up ends every play");
  }
  if (event.kind == Kind::Ring) {
    Expect(
        event.number < world_.Machine().settings.NumOfRing || world_.CurrentCall().Answering() || answered(),
        "a call is answered at the configured ring, whatever was clicked");
  }
}

void Promises::HandleIdle(const LineEvent& event) {
  ++idle_;
  const auto added = world_.database.added;
  const auto refused = world_.database.refused;
  const bool message_only = world_.Machine().settings.ListMessageOnly != 0;
  const auto mails = world_.Mail1.mails.size();
  const auto programs = world_.shell.attempts;
  Pass(event);
  CheckActions(world_.Mail1.mails.size() - mails, world_.shell.attempts - programs);
  CheckQuiet();
  CheckFiling(world_.database.added - added, message_only,
              RecordsWork() && world_.database.refused == refused);
}

void Promises::HandleDigit(const LineEvent& event) {
  silent_ = 0;
  const bool owner = event.digit == '*' && !world_.Machine().recorder.Recording() &&
                     world_.CurrentCall().digit_buffer == world_.Machine().settings.Pass;
  if (owner) heard_ = CallList::kTop;
  if (owner) cut_short_ = world_.database.gone;
  Pass(event);
  if (!owner || heard_ != CallList::kTop) return;
  Expect(cut_short_ || NextUnheard() == 0, "the owner hears the first message");
  cut_short_ = true;
}

}  // namespace orven::test
