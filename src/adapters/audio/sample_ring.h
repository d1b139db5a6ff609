// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orven {

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

}  // namespace orven
