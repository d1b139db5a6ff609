// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/audio/audio_file.h"
#include "adapters/audio/monitor.h"
#include "adapters/audio/recording.h"
#include "platform/audio_device.h"
#include "platform/event_loop.h"
#include "platform/wave.h"

namespace orven {

/// Holds objects whose own thread is still busy with a last file operation, so that the user-interface thread
/// need not wait for it. T has `bool Finished() const`; destroying a finished T does not wait.
template <class T>
class Retired {
 public:
  /// Takes over `object` and destroys those that have finished meanwhile. nullptr is ignored.
  void Add(std::unique_ptr<T> object) {
    std::erase_if(objects_, [](const std::unique_ptr<T>& old) { return old->Finished(); });
    if (object) objects_.push_back(std::move(object));
  }

 private:
  std::vector<std::unique_ptr<T>> objects_;
};

/// All wave devices of the program: lines and sound cards.
class AllAudioDevices : public AudioDevices {
 public:
  /// Both outlive this object.
  AllAudioDevices(AudioDevices& lines, AudioDevices& cards) : lines_(lines), cards_(cards) {}

  AudioDevice* Find(std::int32_t number) override {
    return number >= kFirstLineWaveDevice ? lines_.Find(number) : cards_.Find(number);
  }

 private:
  AudioDevices& lines_;
  AudioDevices& cards_;
};

/// The wave control over audio files: plays every file that libsndfile reads (any rate is resampled,
/// channels are mixed) and records PCM or mu-law WAV files.
///
/// On the user-interface thread PlayFile, Seek and FileLength open the file and read its header only.
/// StopRecordToFile renames a file that grew on the destination's file system; only when that fails, or when
/// the recording was kept in memory, does it write the file and wait for the disk. All other file access is
/// on threads of the control.
class FileWaveControl : public WaveControl {
 public:
  /// `loop` and `devices` outlive the control. `rescue_folder` takes recordings that do not
  /// fit into the record folder; it is created when it is needed.
  FileWaveControl(EventLoop& loop, AudioDevices& devices, std::string rescue_folder);

  /// Stops everything without an event. A recording to disk is completed and stays there under its working
  /// name (DiskFile::Create); one in memory is lost.
  ~FileWaveControl() override;

  void SetEvents(WaveEvents* events) override { events_ = events; }
  void SetRecordToDisk(bool on) override { record_to_disk_ = on; }
  void SetRecordFolder(const std::string& folder) override { record_folder_ = folder; }
  void SetRecordName(const std::string& name) override { record_name_ = name; }
  std::int32_t QueryRecordFormat(std::int32_t device, std::int32_t mode, const WaveFormat& format) override;

  /// Folders that cannot be written to are reported only when the recording is saved: until then the audio
  /// stays in memory.
  std::int32_t StartRecord(std::int32_t device, const WaveFormat& format) override;
  std::int32_t StopRecordToFile(const std::string& path) override;
  bool IsRecording() const override { return recording_ != nullptr; }
  std::int32_t InputLevel(std::chrono::milliseconds ago) const override;

  /// kWaveNotRecording when nothing is being captured, kWaveBusy while another monitor runs. When the
  /// recording ends, it continues silently until StopMonitor.
  std::int32_t StartMonitor(std::int32_t device, const WaveFormat& format) override;
  std::int32_t StopMonitor() override;
  std::string RecordErrorText(std::int32_t code) const override;

  /// The finished event comes when the device has read the last block, which is before it is heard: a device
  /// with a buffer must not cut it off when it is stopped afterwards.
  std::int32_t PlayFile(const std::string& path, std::int32_t device) override;
  std::string PlayErrorText(std::int32_t code) const override;
  bool IsPlaying() const override { return playing_; }
  void StopPlay() override;
  std::chrono::milliseconds Position() const override;
  void Seek(std::chrono::milliseconds position) override;
  double FileLength(const std::string& path) const override;

 private:
  std::int32_t StartSource(std::unique_ptr<TelephoneDecoder> decoder, std::chrono::milliseconds start);
  void ReleaseSource();
  void Listen(AudioDevice& line);
  void StopListening();
  void Finished(std::uint64_t play);
  Recording::Settings RecordSettings(const WaveFormat& format, const std::string& name) const;

  EventLoop& loop_;
  AudioDevices& devices_;
  const std::string rescue_folder_;
  WaveEvents* events_ = nullptr;

  bool record_to_disk_ = false;
  std::string record_folder_;
  std::string record_name_;  ///< of the next recording
  AudioDevice* record_device_ = nullptr;
  std::unique_ptr<Recording> recording_;
  Retired<Recording> old_recordings_;
  Recording::Saved last_saved_;

  PeakMeter meter_;
  AudioDevice* metered_line_ = nullptr;  ///< measured by meter_ while nothing is recorded

  LiveMonitor monitor_;
  AudioDevice* monitor_device_ = nullptr;

  bool playing_ = false;
  std::string play_path_;
  std::uint64_t play_ = 0;  ///< counts the sources, to tell an old one's event from the current one's
  AudioDevice* play_device_ = nullptr;
  std::unique_ptr<FileSource> source_;  ///< stays with its device after the end, until the next play
  Retired<FileSource> old_sources_;

  Lifeline lifeline_;
};

}  // namespace orven
