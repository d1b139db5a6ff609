// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/recorder.h"

#include <algorithm>
#include <cmath>

#include "base/paths.h"
#include "core/error_trap.h"
#include "records/grown_recordings.h"
#include "records/message_files.h"

namespace orven {
namespace {

using std::chrono_literals::operator""ms;

constexpr auto kSilenceTick = 10ms;

/// A tenth of a second is counted at once: a wake-up costs far more than the ticks.
constexpr std::int64_t kMostTicks = 10;

constexpr auto kRecordInterval = 1000ms;

/// Pause between the beep and the recording, so that the beep's own echo is not recorded.
constexpr int kPauseTenths = 3;

constexpr std::int32_t kQueryForRecording = 1;
constexpr std::int32_t kWaveInDirection = 1;

constexpr WaveFormat kPcm{kWaveFormatPcm, 1, 16, 8000};
constexpr WaveFormat kMuLaw{kWaveFormatMuLaw, 1, 8, 8000};

/// How long a wait of `tenths` tenths of a second lasts when it begins at uptime `now`. Waits end on tenths
/// of the uptime, so one lasts up to half a tenth less or more.
std::chrono::milliseconds TenthsWait(std::chrono::milliseconds now, int tenths) {
  constexpr double kTenth = 100;
  const double target = std::nearbyint(static_cast<double>(now.count()) / kTenth + tenths);
  // The wait is over once the uptime has passed the target.
  return std::chrono::milliseconds(static_cast<std::int64_t>(target * kTenth) + 1) - now;
}

}  // namespace

Recorder::Recorder(Ports ports, CallControl& control)
    : ports_(ports),
      control_(control),
      tmrSilence(ports.loop.MakeTimer([this] { CountTicks(); })),
      TimerRecord(ports.loop.MakeTimer([this] { RecordTick(); })) {}

std::int32_t Recorder::WaveIn() const {
  return control_.Tapi1.GetWaveDeviceId(control_.Line(), kWaveInDirection);
}

void Recorder::RecMessage() {
  if (control_.settings.RecordMessage == 0 || control_.call.admin_mode) return control_.DropCall();
  ports_.loop.After(TenthsWait(ports_.clock.Uptime(), kPauseTenths),
                    lifeline_.Bind([this, serial = control_.call.serial] {
                      // The caller may have hung up, keyed the password, or called again meanwhile.
                      const auto& call = control_.call;
                      if (call.serial != serial || !call.InProgress() || call.admin_mode) return;
                      if (control_.Connected()) StartAfterWait();
                    }));
}

void Recorder::StartAfterWait() {
  MakeReady();
  const auto folder = FolderPart(ports_.folders.Serving());
  control_.Wave1.SetRecordFolder(folder);
  const auto name = RecordingName(control_.call.message_file_name, ports_.clock);
  control_.Wave1.SetRecordName(name);
  control_.call.recording_folder = folder;
  control_.call.recording = name;
  // Before the file exists, so that each file has its open call.
  control_.open_calls.Note(control_.call);
  const ErrorTrap trap(control_.log, "ErrRecMessage ");
  bool refused = false;
  trap([&] {
    if (control_.settings.CompressMessages != 0) {
      StartMuLaw();
    } else {
      refused = !StartPcm();
    }
  });
  if (refused) return;
  TimerRecord->Start(kRecordInterval);
  if (control_.settings.cDropSilence != 0) WaitForTicks();
  control_.Enter(CallState::Recording, "ErrRecMessage ");
}

bool Recorder::StartPcm() {
  auto& wave = control_.Wave1;
  auto result = wave.QueryRecordFormat(WaveIn(), kQueryForRecording, kPcm);
  if (result != kWaveOk) {
    control_.log.WriteSystem(FormatLine("Cap Error Rec Message", kPcm, result));
    control_.DropCall();
    return false;
  }
  result = wave.StartRecord(WaveIn(), kPcm);
  const auto line = FormatLine("Start Record Message", kPcm, result);
  if (result != kWaveOk) control_.log.WriteSystem(line);  // a failed start is logged twice
  control_.log.WriteSystem(line);
  StartPreScreen(kPcm);
  return true;
}

void Recorder::StartMuLaw() {
  const auto result = control_.Wave1.StartRecord(WaveIn(), kMuLaw);
  control_.log.WriteSystem(FormatLine("Start Record Message", kMuLaw, result));
  StartPreScreen(kMuLaw);
}

void Recorder::StartPreScreen(const WaveFormat& format) {
  if (control_.settings.PreScreen == 0) return;
  const auto result = control_.Wave1.StartMonitor(control_.settings.Sound, format);
  control_.log.WriteSystem("PreScreen->" + control_.Wave1.RecordErrorText(result));
}

std::string Recorder::FormatLine(const std::string& step, const WaveFormat& format,
                                 std::int32_t result) const {
  // The tag says line index, but it has always carried the wave device's number.
  return step + LineTag(WaveIn()) + " Format:, " + std::to_string(format.tag) + ", " +
         std::to_string(format.channels) + ", " + std::to_string(format.bits_per_sample) + ", " +
         std::to_string(format.samples_per_second) + "->" + control_.Wave1.RecordErrorText(result);
}

void Recorder::StopRecMessage() {
  auto& call = control_.call;
  auto& wave = control_.Wave1;
  call.message_file_name = MessageFileName(call.date, call.time);
  const auto& folder = ports_.folders.Serving();
  auto path = folder + call.message_file_name;
  const ErrorTrap trap(control_.log, "ErrStopRecMessage ");
  trap([&] {
    const auto result = Store(path);
    control_.log.WriteSystem("Record Message " + wave.RecordErrorText(result));
    call.message_file_name = NameInFolder(path, folder);
    if (result == kWaveOk) call.message_path = path;
  });
  trap([&] { control_.log.WriteSystem("Close PreScreen" + wave.RecordErrorText(wave.StopMonitor())); });
  TimerRecord->Stop();
  call.message_left = true;
  tmrSilence->Stop();
  call.silence_milliseconds = 0;
  if (call.state == CallState::Recording) control_.Enter(CallState::Recorded, "ErrStopRecMessage ");
  control_.open_calls.Note(call);
}

std::int32_t Recorder::Store(std::string& path) {
  if (ports_.files.Exists(path) || control_.open_calls.IsChosen(path)) {
    const auto name = FileNamePart(path);
    path = FreeNameBeside(ports_.files, ports_.clock, path);
    control_.log.WriteSystem("Record Message: two calls share the name " + name +
                             ", the newer message becomes " + FileNamePart(path));
  }
  control_.call.place = path;
  control_.open_calls.Note(control_.call);
  return control_.Wave1.StopRecordToFile(path);
}

void Recorder::EndOfCall() {
  if (Recording()) StopRecMessage();
  StopTimers();
}

void Recorder::StopTimers() {
  TimerRecord->Stop();
  tmrSilence->Stop();
}

/// Waits for a tenth of a second, but never beyond the first tick that can reach the limit.
void Recorder::WaitForTicks() {
  const auto missing = std::int64_t{control_.settings.SecSilence} * 1000 - control_.call.silence_milliseconds;
  const auto to_limit = (missing + kSilenceTick.count() - 1) / kSilenceTick.count();
  const auto ticks = static_cast<std::int32_t>(std::clamp<std::int64_t>(to_limit, 1, kMostTicks));
  if (tmrSilence->Enabled() && ticks == ticks_) return;
  ticks_ = ticks;
  tmrSilence->Start(ticks * kSilenceTick);
}

/// Counts the ticks that the timer was set for, regardless of the time that has really passed.
void Recorder::CountTicks() {
  for (auto ago = (ticks_ - 1) * kSilenceTick; ago >= 0ms; ago -= kSilenceTick) {
    if (!SilenceTick(ago)) continue;
    if (Recording()) StopRecMessage();
    if (control_.Connected()) control_.DropCall();
    return tmrSilence->Stop();
  }
  WaitForTicks();
}

/// Counts the tick of `ago` before now; true when the limit is reached.
bool Recorder::SilenceTick(std::chrono::milliseconds ago) {
  auto& count = control_.call.silence_milliseconds;
  if (control_.Wave1.InputLevel(ago) > control_.settings.ValSilence) {
    count = 0;
    return false;
  }
  count += static_cast<std::int32_t>(kSilenceTick.count());
  if (count < std::int64_t{control_.settings.SecSilence} * 1000) return false;
  count = 0;
  return true;
}

void Recorder::RecordTick() {
  auto& call = control_.call;
  call.record_seconds += 1;
  if (call.record_seconds < control_.settings.max_record_seconds) return;
  if (Recording() && control_.Connected()) StopRecMessage();
  TimerRecord->Stop();
  call.record_seconds = 0;
}

}  // namespace orven
