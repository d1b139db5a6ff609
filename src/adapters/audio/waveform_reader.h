// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "base/worker.h"
#include "platform/event_loop.h"
#include "platform/wave.h"

namespace orven {

/// Reads waveforms of all audio files that libsndfile reads, on its own thread. A request that is replaced or
/// cancelled ends after the current piece of the file.
class FileWaveformReader : public WaveformReader {
 public:
  /// Peaks of a waveform (fewer for a file with fewer samples): about the pixels of a wide window.
  static constexpr std::int64_t kPeaks = 1000;

  /// `loop` outlives the reader.
  explicit FileWaveformReader(EventLoop& loop) : loop_(loop) {}

  /// Waits for the current piece of a file, if any.
  ~FileWaveformReader() override;
  FileWaveformReader(const FileWaveformReader&) = delete;
  FileWaveformReader& operator=(const FileWaveformReader&) = delete;

  void Request(const std::string& path, Done done) override;
  void Cancel() override;

 private:
  std::optional<Waveform> Read(const std::string& path, std::uint64_t request) const;
  void Deliver(std::uint64_t request, const Waveform& waveform);

  EventLoop& loop_;
  Done done_;                             ///< of the newest request; user-interface thread
  std::atomic<std::uint64_t> newest_{0};  ///< counts requests and cancellations
  Lifeline lifeline_;
  Worker worker_{Worker::AtStop::Drop};  ///< last: its thread uses all of the above
};

}  // namespace orven
