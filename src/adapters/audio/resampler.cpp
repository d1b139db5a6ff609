// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/resampler.h"

namespace orven {
namespace {

/// libsamplerate's middle converter keeps 90 % of the band (3.6 kHz of 4) at 121 dB signal to noise; its
/// fastest one would cut the top of the telephone band (3.4 kHz).
constexpr int kConverter = SRC_SINC_MEDIUM_QUALITY;

/// Possible output beyond the exact ratio of the rates: the converter holds back up to 47 input samples, each
/// of which becomes up to 256.
constexpr std::size_t kHeldBack = 16384;

}  // namespace

Resampler::Resampler(int from, int to)
    : ratio_(from > 0 ? static_cast<double>(to) / from : 0), valid_(src_is_valid_ratio(ratio_) != 0) {
  if (!valid_ || from == to) return;
  int error = 0;
  state_.reset(src_new(kConverter, 1, &error));
  valid_ = state_ != nullptr;
}

std::span<const float> Resampler::Process(std::span<const float> input, bool last) {
  if (!state_) return input;
  output_.resize(static_cast<std::size_t>(static_cast<double>(input.size()) * ratio_) + kHeldBack);
  SRC_DATA step{};
  step.data_in = input.data();
  step.input_frames = static_cast<long>(input.size());
  step.data_out = output_.data();
  step.output_frames = static_cast<long>(output_.size());
  step.src_ratio = ratio_;
  step.end_of_input = last ? 1 : 0;
  if (src_process(state_.get(), &step) != 0) return {};
  return std::span(output_).first(static_cast<std::size_t>(step.output_frames_gen));
}

}  // namespace orven
