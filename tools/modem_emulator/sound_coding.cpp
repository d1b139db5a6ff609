// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/sound_coding.h"

#include <spandsp.h>

#include <cmath>
#include <stdexcept>

namespace orven::emulator {
namespace {

constexpr int kSilence8 = 128;  // unsigned

/// Room for what the resampler gives at once beyond the ratio: what it held back.
constexpr std::size_t kHeldBack = 1024;

}  // namespace

std::size_t BytesPerSample(ModemCoding coding) {
  return coding == ModemCoding::Signed16 ? 2 : 1;
}

void WriteSample(ModemCoding coding, std::int16_t sample, std::vector<std::uint8_t>& bytes) {
  const auto put = [&](int byte) { bytes.push_back(static_cast<std::uint8_t>(byte)); };
  switch (coding) {
    case ModemCoding::Signed8: return put(sample >> 8);
    case ModemCoding::Unsigned8: return put((sample >> 8) + kSilence8);
    case ModemCoding::Signed16: return put(sample), put(sample >> 8);
    case ModemCoding::MuLaw: return put(linear_to_ulaw(sample));
    case ModemCoding::ALaw: return put(linear_to_alaw(sample));
    case ModemCoding::Other: break;
  }
  throw std::logic_error("a coding that the emulator does not offer");
}

std::int16_t ReadSample(ModemCoding coding, const std::uint8_t* bytes) {
  const auto sample = [](int value) { return static_cast<std::int16_t>(value); };
  switch (coding) {
    case ModemCoding::Signed8: return sample(static_cast<std::int8_t>(bytes[0]) * 256);
    case ModemCoding::Unsigned8: return sample((bytes[0] - kSilence8) * 256);
    case ModemCoding::Signed16: return sample(bytes[0] | bytes[1] << 8);
    case ModemCoding::MuLaw: return ulaw_to_linear(bytes[0]);
    case ModemCoding::ALaw: return alaw_to_linear(bytes[0]);
    case ModemCoding::Other: break;
  }
  throw std::logic_error("a coding that the emulator does not offer");
}

RateChange::RateChange(int from, int to) : ratio_(static_cast<double>(to) / from) {
  if (from != to) state_.reset(src_new(SRC_SINC_FASTEST, 1, nullptr));
}

void RateChange::Process(std::span<const std::int16_t> in, bool last, std::vector<std::int16_t>& out) {
  if (!state_) {
    out.insert(out.end(), in.begin(), in.end());
    return;
  }
  std::vector<float> from(in.size() + 1);
  src_short_to_float_array(in.data(), from.data(), static_cast<int>(in.size()));
  std::vector<float> to(static_cast<std::size_t>(static_cast<double>(in.size()) * ratio_) + kHeldBack);
  SRC_DATA work{};
  work.data_in = from.data();
  work.input_frames = static_cast<long>(in.size());
  work.data_out = to.data();
  work.output_frames = static_cast<long>(to.size());
  work.src_ratio = ratio_;
  work.end_of_input = last ? 1 : 0;
  if (const int error = src_process(state_.get(), &work)) throw std::runtime_error(src_strerror(error));
  const auto before = out.size();
  out.resize(before + static_cast<std::size_t>(work.output_frames_gen));
  src_float_to_short_array(to.data(), out.data() + before, static_cast<int>(work.output_frames_gen));
}

}  // namespace orven::emulator
