// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "adapters/audio/resampler.h"
#include "platform/audio_device.h"

namespace orven {

/// Closes a file of libsndfile.
struct CloseAudioFile {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using AudioFile = std::unique_ptr<SNDFILE, CloseAudioFile>;

/// Opens the regular file at `path` for reading and fills `info`; reads its header only. Returns
/// kWaveOk, kWaveFileNotFound or kWaveFileUnreadable.
std::int32_t OpenAudioFile(const std::string& path, AudioFile& file, SF_INFO& info);

/// Decodes an audio file of any rate and number of channels to telephone audio: 8000 samples a second, mono
/// (the mean of the channels), 16-bit. 16-bit mono at 8000 passes bit by bit. One thread at a time.
class TelephoneDecoder {
 public:
  /// Opens the file and reads its header only. Results as OpenAudioFile, or kWaveBadFormat for a rate that
  /// is more than 256 times higher or lower than the telephone's. `decoder` is set on kWaveOk.
  static std::int32_t Open(const std::string& path, std::unique_ptr<TelephoneDecoder>& decoder);

  /// Whether SkipTo can be used.
  bool CanSkip() const { return seekable_; }

  /// Length of the file according to its header.
  std::chrono::milliseconds Length() const;

  /// Makes the first Read begin at `position`, which is within the file. False when that part of the
  /// file cannot be read. Call it before the first Read only.
  bool SkipTo(std::chrono::milliseconds position);

  /// Fills `out` from its beginning and returns the number of samples: fewer than asked for only at the
  /// end of the file, or where the rest of it cannot be read.
  std::size_t Read(std::span<std::int16_t> out);

 private:
  TelephoneDecoder(AudioFile file, const SF_INFO& info);

  void ReadPiece(std::size_t samples);

  AudioFile file_;
  std::size_t channels_;
  sf_count_t frames_in_file_;
  int rate_;  ///< the file's, samples a second
  bool seekable_;
  Resampler resampler_;
  std::vector<float> frames_;         ///< interleaved, as read
  std::vector<float> mono_;           ///< at the file's rate
  std::span<const float> resampled_;  ///< not given out yet
  bool file_ended_ = false;
};

/// A queue of samples from exactly one writing thread to exactly one reading thread; neither ever
/// waits for the other.
class SampleRing {
 public:
  /// Holds up to `capacity` samples.
  explicit SampleRing(std::size_t capacity) : samples_(capacity) {}

  /// Samples that can be read now. Either thread; the other one's progress may make it grow (for the
  /// reader) or shrink (for the writer) at any time.
  std::size_t Size() const {
    return static_cast<std::size_t>(written_.load(std::memory_order_acquire) -
                                    read_.load(std::memory_order_acquire));
  }

  /// Samples that can be written now.
  std::size_t Room() const { return samples_.size() - Size(); }

  /// Writing thread; `block` must fit into Room().
  void Push(std::span<const std::int16_t> block) {
    const std::uint64_t start = written_.load(std::memory_order_relaxed);
    for (std::size_t i = 0; i < block.size(); ++i) samples_[(start + i) % samples_.size()] = block[i];
    written_.store(start + block.size(), std::memory_order_release);
  }

  /// Reading thread; `block` must be no longer than Size().
  void Pop(std::span<std::int16_t> block) {
    const std::uint64_t start = read_.load(std::memory_order_relaxed);
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = samples_[(start + i) % samples_.size()];
    read_.store(start + block.size(), std::memory_order_release);
  }

 private:
  std::vector<std::int16_t> samples_;
  std::atomic<std::uint64_t> written_{0};  ///< samples ever written
  std::atomic<std::uint64_t> read_{0};     ///< samples ever read
};

/// Plays one sound file into a device: its own thread decodes half a second to a second ahead, so that
/// neither the device's thread nor the user interface ever waits for the disk, and a file of any length
/// takes the same memory.
class FileSource : public AudioSource {
 public:
  /// Starts decoding at `start`, which is within the file, 0 being its beginning; what begins there has its
  /// first tenth of a second when this returns. `on_ended` is called on the device's thread when everything
  /// has been read or the device has gone.
  FileSource(std::unique_ptr<TelephoneDecoder> decoder, std::chrono::milliseconds start,
             std::function<void()> on_ended);

  /// Waits for the decoding of the chunk in hand, if any; not at all once Finished().
  ~FileSource() override;

  /// Calls `on_ready`, which returns at once and calls nothing here, when there is sound to read: now, or on
  /// the decoding thread. Once, and never after Cancel.
  void WhenReady(std::function<void()> on_ready);

  /// Device's thread. Where the disk is late a whole block of silence goes out and nothing is skipped;
  /// the last block of the file is filled up with silence.
  bool Read(std::span<std::int16_t> block) override;
  void Gone() override { on_ended_(); }

  /// Tells the decoding thread to end; returns at once. The device must have let go of the source.
  void Cancel();

  /// The decoding thread has done its last step. Any thread.
  bool Finished() const { return finished_.load(std::memory_order_acquire); }

  /// Up to which place of the file the device has taken the sound. Any thread.
  std::chrono::milliseconds Position() const;

 private:
  void Decode();
  bool DecodeChunk();
  bool WaitForRoom();
  void TellReady();

  std::unique_ptr<TelephoneDecoder> decoder_;
  const std::chrono::milliseconds start_;
  std::function<void()> on_ended_;
  SampleRing ring_;
  bool more_ =
      true;  ///< the constructor's, then the decoding thread's: the file has not been read to its end
  std::atomic<std::int64_t> samples_played_{0};
  std::atomic<bool> decoded_all_{false};
  std::atomic<bool> cancelled_{false};
  std::atomic<bool> finished_{false};
  std::mutex mutex_;                ///< the device's thread never takes it
  bool ready_ = false;              ///< guarded by mutex_; something has been decoded
  std::function<void()> on_ready_;  ///< guarded by mutex_
  std::condition_variable wake_;
  std::thread thread_;  ///< last: it uses all of the above
};

}  // namespace orven
