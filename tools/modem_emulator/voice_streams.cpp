// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/voice_streams.h"

#include <spandsp.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace orven::emulator {
namespace {

constexpr int kSilence8 = 128;  // unsigned

/// Room for samples that the resampler held back before.
constexpr std::size_t kHeldBack = 1024;

/// 20 ms of silence at the start, as the resampler holds samples back and must not leave a gap.
constexpr std::size_t kCushion = 160;

constexpr int kShortestBlock = 3;  // ms
constexpr int kLongestBlock = 60;

std::vector<std::uint8_t> Shielded(std::span<const std::uint8_t> bytes, bool pairs) {
  std::vector<std::uint8_t> out;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    out.push_back(bytes[i]);
    if (bytes[i] != kDleByte) continue;
    const bool pair = pairs && i + 1 < bytes.size() && bytes[i + 1] == kDleByte;
    out.push_back(pair ? kSubByte : kDleByte);
    if (pair) ++i;
  }
  return out;
}

constexpr int kSilent = 328;  // a hundredth of full scale

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

Playback::Playback(ModemCoding coding, int rate, std::size_t capacity, std::vector<std::uint8_t>& played)
    : coding_(coding), rate_(rate), capacity_(capacity), change_(rate, kLineRate), played_(played) {
  if (rate != kLineRate) line_.assign(kCushion, 0);
}

Playback::Said Playback::Put(std::uint8_t byte) {
  if (dle_) {
    dle_ = false;
    return Code(byte);
  }
  if (byte == kDleByte) {
    dle_ = true;
    return Said::Sound;
  }
  return Store(byte);
}

Playback::Said Playback::Code(std::uint8_t code) {
  switch (code) {
    case kDleByte: return Store(kDleByte);
    case kSubByte: return Store(kDleByte) == Said::Full ? Said::Full : Store(kDleByte);
    case kEtxByte: ended_ = true; return Said::End;
    case kCanByte: return Said::Cancel;
    case kNulByte: return Said::Sound;  // does nothing, by definition
    default: return Said::Other;
  }
}

Playback::Said Playback::Store(std::uint8_t byte) {
  if (Room() == 0) return Said::Full;
  buffer_.push_back(byte);
  begun_ = true;
  return Said::Sound;
}

bool Playback::Take(std::span<std::int16_t> out) {
  if (!begun_ && !ended_) return false;
  taken_ += static_cast<std::int64_t>(out.size());
  const auto due = taken_ * rate_ / kLineRate;
  const bool dry = Play(static_cast<std::size_t>(due - passed_));
  passed_ = due;
  const auto count = std::min(out.size(), line_.size());
  const auto end = line_.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(line_.begin(), end, out.begin());
  line_.erase(line_.begin(), end);
  return dry;
}

bool Playback::Play(std::size_t samples) {
  const auto size = BytesPerSample(coding_);
  std::vector<std::int16_t> sound;
  while (sound.size() < samples && buffer_.size() >= size) {
    const std::uint8_t bytes[2] = {buffer_[0], size == 2 ? buffer_[1] : std::uint8_t{0}};
    sound.push_back(ReadSample(coding_, bytes));
    played_.insert(played_.end(), bytes, bytes + size);
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(size));
  }
  const bool missing = sound.size() < samples && !ended_;
  const bool dry = missing && !dry_;
  dry_ = missing;
  if (missing) sound.resize(samples);
  const bool last = ended_ && buffer_.size() < size;
  if (!flushed_) change_.Process(sound, last, line_);
  flushed_ = flushed_ || last;
  return dry;
}

ReceiveStream::ReceiveStream(ModemCoding coding, int rate, bool pairs, HostPort& port,
                             std::vector<std::uint8_t>& sent)
    : coding_(coding), rate_(rate), pairs_(pairs), port_(port), sent_(sent), change_(kLineRate, rate) {
  ChooseBlock();
}

void ReceiveStream::ChooseBlock() {
  const int samples = port_.Any(kShortestBlock, kLongestBlock) * rate_ / 1000;
  // One byte more or less, so that blocks end in the middle of a sample as well.
  enough_ = static_cast<std::size_t>(samples) * BytesPerSample(coding_) + 1;
}

void ReceiveStream::Put(std::span<const std::int16_t> samples) {
  std::vector<std::int16_t> sound;
  change_.Process(samples, false, sound);
  for (const auto sample : sound) {
    WriteSample(coding_, sample, block_);
    if (block_.size() >= enough_) Flush();
  }
}

void ReceiveStream::Flush() {
  if (block_.empty()) return;
  sent_.insert(sent_.end(), block_.begin(), block_.end());
  port_.Send(Shielded(block_, pairs_), HostPort::Time(0));
  block_.clear();
  ChooseBlock();
}

std::optional<char> SilenceWatch::Put(std::span<const std::int16_t> samples) {
  std::optional<char> report;
  for (const auto sample : samples) {
    if (std::abs(sample) > kSilent) {
      silent_ = 0;
      heard_ = true;
    } else if (++silent_ == enough_) {
      report = heard_ ? 'q' : 's';
    }
  }
  return report;
}

}  // namespace orven::emulator
