// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>

#include "adapters/audio/sample_ring.h"
#include "adapters/audio/telephone_decoder.h"
#include "platform/audio_device.h"

namespace orven {

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
