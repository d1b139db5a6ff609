// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "platform/audio_device.h"

namespace orven::test {

/// Keeps what is recorded and lets a test wait for an amount of it.
class KeptSound : public AudioSink {
 public:
  void Write(std::span<const std::int16_t> block) override {
    const std::lock_guard lock(mutex_);
    samples_.insert(samples_.end(), block.begin(), block.end());
    grown_.notify_all();
  }

  std::vector<std::int16_t> Samples() {
    const std::lock_guard lock(mutex_);
    return samples_;
  }

  bool WaitFor(std::size_t samples) {
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, std::chrono::seconds(20), [&] { return samples_.size() >= samples; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable grown_;
  std::vector<std::int16_t> samples_;
};

/// Plays given samples once.
class GivenSound : public AudioSource {
 public:
  explicit GivenSound(std::vector<std::int16_t> samples) : samples_(std::move(samples)) {}

  bool Read(std::span<std::int16_t> block) override {
    if (next_ + block.size() > samples_.size()) return false;
    std::copy_n(samples_.begin() + static_cast<std::ptrdiff_t>(next_), block.size(), block.begin());
    next_ += block.size();
    return true;
  }

 private:
  std::vector<std::int16_t> samples_;
  std::size_t next_ = 0;
};

/// How many whole blocks of `sent` occur in `received`, in their order.
inline std::size_t BlocksFound(const std::vector<std::int16_t>& sent,
                               const std::vector<std::int16_t>& received) {
  std::size_t found = 0;
  auto from = received.begin();
  for (std::size_t i = 0; i + kBlockSamples <= sent.size(); i += kBlockSamples) {
    const auto begin = sent.begin() + static_cast<std::ptrdiff_t>(i);
    const auto at = std::search(from, received.end(), begin, begin + kBlockSamples);
    if (at == received.end()) continue;
    ++found;
    from = at + kBlockSamples;
  }
  return found;
}

}  // namespace orven::test
