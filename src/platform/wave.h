// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orven {

/// Results of the wave control and of audio devices. 0 is success; the control turns each into text.
enum WaveResult : std::int32_t {
  kWaveOk = 0,
  kWaveNoDevice = 1,   ///< no wave device has that number, or it cannot play or record now
  kWaveBusy = 2,       ///< the device or the control is already playing or recording
  kWaveBadFormat = 3,  ///< the format is not one that can be recorded or played
  kWaveFileNotFound = 4,
  kWaveFileUnreadable = 5,  ///< not a sound file, damaged, empty, or no permission
  kWaveNotRecording = 6,
  kWavePathNotFound = 7,  ///< the folder to write to is missing or is not a folder
  kWaveWriteDenied = 8,
  kWaveDiskFull = 9,
  kWaveWriteFailed = 10,
};

/// Wave format tags as RIFF files carry them.
inline constexpr std::int32_t kWaveFormatPcm = 1;
inline constexpr std::int32_t kWaveFormatMuLaw = 7;

struct WaveFormat {
  std::int32_t tag = kWaveFormatPcm;
  std::int32_t channels = 1;
  std::int32_t bits_per_sample = 16;
  std::int32_t samples_per_second = 8000;
  bool operator==(const WaveFormat&) const = default;
};

/// Events of a wave control.
class WaveEvents {
 public:
  virtual ~WaveEvents() = default;

  /// The file given to the latest PlayFile has been played to its end (or stopped because the rest
  /// of it cannot be read). Never raised after StopPlay or for an earlier PlayFile.
  virtual void PlayFinished() = 0;
};

/// The wave control (`Wave1` for the line, `WavePlay` for the sound card): plays and records WAV
/// files over numbered wave devices, one play and one record at a time. All operations are called on
/// the user-interface thread and return at once; events arrive there, never inside an operation.
class WaveControl {
 public:
  virtual ~WaveControl() = default;

  /// The receiver of the events; it outlives the control's last event. nullptr: no receiver.
  virtual void SetEvents(WaveEvents* events) = 0;

  /// True: a recording is written to disk while it is made, in the folder of SetRecordFolder, so that a crash
  /// loses at most the last second. False (the initial state): it stays in memory until it ends.
  virtual void SetRecordToDisk(bool on) = 0;

  /// Folder in which a recording grows while it is made; normally the messages folder, so that
  /// finishing it is a rename. Takes effect with the next StartRecord.
  virtual void SetRecordFolder(const std::string& folder) = 0;

  /// Names the next recording, to find it after a crash: while it grows, its file is
  /// ".recording-<name>-<process>-<n>.wav.part". Applies to one StartRecord, even if that fails; empty (as
  /// without this call): ".recording-<process>-<n>.wav.part". The file is always a playable WAV file, at
  /// most a second behind. `name` must be valid in a file name.
  virtual void SetRecordName(const std::string& name) = 0;

  /// Whether `device` can record `format`, without recording. `mode` is 1: ask for recording.
  virtual std::int32_t QueryRecordFormat(std::int32_t device, std::int32_t mode,
                                         const WaveFormat& format) = 0;

  /// Starts capturing from `device` in `format` (16-bit PCM or 8-bit mu-law, one channel, 8000).
  virtual std::int32_t StartRecord(std::int32_t device, const WaveFormat& format) = 0;

  /// Stops capturing and stores the recording as a WAV file at `path`, replacing an older file.
  /// If that fails, the recording stays on disk elsewhere if possible; RecordErrorText of this result
  /// then names that file until the next StartRecord.
  virtual std::int32_t StopRecordToFile(const std::string& path) = 0;

  virtual bool IsRecording() const = 0;

  /// Peak of the 20 ms of input that were heard `ago` before now (0 to 200 ms), in thousandths of full scale
  /// (0..1000), while recording, and on a line also from the first file played there until StopPlay; else 0.
  virtual std::int32_t InputLevel(std::chrono::milliseconds ago) const = 0;

  /// Starts to play the captured audio live on wave device `device`.
  virtual std::int32_t StartMonitor(std::int32_t device, const WaveFormat& format) = 0;

  /// Ends the live play; also succeeds when there was none.
  virtual std::int32_t StopMonitor() = 0;

  virtual std::string RecordErrorText(std::int32_t code) const = 0;

  /// Starts playing the sound file at `path` on `device`, from its beginning; kWaveBusy while another
  /// file plays. A sound file without samples is valid and finishes at once.
  virtual std::int32_t PlayFile(const std::string& path, std::int32_t device) = 0;

  /// The text of a result of PlayFile; for an error of the file it names the latest one.
  virtual std::string PlayErrorText(std::int32_t code) const = 0;

  virtual bool IsPlaying() const = 0;

  /// Ends playing without an event. Idempotent.
  virtual void StopPlay() = 0;

  /// The current position in the playing file; 0 when nothing plays.
  virtual std::chrono::milliseconds Position() const = 0;

  /// Continues playing at `position`, limited to the file: at its end PlayFinished follows, still once per
  /// PlayFile. Does nothing when nothing plays, or when the file cannot be opened again or is not
  /// seekable.
  virtual void Seek(std::chrono::milliseconds position) = 0;

  /// Length of the sound file at `path` in seconds, or a negative number when it cannot be read.
  virtual double FileLength(const std::string& path) const = 0;
};

/// The waveform of an audio file: the peak of each of many sections of equal length.
struct Waveform {
  std::vector<float> peaks;  ///< 0 (silence) to 1 (full scale); empty when there is nothing to show
  std::chrono::milliseconds length{0};
};

/// Computes waveforms on another thread. One request at a time: a new one replaces
/// the one before. User-interface thread.
class WaveformReader {
 public:
  /// Takes the result; empty for a file that cannot be read.
  using Done = std::function<void(const Waveform&)>;

  virtual ~WaveformReader() = default;

  /// Reads the sound file at `path` and calls `done`, later, unless another Request or Cancel comes
  /// before that.
  virtual void Request(const std::string& path, Done done) = 0;

  /// Cancels the current request, if any.
  virtual void Cancel() = 0;
};

}  // namespace orven
