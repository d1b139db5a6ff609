// SPDX-License-Identifier: GPL-3.0-or-later
// Takes the length of any audio file, plays it, and plays it again from a position inside.
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <string>

#include "adapters/audio/audio_file.h"
#include "fuzz/fuzz.h"
#include "platform/wave.h"

namespace orven::fuzz {
namespace {

/// The most samples to play. At 32 samples a second, a few bytes last for minutes.
constexpr std::size_t kEnough = 20 * kSampleRate;

/// Returns the path of a file in memory with this content. The next call overwrites it.
std::string PathOf(Bytes content) {
  static const int file = memfd_create("audio", MFD_CLOEXEC);
  Require(ftruncate(file, 0) == 0);
  Require(pwrite(file, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size()));
  return "/proc/self/fd/" + std::to_string(file);
}

/// Plays to the end, or at least kEnough samples, and returns the number of samples.
std::size_t Played(TelephoneDecoder& decoder) {
  std::array<std::int16_t, 800> chunk;
  std::size_t samples = 0;
  for (std::size_t got = chunk.size(); got == chunk.size() && samples < kEnough; samples += got) {
    got = decoder.Read(chunk);
    Require(got <= chunk.size());
  }
  return samples;
}

}  // namespace

void Wave(Bytes input) {
  if (input.empty()) return;
  const std::string path = PathOf(input);
  std::unique_ptr<TelephoneDecoder> decoder;
  const std::int32_t result = TelephoneDecoder::Open(path, decoder);
  Require((result == kWaveOk) == (decoder != nullptr));
  Require(result == kWaveOk || result == kWaveFileUnreadable || result == kWaveBadFormat);
  if (!decoder) return;
  const auto length = decoder->Length();
  Require(length.count() >= 0);
  const std::size_t whole = Played(*decoder);
  Require(TelephoneDecoder::Open(path, decoder) == kWaveOk);
  if (decoder->CanSkip() && decoder->SkipTo(length * input.back() / 255))
    Require(Played(*decoder) <= whole + kSampleRate || whole >= kEnough);
}

}  // namespace orven::fuzz
