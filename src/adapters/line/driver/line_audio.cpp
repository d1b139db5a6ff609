// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/driver/line_audio.h"

#include <algorithm>
#include <utility>

#include "platform/wave.h"

namespace orven {

std::int32_t LineAudio::StartPlay(AudioSource& source) {
  {
    const std::lock_guard lock(play_mutex_);
    if (source_ != nullptr) return kWaveBusy;
    source_ = &source;
  }
  started_();
  return kWaveOk;
}

void LineAudio::StopPlay() {
  const std::lock_guard lock(play_mutex_);
  cut_ = cut_ || source_ != nullptr;
  source_ = nullptr;
}

std::int32_t LineAudio::StartRecord(AudioSink& sink) {
  {
    const std::lock_guard lock(record_mutex_);
    if (sink_ != nullptr) return kWaveBusy;
    sink_ = &sink;
  }
  started_();
  return kWaveOk;
}

void LineAudio::StopRecord() {
  const std::lock_guard lock(record_mutex_);
  if (sink_ != nullptr && rest_) rest_(*sink_);
  sink_ = nullptr;
}

bool LineAudio::Fetch(std::span<std::int16_t> block) {
  const std::lock_guard lock(play_mutex_);
  if (source_ != nullptr && source_->Read(block)) return true;
  source_ = nullptr;
  std::fill(block.begin(), block.end(), std::int16_t{0});
  return false;
}

void LineAudio::Hear(std::span<const std::int16_t> block, std::chrono::steady_clock::time_point at) {
  const std::lock_guard lock(record_mutex_);
  if (sink_ != nullptr) sink_->Hear(block, at);
}

void LineAudio::Keep(const std::function<void(AudioSink&)>& keep) {
  const std::lock_guard lock(record_mutex_);
  if (sink_ != nullptr) keep(*sink_);
}

void LineAudio::OnStopRecord(std::function<void(AudioSink&)> rest) {
  const std::lock_guard lock(record_mutex_);
  rest_ = std::move(rest);
}

void LineAudio::Deliver(std::span<const std::int16_t> block) {
  Hear(block, std::chrono::steady_clock::now());
  Keep([block](AudioSink& sink) { sink.Write(block); });
}

bool LineAudio::Plays() const {
  const std::lock_guard lock(play_mutex_);
  return source_ != nullptr;
}

bool LineAudio::Records() const {
  const std::lock_guard lock(record_mutex_);
  return sink_ != nullptr;
}

bool LineAudio::IsListenedTo() const {
  const std::lock_guard lock(record_mutex_);
  return sink_ != nullptr && sink_->Live();
}

bool LineAudio::TakeCut() {
  const std::lock_guard lock(play_mutex_);
  return std::exchange(cut_, false);
}

}  // namespace orven
