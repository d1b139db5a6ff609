// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sim/sim_audio.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "platform/wave.h"

namespace orven {
namespace {

constexpr std::chrono::milliseconds kBlock{1000 * kBlockSamples / kSampleRate};

/// An hour of what was heard is kept; a line that runs for days must not fill the memory.
constexpr std::size_t kMostHeard = std::size_t{3600} * kSampleRate;

}  // namespace

SimAudio::SimAudio(EventLoop& loop) : pace_(loop.MakeTimer([this] { Move(); })) {}

void SimAudio::Say(const std::vector<std::int16_t>& samples) {
  said_.insert(said_.end(), samples.begin(), samples.end());
}

std::int32_t SimAudio::StartPlay(AudioSource& source) {
  if (source_ != nullptr) return kWaveBusy;
  source_ = &source;
  if (!pace_->Enabled()) pace_->Start(kBlock);
  return kWaveOk;
}

void SimAudio::StopPlay() {
  source_ = nullptr;
}

std::int32_t SimAudio::StartRecord(AudioSink& sink) {
  if (sink_ != nullptr) return kWaveBusy;
  sink_ = &sink;
  if (!pace_->Enabled()) pace_->Start(kBlock);
  return kWaveOk;
}

void SimAudio::StopRecord() {
  sink_ = nullptr;
}

void SimAudio::Move() {
  if (source_ == nullptr && sink_ == nullptr) {
    pace_->Stop();
    return;
  }
  if (!up_) return;
  std::array<std::int16_t, kBlockSamples> block{};
  if (source_ != nullptr && !source_->Read(block)) source_ = nullptr;
  if (source_ != nullptr && heard_.size() < kMostHeard)
    heard_.insert(heard_.end(), block.begin(), block.end());
  if (sink_ == nullptr) return;
  block.fill(0);
  const auto count = std::min(said_.size(), block.size());
  std::copy_n(said_.begin(), count, block.begin());
  said_.erase(said_.begin(), said_.begin() + static_cast<std::ptrdiff_t>(count));
  sink_->Write(block);
}

}  // namespace orven
