// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "adapters/audio/growing_file.h"
#include "adapters/audio/monitor.h"
#include "platform/audio_device.h"
#include "platform/wave.h"

namespace orven {

/// One recording from its first block to its place on disk. The device's thread only queues; a thread of
/// its own brings the queue into a WaveImage and, when asked to, that image to the disk four times a
/// second, synced about every second.
class Recording : public AudioSink {
 public:
  struct Settings {
    WaveFormat format;
    bool to_disk = false;              ///< write while recording
    std::vector<std::string> folders;  ///< where it may grow, or be kept, in order of preference
    std::string name;                  ///< a part of its file's name while it grows; may be empty
  };

  /// What became of a recording.
  struct Saved {
    std::int32_t result = kWaveOk;
    std::string kept;  ///< after a failure: the file that holds the recording instead; empty: none yet
  };

  /// `monitor` gets every block and outlives the device's last Write. Nothing is written to the disk
  /// before the first block.
  Recording(Settings settings, LiveMonitor& monitor);

  /// Brings what is not saved yet to the disk if it was to be recorded there, and leaves the file where
  /// it is. Waits for the disk unless Finished(). The device must have let go of the sink.
  ~Recording() override;

  void Write(std::span<const std::int16_t> block) override;

  /// As PeakMeter's.
  std::int32_t Level() const { return level_.Level(); }

  /// Ends the recording and puts it at `path`, replacing an older file whole. The file is complete on
  /// return; where it grew on the same file system it is synced afterwards, on the recording's thread.
  /// When that fails, the recording is kept under a name of its own in the first folder that takes it. While
  /// none does, it is tried again and again: at `path` if no file is there by then, else as before. Once,
  /// after the device has let go of the sink.
  Saved SaveAs(const std::string& path);

  /// Saved or kept, and synced: nothing is left to do. Any thread.
  bool Finished() const { return finished_.load(std::memory_order_acquire); }

 private:
  using Lock = std::unique_lock<std::mutex>;

  void Run();
  void Absorb();
  void Grow(Lock& lock);
  void Settle(Lock& lock);
  void Sync(Lock& lock, const std::shared_ptr<DiskFile>& file, bool name_too);
  std::int32_t Store(const std::string& path);
  bool StoreLate();
  bool Keep();

  const Settings settings_;
  LiveMonitor& monitor_;
  PeakMeter level_;
  std::atomic<bool> finished_{false};

  std::mutex queue_mutex_;  ///< held for moments only, never while anything is written
  std::vector<std::int16_t> queue_;

  std::mutex mutex_;  ///< all below; not held during a sync
  std::condition_variable wake_;
  std::optional<WaveImage> image_;  ///< none once everything is done
  GrowingFile growing_;
  std::string path_;                  ///< where it was to be put
  std::shared_ptr<DiskFile> stored_;  ///< the file that holds the whole recording
  bool sync_failed_ = false;          ///< the file that growing_ or stored_ names may be incomplete
  bool ended_ = false;                ///< SaveAs has been called, or nobody will
  bool abandoned_ = false;            ///< the object is dying
  bool unsaved_ = false;              ///< SaveAs failed and no other folder took it either
  std::thread thread_;                ///< last: it uses all of the above
};

}  // namespace orven
