// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "platform/audio_device.h"

namespace orven::test {

using Samples = std::vector<std::int16_t>;

/// Keeps what is recorded and lets a test wait for an amount of it.
class KeptSound : public AudioSink {
 public:
  void Write(std::span<const std::int16_t> block) override {
    const std::lock_guard lock(mutex_);
    samples_.insert(samples_.end(), block.begin(), block.end());
    grown_.notify_all();
  }

  bool WaitFor(std::size_t samples) {
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, std::chrono::seconds(20), [&] { return samples_.size() >= samples; });
  }

  /// How many whole blocks of `sent` have come, in their order.
  std::size_t BlocksOf(const Samples& sent) {
    const std::lock_guard lock(mutex_);
    std::size_t found = 0;
    auto from = samples_.begin();
    for (auto begin = sent.begin(); sent.end() - begin >= kBlockSamples; begin += kBlockSamples) {
      const auto at = std::search(from, samples_.end(), begin, begin + kBlockSamples);
      if (at == samples_.end()) continue;
      ++found;
      from = at + kBlockSamples;
    }
    return found;
  }

 private:
  std::mutex mutex_;
  std::condition_variable grown_;
  Samples samples_;
};

/// Plays given samples once.
class GivenSound : public AudioSource {
 public:
  explicit GivenSound(Samples samples) : samples_(std::move(samples)) {}

  bool Read(std::span<std::int16_t> block) override {
    if (next_ + block.size() > samples_.size()) return false;
    std::copy_n(samples_.begin() + static_cast<std::ptrdiff_t>(next_), block.size(), block.begin());
    next_ += block.size();
    return true;
  }

 private:
  Samples samples_;
  std::size_t next_ = 0;
};

}  // namespace orven::test
