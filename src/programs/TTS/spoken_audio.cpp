// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/spoken_audio.h"

#include <samplerate.h>

#include <algorithm>
#include <stdexcept>

namespace orven {
namespace {

constexpr std::size_t kMostKept = std::size_t{4} * kSampleRate;

/// Silence at the end, longer than a card's buffer: a text that is announced before the previous one has been
/// heard does not cut it off.
constexpr std::size_t kSilenceAtEnd = std::size_t{1} * kSampleRate;

}  // namespace

SpokenAudio::SpokenAudio(int sample_rate) : resampler_(sample_rate, kSampleRate) {
  if (!resampler_.Valid()) throw std::runtime_error("the speech cannot be resampled");
}

SpokenAudio::Announced SpokenAudio::Announce() {
  const std::lock_guard lock(mutex_);
  ++coming_;
  silent_samples_ = 0;
  const bool start = !playing_;
  playing_ = true;
  return {ticket_, start};
}

bool SpokenAudio::Write(Ticket ticket, std::span<const std::int16_t> samples) {
  return Convert(ticket, samples, false);
}

void SpokenAudio::Finish(Ticket ticket) {
  Convert(ticket, {}, true);
  const std::lock_guard lock(mutex_);
  if (ticket == ticket_) --coming_;
}

bool SpokenAudio::Convert(Ticket ticket, std::span<const std::int16_t> samples, bool last) {
  if (converted_ != ticket) resampler_.Reset();
  converted_ = ticket;
  input_.resize(samples.size());
  src_short_to_float_array(samples.data(), input_.data(), static_cast<int>(samples.size()));
  const auto output = resampler_.Process(input_, last);
  converted_samples_.resize(output.size());
  src_float_to_short_array(output.data(), converted_samples_.data(), static_cast<int>(output.size()));
  if (last) resampler_.Reset();

  std::unique_lock lock(mutex_);
  room_.wait(lock, [&] { return ticket != ticket_ || samples_.size() < kMostKept; });
  if (ticket != ticket_) return false;
  samples_.insert(samples_.end(), converted_samples_.begin(), converted_samples_.end());
  return true;
}

void SpokenAudio::CutOff() {
  {
    const std::lock_guard lock(mutex_);
    ++ticket_;
    coming_ = 0;
    samples_.clear();
    playing_ = false;
  }
  room_.notify_all();
}

bool SpokenAudio::Read(std::span<std::int16_t> block) {
  const std::lock_guard lock(mutex_);
  const std::size_t count = std::min(samples_.size(), block.size());
  if (coming_ == 0 && count == 0) {
    if (silent_samples_ >= kSilenceAtEnd) {
      playing_ = false;
      return false;
    }
    silent_samples_ += block.size();
  }
  std::ranges::fill(block, std::int16_t{0});
  // A partial block is played only at the end of the last text; until then it waits for more samples.
  if (coming_ > 0 && count < block.size()) return true;
  const auto end = samples_.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(samples_.begin(), end, block.begin());
  samples_.erase(samples_.begin(), end);
  room_.notify_one();
  return true;
}

}  // namespace orven
