// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sim/virtual_time.h"
#include "base/runtime_error.h"
#include "platform/audio_device.h"
#include "platform/wave.h"
#include "support/memory_disk.h"

namespace orven::test {

/// A wave control without samples. A sound file contains only its length. Playing takes that long on virtual
/// time, and a recording is as long as it ran. The requests are recorded.
class TimedWave : public WaveControl {
 public:
  using milliseconds = std::chrono::milliseconds;

  TimedWave(VirtualTime& time, MemoryFiles& files) : time_(time), files_(files) {}

  /// Returns the content of a sound file of this length.
  static std::string Sound(milliseconds length) {
    return std::string(kMark) + std::to_string(length.count());
  }

  // The results that the operations return from now on.
  std::int32_t play_result = kWaveOk, query_result = kWaveOk, start_result = kWaveOk;
  std::int32_t stop_result = kWaveOk, monitor_result = kWaveOk;

  /// Called before a file is played.
  std::function<void(const std::string&)> on_play = [](const std::string&) {};

  /// Sets the input level of the line, in thousandths, from now on.
  void SetLevel(std::int32_t level) {
    level_ = level;
    NoteLevel();
  }

  using Played = std::pair<std::string, std::int32_t>;
  std::vector<Played> played;           ///< every file that was played, with its device
  std::vector<WaveFormat> recorded;     ///< the format of every recording that was started
  std::vector<std::int32_t> monitored;  ///< the device of every live monitoring
  int written = 0;                      ///< number of messages from a line stored as files
  std::vector<std::string> unsaved;     ///< paths of recordings that could not be stored under their names
  std::string last_recorded_path;
  milliseconds last_recorded_length{0};
  bool to_disk = false;

  /// Returns the path and content of the file that is being recorded to.
  std::optional<std::pair<std::string, std::string>> GrowingFile() const {
    if (!recording_since_ || !to_disk) return std::nullopt;
    return std::pair{record_folder + ".recording-" + record_name_ + "-7-1.wav.part", Sound(Recorded())};
  }

  /// Simulates a kill of the program: everything stops, and the partial recording remains on disk.
  void Crash() {
    if (const auto growing = GrowingFile()) files_.Put(growing->first, growing->second);
    recording_since_.reset();
    NoteLevel();
    StopPlay();
  }

  std::string record_folder;

  void SetEvents(WaveEvents* events) override { events_ = events; }
  void SetRecordToDisk(bool on) override { to_disk = on; }
  void SetRecordFolder(const std::string& folder) override { record_folder = folder; }
  void SetRecordName(const std::string& name) override { record_name_ = name; }
  std::int32_t QueryRecordFormat(std::int32_t /*device*/, std::int32_t /*mode*/,
                                 const WaveFormat& /*format*/) override {
    return query_result;
  }
  std::int32_t StartRecord(std::int32_t device, const WaveFormat& format) override {
    if (IsRecording()) return kWaveBusy;
    if (start_result != kWaveOk) return start_result;
    recorded.push_back(format);
    from_line_ = device >= kFirstLineWaveDevice;
    recording_since_ = time_.Uptime();
    NoteLevel();
    return kWaveOk;
  }
  std::int32_t StopRecordToFile(const std::string& path) override {
    if (!IsRecording()) return kWaveNotRecording;
    const auto result = Store(path, Recorded());
    recording_since_.reset();
    NoteLevel();
    return result;
  }
  bool IsRecording() const override { return recording_since_.has_value(); }
  std::int32_t InputLevel(milliseconds ago) const override {
    if (ago == milliseconds(0)) return IsRecording() || IsPlaying() ? level_ : 0;
    // Whoever looked at the moment of a change saw the level before it.
    const auto earlier = [&](const auto& change) { return change.first < time_.Uptime() - ago; };
    const auto change = std::find_if(recorded_levels_.rbegin(), recorded_levels_.rend(), earlier);
    return change == recorded_levels_.rend() ? 0 : change->second;
  }
  std::int32_t StartMonitor(std::int32_t device, const WaveFormat& /*format*/) override {
    monitored.push_back(device);
    return monitor_result;
  }
  std::int32_t StopMonitor() override { return kWaveOk; }
  std::string RecordErrorText(std::int32_t code) const override { return PlayErrorText(code); }
  std::int32_t PlayFile(const std::string& path, std::int32_t device) override {
    if (playing_) return kWaveBusy;
    on_play(path);
    if (play_result != kWaveOk) return play_result;
    const auto length = LengthOf(path);
    if (!length) return kWaveFileNotFound;
    played.push_back({path, device});
    playing_ = true;
    play_length_ = *length;
    Seek({});
    return kWaveOk;
  }
  std::string PlayErrorText(std::int32_t code) const override {
    return code == kWaveOk ? "OK" : "wave error " + std::to_string(code);
  }
  bool IsPlaying() const override { return playing_; }
  void StopPlay() override {
    playing_ = false;
    ++play_;
  }
  milliseconds Position() const override { return playing_ ? time_.Uptime() - beginning_ : milliseconds(0); }
  void Seek(milliseconds position) override {
    if (!playing_) return;
    position = std::clamp(position, milliseconds(0), play_length_);
    beginning_ = time_.Uptime() - position;
    time_.After(play_length_ - position, [this, play = ++play_] {
      if (play != play_ || !playing_) return;
      playing_ = false;
      if (events_ != nullptr) events_->PlayFinished();
    });
  }
  double FileLength(const std::string& path) const override {
    const auto length = LengthOf(path);
    return length ? static_cast<double>(length->count()) / 1000 : -1;
  }

 private:
  static constexpr std::string_view kMark = "sound ";
  std::int32_t Store(const std::string& path, milliseconds length) {
    if (from_line_) {
      last_recorded_path = path;
      last_recorded_length = length;
    }
    if (stop_result != kWaveOk) return stop_result;
    try {
      files_.BeforeWrite(path);
    } catch (const RuntimeError&) {  // the recording stays in its temporary file
      unsaved.push_back(record_folder + "unsaved-" + std::to_string(unsaved.size() + 1) + ".part");
      files_.Put(unsaved.back(), Sound(length));
      return kWaveDiskFull;
    }
    files_.Put(path, Sound(length));
    if (from_line_) ++written;
    return kWaveOk;
  }
  std::optional<milliseconds> LengthOf(const std::string& path) const {
    const auto content = files_.Content(path);
    if (!content.starts_with(kMark)) return std::nullopt;
    return milliseconds(std::stoll(content.substr(kMark.size())));
  }
  milliseconds Recorded() const { return time_.Uptime() - *recording_since_; }
  void NoteLevel() { recorded_levels_.emplace_back(time_.Uptime(), IsRecording() ? level_ : 0); }

  VirtualTime& time_;
  MemoryFiles& files_;
  WaveEvents* events_ = nullptr;
  std::int32_t level_ = 0;
  std::vector<std::pair<milliseconds, std::int32_t>>
      recorded_levels_;  ///< each with the moment of its change
  std::optional<milliseconds> recording_since_;
  std::string record_name_;
  bool from_line_ = false;  ///< the recording comes from a line, not from a sound card
  bool playing_ = false;
  milliseconds play_length_{0};
  milliseconds beginning_{0};  ///< the uptime that corresponds to position 0
  std::uint64_t play_ = 0;     ///< number of the current play; timers of earlier plays are ignored
};

}  // namespace orven::test
