// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <atomic>
#include <chrono>
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
/// (the mean of the channels), 16-bit. A 16-bit mono file at 8000 is passed on unchanged. One thread at a
/// time.
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

/// A lock-free queue of samples with one writing and one reading thread.
class SampleRing {
 public:
  /// Holds up to `capacity` samples.
  explicit SampleRing(std::size_t capacity) : samples_(capacity) {}

  /// Samples that can be read now. Either thread; the other thread may make it grow (for the reader) or
  /// shrink (for the writer) at any time.
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

/// Plays one audio file into a device. Its own thread decodes half a second to a second ahead, so that
/// neither the device's thread nor the user interface waits for the disk, and memory does not depend on the
/// file's length.
class FileSource : public AudioSource {
 public:
  /// Starts decoding at `start`, which is within the file. From 0, the first tenth of a second is decoded
  /// when this returns. `on_ended` is called on the device's thread when everything has been read or the
  /// device has failed.
  FileSource(std::unique_ptr<TelephoneDecoder> decoder, std::chrono::milliseconds start,
             std::function<void()> on_ended);

  /// Waits for the chunk being decoded, if any; not at all once Finished().
  ~FileSource() override;

  /// Calls `on_ready` once when there is audio to read: now, or on the decoding thread, and never after
  /// Cancel. It must return at once and not call this object.
  void WhenReady(std::function<void()> on_ready);

  /// Device's thread. When the disk is late, the block is silence and nothing is skipped. The last block of
  /// the file is filled up with silence.
  bool Read(std::span<std::int16_t> block) override;
  void Gone() override;

  /// Ends the decoding thread without waiting for it. The device must have released the source.
  void Cancel();

  /// The decoding thread is done. Any thread.
  bool Finished() const { return decoded_all_.load(std::memory_order_acquire); }

  /// The place in the file up to which the device has read. Any thread.
  std::chrono::milliseconds Position() const;

 private:
  void Decode();
  bool DecodeChunk();
  bool WaitForRoom();
  void TellReady();
  void WakeDecoder();

  std::unique_ptr<TelephoneDecoder> decoder_;
  const std::chrono::milliseconds start_;
  std::function<void()> on_ended_;
  SampleRing ring_;
  bool more_ = true;  ///< the file is not read to its end; the constructor's, then the decoding thread's
  std::atomic<std::int64_t> samples_played_{0};
  std::atomic<bool> decoded_all_{false};
  std::atomic<bool> cancelled_{false};
  std::atomic<int> refill_{0};      ///< 1: the decoding thread, which waits for it, has something to do
  std::mutex mutex_;                ///< the device's thread never takes it
  bool ready_ = false;              ///< guarded by mutex_; something has been decoded
  std::function<void()> on_ready_;  ///< guarded by mutex_
  std::thread thread_;              ///< last: it uses all of the above
};

}  // namespace orven
