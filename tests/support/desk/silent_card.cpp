// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/desk/silent_card.h"

#include <array>
#include <thread>

namespace orven::test {
namespace {

constexpr std::chrono::milliseconds kBlock{20};

void Append(std::string& to, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) to.push_back(static_cast<char>(value >> (8 * i)));
}

}  // namespace

std::string WaveFile(const std::vector<std::int16_t>& samples) {
  const auto size = static_cast<std::uint32_t>(samples.size() * sizeof(std::int16_t));
  std::string file = "RIFF";
  Append(file, 36 + size, 4);
  file += "WAVEfmt ";
  Append(file, 16, 4);
  Append(file, 1, 2);  // PCM
  Append(file, 1, 2);  // one channel
  Append(file, kSampleRate, 4);
  Append(file, kSampleRate * 2, 4);
  Append(file, 2, 2);
  Append(file, 16, 2);
  file += "data";
  Append(file, size, 4);
  for (const auto sample : samples) Append(file, static_cast<std::uint16_t>(sample), 2);
  return file;
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
