// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/timed_wave.h"

#include <algorithm>

#include "base/runtime_error.h"

namespace orven::test {
namespace {

constexpr std::string_view kMark = "sound ";

}  // namespace

std::string TimedWave::Sound(std::chrono::milliseconds length) {
  return std::string(kMark) + std::to_string(length.count());
}

std::optional<std::chrono::milliseconds> TimedWave::LengthOf(const std::string& path) const {
  const auto content = files_.Content(path);
  if (!content.starts_with(kMark)) return std::nullopt;
  return std::chrono::milliseconds(std::stoll(content.substr(kMark.size())));
}

double TimedWave::FileLength(const std::string& path) const {
  const auto length = LengthOf(path);
  return length ? static_cast<double>(length->count()) / 1000 : -1;
}

std::int32_t TimedWave::QueryRecordFormat(std::int32_t /*device*/, std::int32_t /*mode*/,
                                          const WaveFormat& /*format*/) {
  return query_result;
}

std::int32_t TimedWave::StartRecord(std::int32_t device, const WaveFormat& format) {
  if (IsRecording()) return kWaveBusy;
  if (start_result != kWaveOk) return start_result;
  recorded.push_back(format);
  from_line_ = device >= kFirstLineWaveDevice;
  recording_since_ = time_.Uptime();
  return kWaveOk;
}

std::int32_t TimedWave::StopRecordToFile(const std::string& path) {
  if (!IsRecording()) return kWaveNotRecording;
  const auto length = time_.Uptime() - *recording_since_;
  const auto result = Store(path, length);
  recording_since_.reset();
  return result;
}

std::int32_t TimedWave::Store(const std::string& path, std::chrono::milliseconds length) {
  if (from_line_) {
    last_recorded_path = path;
    last_recorded_length = length;
  }
  if (stop_result != kWaveOk) return stop_result;
  try {
    before_write(path);
    files_.before_write(path);
  } catch (const RuntimeError&) {
    return KeepElsewhere(length);
  }
  files_.Put(path, Sound(length));
  from_line_ ? ++written : ++takes;
  return kWaveOk;
}

/// What was recorded stays where it has grown.
std::int32_t TimedWave::KeepElsewhere(std::chrono::milliseconds length) {
  unsaved.push_back(record_folder + "unsaved-" + std::to_string(unsaved.size() + 1) + ".part");
  files_.Put(unsaved.back(), Sound(length));
  return kWaveDiskFull;
}

std::optional<TimedWave::Growing> TimedWave::GrowingFile() const {
  if (!recording_since_ || !to_disk) return std::nullopt;
  return Growing{record_folder + ".recording-" + record_name_ + "-7-1.wav.part",
                 Sound(time_.Uptime() - *recording_since_)};
}

void TimedWave::Crash() {
  if (const auto growing = GrowingFile()) files_.Put(growing->path, growing->content);
  recording_since_.reset();
  StopPlay();
}

std::int32_t TimedWave::StartMonitor(std::int32_t device, const WaveFormat& /*format*/) {
  monitored.push_back(device);
  return monitor_result;
}

std::int32_t TimedWave::PlayFile(const std::string& path, std::int32_t device) {
  if (playing_) return kWaveBusy;
  on_play(path);
  if (play_result != kWaveOk) return play_result;
  const auto length = LengthOf(path);
  if (!length) return kWaveFileNotFound;
  played.push_back({path, device});
  playing_ = true;
  play_length_ = *length;
  PlayFrom(std::chrono::milliseconds(0));
  return kWaveOk;
}

void TimedWave::PlayFrom(std::chrono::milliseconds position) {
  beginning_ = time_.Uptime() - position;
  time_.After(play_length_ - position, [this, play = ++play_] {
    if (play != play_ || !playing_) return;
    playing_ = false;
    if (events_ != nullptr) events_->PlayFinished();
  });
}

void TimedWave::Seek(std::chrono::milliseconds position) {
  if (playing_) PlayFrom(std::clamp(position, std::chrono::milliseconds(0), play_length_));
}

std::chrono::milliseconds TimedWave::Position() const {
  return playing_ ? time_.Uptime() - beginning_ : std::chrono::milliseconds(0);
}

void TimedWave::StopPlay() {
  playing_ = false;
  ++play_;
}

}  // namespace orven::test
