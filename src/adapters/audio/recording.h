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

/// One recording, from its first block to its place on disk. The device's thread only queues. A thread of the
/// recording moves the queue into a WaveImage and, when recording to disk, writes that image and syncs it
/// twice a second.
class Recording : public AudioSink {
 public:
  struct Settings {
    WaveFormat format;
    bool to_disk = false;              ///< write while recording
    std::vector<std::string> folders;  ///< where it may grow or be kept, in order of preference
    std::string name;                  ///< a part of its file's name while it grows; may be empty
  };

  /// The result of SaveAs.
  struct Saved {
    std::int32_t result = kWaveOk;
    std::string kept;  ///< after a failure: the path where the recording is instead; empty: none yet
  };

  /// `monitor` gets every block and outlives the device's last Write. Nothing is written to the disk
  /// before the first block.
  Recording(Settings settings, LiveMonitor& monitor);

  /// Writes what is not on disk yet, when recording to disk, and leaves the file there. Waits for the disk
  /// unless Finished(). The device must have released the sink.
  ~Recording() override;

  void Hear(std::span<const std::int16_t> block, std::chrono::steady_clock::time_point at) override;
  void Write(std::span<const std::int16_t> samples) override;
  bool Live() const override { return monitor_.Open(); }

  /// As PeakMeter's.
  std::int32_t Level(std::chrono::milliseconds ago) const { return level_.Level(ago); }

  /// Ends the recording and stores it at `path`, replacing an older file atomically. The file is complete on
  /// return; if it grew on the same file system, it is synced afterwards on the recording's thread. When that
  /// fails, the recording is kept under another name in the first folder that accepts it. While none does,
  /// this is retried: at `path` if that name is free, else as before. Call it once, after the device has
  /// released the sink.
  Saved SaveAs(const std::string& path);

  /// Saved or kept, and synced: nothing is left to do. Any thread.
  bool Finished() const { return finished_.load(std::memory_order_acquire); }

 private:
  using Lock = std::unique_lock<std::mutex>;

  void Run();
  void DrainQueue();
  void Grow(Lock& lock);
  void Finish(Lock& lock);
  void Sync(Lock& lock, const std::shared_ptr<DiskFile>& file, bool name_too);
  std::int32_t Store(const std::string& path);
  bool StoreLate();
  bool Keep();

  const Settings settings_;
  LiveMonitor& monitor_;
  PeakMeter level_;
  std::atomic<bool> finished_{false};

  std::mutex queue_mutex_;  ///< held briefly, never during file access
  std::vector<std::int16_t> queue_;
  std::vector<std::int16_t> drained_;  ///< guarded by mutex_; empty, its room is the queue's next

  std::mutex mutex_;  ///< all below; not held during a sync
  std::condition_variable wake_;
  std::optional<WaveImage> image_;  ///< none once everything is done
  GrowingFile growing_;
  std::string path_;                  ///< where it is to be stored
  std::shared_ptr<DiskFile> stored_;  ///< the file that holds the whole recording
  bool sync_failed_ = false;          ///< the file that growing_ or stored_ names may be incomplete
  bool ended_ = false;                ///< SaveAs was called, or never will be
  bool abandoned_ = false;            ///< in the destructor
  bool unsaved_ = false;              ///< SaveAs failed and no folder accepted the recording
  std::thread thread_;                ///< last: it uses all of the above
};

}  // namespace orven
