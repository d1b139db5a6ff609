// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/spoken_sound.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace orven {
namespace {

constexpr std::size_t kMostKept = std::size_t{4} * kSampleRate;

/// Silence at the end, longer than what a card keeps in its buffer: a text that comes before the last one
/// has been heard is played after it and not into it.
constexpr std::size_t kSilenceAtEnd = std::size_t{1} * kSampleRate;

}  // namespace

SpokenSound::SpokenSound(int sample_rate) : ratio_(static_cast<double>(kSampleRate) / sample_rate) {
  int error = 0;
  resampler_.reset(src_new(SRC_SINC_MEDIUM_QUALITY, 1, &error));
  if (!resampler_) throw std::runtime_error(src_strerror(error));
}

SpokenSound::Announced SpokenSound::Announce() {
  const std::lock_guard lock(mutex_);
  ++coming_;
  silent_samples_ = 0;
  const bool start = !playing_;
  playing_ = true;
  return {ticket_, start};
}

bool SpokenSound::Write(Ticket ticket, std::span<const std::int16_t> samples) {
  return Convert(ticket, samples, false);
}

void SpokenSound::Finish(Ticket ticket) {
  Convert(ticket, {}, true);
  const std::lock_guard lock(mutex_);
  if (ticket == ticket_) --coming_;
}

bool SpokenSound::Convert(Ticket ticket, std::span<const std::int16_t> samples, bool last) {
  if (converted_ != ticket) src_reset(resampler_.get());
  converted_ = ticket;
  input_.resize(samples.size());
  src_short_to_float_array(samples.data(), input_.data(), static_cast<int>(samples.size()));
  // What the filter still holds comes with the last piece.
  constexpr std::size_t kHeldBack = 1024;
  output_.resize(kHeldBack +
                 static_cast<std::size_t>(std::ceil(static_cast<double>(samples.size()) * ratio_)));
  SRC_DATA data{};
  data.data_in = input_.data();
  data.input_frames = static_cast<long>(input_.size());
  data.data_out = output_.data();
  data.output_frames = static_cast<long>(output_.size());
  data.src_ratio = ratio_;
  data.end_of_input = last ? 1 : 0;
  const int error = src_process(resampler_.get(), &data);
  if (error != 0) throw std::runtime_error(src_strerror(error));
  if (last) src_reset(resampler_.get());
  converted_samples_.resize(static_cast<std::size_t>(data.output_frames_gen));
  src_float_to_short_array(output_.data(), converted_samples_.data(),
                           static_cast<int>(data.output_frames_gen));

  std::unique_lock lock(mutex_);
  room_.wait(lock, [&] { return ticket != ticket_ || samples_.size() < kMostKept; });
  if (ticket != ticket_) return false;
  samples_.insert(samples_.end(), converted_samples_.begin(), converted_samples_.end());
  return true;
}

void SpokenSound::CutOff() {
  {
    const std::lock_guard lock(mutex_);
    ++ticket_;
    coming_ = 0;
    samples_.clear();
    playing_ = false;
  }
  room_.notify_all();
}

bool SpokenSound::Read(std::span<std::int16_t> block) {
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
  // A piece of a block is the end of a text, or is kept until there is more.
  if (coming_ > 0 && count < block.size()) return true;
  const auto end = samples_.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(samples_.begin(), end, block.begin());
  samples_.erase(samples_.begin(), end);
  room_.notify_one();
  return true;
}

}  // namespace orven
