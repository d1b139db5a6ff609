// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/playback.h"

#include <algorithm>

#include "modem_emulator/codes.h"

namespace orven::emulator {
namespace {

/// 20 ms of silence ahead, so that a resampler that holds samples back never leaves a gap.
constexpr std::size_t kCushion = 160;

}  // namespace

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

void Playback::Purge() {
  buffer_.clear();
  line_.clear();
}

}  // namespace orven::emulator
