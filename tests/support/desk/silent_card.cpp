// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/desk/silent_card.h"

#include <array>
#include <thread>

namespace orven::test {
namespace {

constexpr std::chrono::milliseconds kBlock{20};

/// The little-endian bytes of values of 16 and 32 bits.
template <class... Values>
std::string Bytes(Values... values) {
  std::string bytes;
  (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
  return bytes;
}

}  // namespace

std::string WaveFile(const std::vector<std::int16_t>& samples) {
  const auto size = static_cast<std::uint32_t>(samples.size() * sizeof(std::int16_t));
  constexpr std::uint16_t kPcm = 1, kChannels = 1, kBytesPerSample = 2, kBits = 16;
  constexpr std::uint32_t kRate = kSampleRate, kFormatSize = 16;
  return "RIFF" + Bytes(36 + size) + "WAVEfmt " + Bytes(kFormatSize, kPcm, kChannels, kRate, kRate * 2) +
         Bytes(kBytesPerSample, kBits) + "data" + Bytes(size) +
         std::string(reinterpret_cast<const char*>(samples.data()), size);
}

std::string ToneOf(std::int16_t sample, int milliseconds) {
  return WaveFile(
      std::vector<std::int16_t>(static_cast<std::size_t>(milliseconds) * kSampleRate / 1000, sample));
}

std::int32_t SilentCard::StartPlay(AudioSource& source) {
  source_ = &source;
  return kWaveOk;
}

void SilentCard::Speak(std::int16_t sample, std::chrono::milliseconds length) {
  const std::vector<std::int16_t> block(kBlockSamples, sample);
  for (auto said = std::chrono::milliseconds(0); said < length && sink_ != nullptr; said += kBlock)
    sink_->Write(block);
}

std::int16_t SilentCard::Hear() {
  std::array<std::int16_t, kBlockSamples> block{};
  // The file is decoded on another thread; until its first samples are there, silence is read.
  while (source_ != nullptr && source_->Read(block)) {
    if (block.back() != 0) return block.back();
    std::this_thread::yield();
  }
  source_ = nullptr;
  return 0;
}

void SilentCard::PlayToEnd() {
  while (Hear() != 0) continue;
}

}  // namespace orven::test
