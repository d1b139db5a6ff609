// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/file_wave_control.h"

#include <algorithm>
#include <utility>

#include "adapters/audio/audio_file.h"
#include "platform/wave.h"

namespace orven {
namespace {

std::string CommonText(std::int32_t code) {
  switch (code) {
    case kWaveOk: return "The operation completed successfully.";
    case kWaveFileNotFound: return "The sound file was not found.";
    case kWaveFileUnreadable: return "The file is empty, damaged, not a sound file, or may not be read.";
    case kWaveNotRecording: return "No recording is running.";
    case kWavePathNotFound: return "The folder for the recording was not found.";
    case kWaveWriteDenied: return "The recording may not be written there.";
    case kWaveDiskFull: return "The disk is full.";
    case kWaveWriteFailed: return "The recording could not be written.";
    default: return "Unknown wave error " + std::to_string(code) + ".";
  }
}

std::string PlayResultText(std::int32_t code) {
  switch (code) {
    case kWaveNoDevice: return "There is no such wave device, or it cannot play now.";
    case kWaveBusy: return "The wave device is already playing.";
    case kWaveBadFormat: return "Sound in this format cannot be played.";
    default: return CommonText(code);
  }
}

std::string RecordResultText(std::int32_t code) {
  switch (code) {
    case kWaveNoDevice: return "There is no such wave device, or it cannot record now.";
    case kWaveBusy: return "The wave device is already in use.";
    case kWaveBadFormat: return "The wave device cannot record in this format.";
    default: return CommonText(code);
  }
}

}  // namespace

FileWaveControl::FileWaveControl(EventLoop& loop, AudioDevices& devices, std::string rescue_folder)
    : loop_(loop), devices_(devices), rescue_folder_(std::move(rescue_folder)) {}

FileWaveControl::~FileWaveControl() {
  StopPlay();
  StopMonitor();
  if (recording_) record_device_->StopRecord();
}

std::int32_t FileWaveControl::QueryRecordFormat(std::int32_t device, std::int32_t /*mode*/,
                                                const WaveFormat& format) {
  if (!IsRecordable(format)) return kWaveBadFormat;
  return devices_.Find(device) == nullptr ? kWaveNoDevice : kWaveOk;
}

std::int32_t FileWaveControl::StartRecord(std::int32_t device, const WaveFormat& format) try {
  const auto name = std::exchange(record_name_, {});
  if (recording_) return kWaveBusy;
  if (!IsRecordable(format)) return kWaveBadFormat;
  AudioDevice* const from = devices_.Find(device);
  if (from == nullptr) return kWaveNoDevice;
  StopListening();
  auto recording = std::make_unique<Recording>(RecordSettings(format, name), monitor_);
  if (const auto result = from->StartRecord(*recording); result != kWaveOk) return result;
  recording_ = std::move(recording);
  record_device_ = from;
  last_saved_ = {};
  return kWaveOk;
} catch (const std::system_error&) {  // no thread can be started
  return kWaveNoDevice;
}

std::int32_t FileWaveControl::StopRecordToFile(const std::string& path) {
  if (!recording_) return kWaveNotRecording;
  record_device_->StopRecord();
  last_saved_ = recording_->SaveAs(path);
  old_recordings_.Add(std::move(recording_));
  return last_saved_.result;
}

Recording::Settings FileWaveControl::RecordSettings(const WaveFormat& format, const std::string& name) const {
  Recording::Settings settings{format, record_to_disk_, {}, name};
  for (const std::string& folder : {record_folder_, rescue_folder_})
    if (!folder.empty()) settings.folders.push_back(folder);
  return settings;
}

std::int32_t FileWaveControl::StartMonitor(std::int32_t device, const WaveFormat& format) {
  if (!IsRecordable(format)) return kWaveBadFormat;
  if (!recording_) return kWaveNotRecording;
  if (monitor_device_ != nullptr) return kWaveBusy;
  AudioDevice* const to = devices_.Find(device);
  if (to == nullptr) return kWaveNoDevice;
  monitor_.SetOpen(true);
  const std::int32_t result = to->StartPlay(monitor_);
  if (result == kWaveOk) monitor_device_ = to;
  if (result != kWaveOk) monitor_.SetOpen(false);
  return result;
}

std::int32_t FileWaveControl::StopMonitor() {
  if (monitor_device_ == nullptr) return kWaveOk;
  std::exchange(monitor_device_, nullptr)->StopPlay();
  monitor_.SetOpen(false);
  return kWaveOk;
}

std::string FileWaveControl::RecordErrorText(std::int32_t code) const {
  std::string text = RecordResultText(code);
  if (code == kWaveOk || code != last_saved_.result) return text;
  if (last_saved_.kept.empty()) return text + " The recording waits in memory for a place on a disk.";
  return text + " The recording was kept as \"" + last_saved_.kept + "\".";
}

std::int32_t FileWaveControl::PlayFile(const std::string& path, std::int32_t device) {
  if (playing_) return kWaveBusy;
  play_path_ = path;
  AudioDevice* const to = devices_.Find(device);
  if (to == nullptr) return kWaveNoDevice;
  std::unique_ptr<TelephoneDecoder> decoder;
  if (const auto result = TelephoneDecoder::Open(path, decoder); result != kWaveOk) return result;
  ReleaseSource();
  play_device_ = to;
  const std::int32_t result = StartSource(std::move(decoder), {});
  playing_ = result == kWaveOk;
  // A card's microphone stays off.
  if (playing_ && device >= kFirstLineWaveDevice) Listen(*to);
  return result;
}

void FileWaveControl::Listen(AudioDevice& line) {
  if (recording_ || metered_line_ == &line) return;
  StopListening();
  if (line.StartRecord(meter_) == kWaveOk) metered_line_ = &line;
}

void FileWaveControl::StopListening() {
  if (metered_line_ != nullptr) std::exchange(metered_line_, nullptr)->StopRecord();
}

std::int32_t FileWaveControl::InputLevel(std::chrono::milliseconds ago) const {
  if (recording_) return recording_->Level(ago);
  return metered_line_ != nullptr ? meter_.Level(ago) : 0;
}

std::int32_t FileWaveControl::StartSource(std::unique_ptr<TelephoneDecoder> decoder,
                                          std::chrono::milliseconds start) try {
  const std::uint64_t play = ++play_;
  auto tell = lifeline_.Bind([this, play] { Finished(play); });
  auto source = std::make_unique<FileSource>(std::move(decoder), start,
                                             [&loop = loop_, tell = std::move(tell)] { loop.Post(tell); });
  const std::int32_t result = play_device_->StartPlay(*source);
  if (result == kWaveOk) {
    source_ = std::move(source);
    source_->WhenReady([device = play_device_] { device->SourceReady(); });
  } else {
    source->Cancel();
    old_sources_.Add(std::move(source));
  }
  return result;
} catch (const std::system_error&) {  // no thread can be started
  return kWaveNoDevice;
}

std::string FileWaveControl::PlayErrorText(std::int32_t code) const {
  const bool of_file = code == kWaveFileNotFound || code == kWaveFileUnreadable || code == kWaveBadFormat;
  return PlayResultText(code) + (of_file && !play_path_.empty() ? " (\"" + play_path_ + "\")" : "");
}

void FileWaveControl::StopPlay() {
  playing_ = false;
  ReleaseSource();
  StopListening();
}

/// Does not wait for a disk that the source's thread may be reading.
void FileWaveControl::ReleaseSource() {
  if (!source_) return;
  play_device_->StopPlay();
  source_->Cancel();
  old_sources_.Add(std::move(source_));
}

void FileWaveControl::Finished(std::uint64_t play) {
  if (!playing_ || play != play_) return;
  playing_ = false;
  if (events_ != nullptr) events_->PlayFinished();
}

std::chrono::milliseconds FileWaveControl::Position() const {
  return playing_ && source_ ? source_->Position() : std::chrono::milliseconds(0);
}

void FileWaveControl::Seek(std::chrono::milliseconds position) {
  std::unique_ptr<TelephoneDecoder> decoder;
  if (!playing_ || TelephoneDecoder::Open(play_path_, decoder) != kWaveOk || !decoder->CanSkip()) return;
  ReleaseSource();
  const auto start = std::clamp(position, std::chrono::milliseconds(0), decoder->Length());
  if (StartSource(std::move(decoder), start) == kWaveOk) return;
  // The device has failed after the play started.
  loop_.Post(lifeline_.Bind([this, play = play_] { Finished(play); }));
}

double FileWaveControl::FileLength(const std::string& path) const {
  AudioFile file;
  SF_INFO info;
  if (OpenAudioFile(path, file, info) != kWaveOk) return -1;
  return static_cast<double>(info.frames) / info.samplerate;
}

}  // namespace orven
