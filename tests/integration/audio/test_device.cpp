// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/audio/test_device.h"

#include <algorithm>
#include <thread>

#include "platform/wave.h"

namespace orven::testing {

std::int32_t TestDevice::StartPlay(AudioSource& source) {
  const std::lock_guard lock(mutex_);
  if (refuse != 0) return refuse;
  if (source_ != nullptr) return kWaveBusy;
  source_ = &source;
  return kWaveOk;
}

void TestDevice::StopPlay() {
  const std::lock_guard lock(mutex_);
  source_ = nullptr;
}

std::int32_t TestDevice::StartRecord(AudioSink& sink) {
  const std::lock_guard lock(mutex_);
  if (refuse != 0) return refuse;
  if (sink_ != nullptr) return kWaveBusy;
  sink_ = &sink;
  return kWaveOk;
}

void TestDevice::StopRecord() {
  const std::lock_guard lock(mutex_);
  sink_ = nullptr;
}

bool TestDevice::Plays() {
  const std::lock_guard lock(mutex_);
  return source_ != nullptr;
}

bool TestDevice::Records() {
  const std::lock_guard lock(mutex_);
  return sink_ != nullptr;
}

std::optional<Samples> TestDevice::Pull() {
  const std::lock_guard lock(mutex_);
  Samples block(kBlockSamples, 1);
  if (source_ != nullptr && source_->Read(block)) return block;
  source_ = nullptr;
  return std::nullopt;
}

Samples TestDevice::PlayToEnd() {
  Samples played;
  std::thread device([&] {
    while (const auto block = Pull()) {
      const bool silent = std::all_of(block->begin(), block->end(), [](auto sample) { return sample == 0; });
      if (silent) {
        std::this_thread::yield();
      } else {
        played.insert(played.end(), block->begin(), block->end());
      }
    }
  });
  device.join();
  return played;
}

void TestDevice::Capture(const Samples& samples) {
  std::thread device([&] {
    for (std::size_t at = 0; at < samples.size(); at += kBlockSamples) {
      Samples block(
          samples.begin() + static_cast<std::ptrdiff_t>(at),
          samples.begin() + static_cast<std::ptrdiff_t>(std::min(at + kBlockSamples, samples.size())));
      block.resize(kBlockSamples);
      const std::lock_guard lock(mutex_);
      if (sink_ != nullptr) sink_->Write(block);
    }
  });
  device.join();
}

}  // namespace orven::testing
