// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/line_audio.h"

#include <algorithm>

#include "platform/wave.h"

namespace orven {

std::int32_t LineAudio::StartPlay(AudioSource& source) {
  const std::lock_guard lock(play_mutex_);
  if (source_ != nullptr) return kWaveBusy;
  source_ = &source;
  return kWaveOk;
}

void LineAudio::StopPlay() {
  const std::lock_guard lock(play_mutex_);
  source_ = nullptr;
}

std::int32_t LineAudio::StartRecord(AudioSink& sink) {
  const std::lock_guard lock(record_mutex_);
  if (sink_ != nullptr) return kWaveBusy;
  sink_ = &sink;
  return kWaveOk;
}

void LineAudio::StopRecord() {
  const std::lock_guard lock(record_mutex_);
  sink_ = nullptr;
}

void LineAudio::Fetch(std::span<std::int16_t> block) {
  const std::lock_guard lock(play_mutex_);
  if (source_ != nullptr && source_->Read(block)) return;
  source_ = nullptr;
  std::fill(block.begin(), block.end(), std::int16_t{0});
}

void LineAudio::Deliver(std::span<const std::int16_t> block) {
  const std::lock_guard lock(record_mutex_);
  if (sink_ != nullptr) sink_->Write(block);
}

}  // namespace orven
