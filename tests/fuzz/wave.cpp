// SPDX-License-Identifier: GPL-3.0-or-later
// Any audio file is measured, played and entered in the middle; a recording can be played at every moment.
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "adapters/audio/audio_file.h"
#include "adapters/audio/growing_file.h"
#include "fuzz/fuzz.h"

namespace orven::fuzz {
namespace {

/// Enough of a file to play: a few bytes at 32 samples a second are minutes.
constexpr std::size_t kEnough = 20 * kSampleRate;

/// The path of a file in memory with this content; the next one takes its place.
std::string PathOf(Bytes content) {
  static const int file = memfd_create("audio", MFD_CLOEXEC);
  Require(ftruncate(file, 0) == 0);
  Require(pwrite(file, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size()));
  return "/proc/self/fd/" + std::to_string(file);
}

/// The number of samples to the end, or more than enough.
std::size_t Played(TelephoneDecoder& decoder) {
  std::array<std::int16_t, 800> chunk;
  std::size_t samples = 0;
  for (std::size_t got = chunk.size(); got == chunk.size() && samples < kEnough; samples += got) {
    got = decoder.Read(chunk);
    Require(got <= chunk.size());
  }
  return samples;
}

void Play(Bytes content) {
  const std::string path = PathOf(content);
  std::unique_ptr<TelephoneDecoder> decoder;
  const std::int32_t result = TelephoneDecoder::Open(path, decoder);
  Require((result == kWaveOk) == (decoder != nullptr));
  Require(result == kWaveOk || result == kWaveFileUnreadable || result == kWaveBadFormat);
  if (!decoder) return;
  const auto length = decoder->Length();
  Require(length.count() >= 0);
  const std::size_t whole = Played(*decoder);
  Require(TelephoneDecoder::Open(path, decoder) == kWaveOk);
  if (decoder->CanSkip() && decoder->SkipTo(length * content.back() / 255))
    Require(Played(*decoder) <= whole + kSampleRate || whole >= kEnough);
}

/// The file on disk gets the new samples first, some of them, and then its header.
void Record(Choices choices) {
  const WaveFormat pcm{kWaveFormatPcm, 1, 16, kSampleRate}, mu_law{kWaveFormatMuLaw, 1, 8, kSampleRate};
  WaveImage image(choices.Below(2) == 0 ? pcm : mu_law);
  std::vector<std::uint8_t> on_disk;
  std::size_t samples = 0;
  for (bool whole = true; whole && choices.Any();) {
    std::vector<std::int16_t> block;
    for (const std::uint8_t byte : choices.Piece()) block.push_back(static_cast<std::int16_t>(byte << 8));
    image.Append(block);
    const auto* now = reinterpret_cast<const std::uint8_t*>(image.Bytes().data());
    const std::size_t news = image.Bytes().size() - on_disk.size();
    const std::size_t cut = on_disk.empty() ? news : choices.Below(news + 1);
    on_disk.insert(on_disk.end(), now + on_disk.size(), now + on_disk.size() + cut);
    whole = cut == news;
    if (whole) std::copy(now, now + image.Header().size(), on_disk.begin());
    if (whole) samples += block.size();
    std::unique_ptr<TelephoneDecoder> decoder;
    const bool playable = TelephoneDecoder::Open(PathOf(on_disk), decoder) == kWaveOk;
    Require(samples == 0 || (playable && Played(*decoder) >= std::min(samples, kEnough)));
  }
}

}  // namespace

void Wave(Bytes input) {
  if (input.size() >= 3 && TextOf(input.first(3)) == "rec") return Record(Choices(input.subspan(3)));
  if (!input.empty()) Play(input);
}

}  // namespace orven::fuzz
