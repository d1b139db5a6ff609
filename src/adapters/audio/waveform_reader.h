// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/event_loop.h"
#include "platform/waveform.h"

namespace orven {

/// Draws up waveforms of every sound file that libsndfile reads, on one thread of its own, which
/// starts with the first request and sleeps between them. A request that is replaced or cancelled ends
/// after the piece of the file in hand.
class FileWaveformReader : public WaveformReader {
 public:
  /// Stretches of a waveform (fewer for a file with fewer samples): as many as a wide window has
  /// pixels to show them.
  static constexpr std::int64_t kPeaks = 1000;

  /// `loop` outlives the reader.
  explicit FileWaveformReader(EventLoop& loop) : loop_(loop) {}

  /// Waits for the piece of the file in hand, if any.
  ~FileWaveformReader() override;
  FileWaveformReader(const FileWaveformReader&) = delete;
  FileWaveformReader& operator=(const FileWaveformReader&) = delete;

  void Request(const std::string& path, Done done) override;
  void Cancel() override;

 private:
  void Run();
  std::optional<Waveform> Read(const std::string& path, std::uint64_t request) const;

  EventLoop& loop_;
  Done done_;  ///< of the newest request; user-interface thread
  std::mutex mutex_;
  std::condition_variable wake_;
  std::optional<std::string> next_;  ///< the path that waits for the thread
  bool ending_ = false;
  std::atomic<std::uint64_t> newest_{0};  ///< counts requests and cancellations
  Lifeline lifeline_;
  std::thread thread_;
};

}  // namespace orven
