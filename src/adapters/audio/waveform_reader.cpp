// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/waveform_reader.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "adapters/audio/audio_file.h"
#include "platform/wave.h"

namespace orven {
namespace {

/// Samples of all channels read at once: a few milliseconds' work between two checks for a newer request.
constexpr std::size_t kChunkSamples = 16384;

/// The loudest channel of one frame. NaN and infinity in a damaged file count as silence.
float PeakOf(std::span<const float> frame) {
  float peak = 0;
  for (const float sample : frame)
    if (std::isfinite(sample)) peak = std::max(peak, std::abs(sample));
  return std::min(peak, 1.0F);
}

}  // namespace

FileWaveformReader::~FileWaveformReader() {
  Cancel();
}

void FileWaveformReader::Request(const std::string& path, Done done) {
  done_ = std::move(done);
  const std::uint64_t request = ++newest_;
  const bool posted = worker_.Post([this, path, request] {
    if (const auto waveform = Read(path, request)) Deliver(request, *waveform);
  });
  if (!posted) Deliver(request, {});
}

void FileWaveformReader::Deliver(std::uint64_t request, const Waveform& waveform) {
  loop_.Post(lifeline_.Bind([this, request, waveform] {
    if (request == newest_) std::exchange(done_, nullptr)(waveform);
  }));
}

void FileWaveformReader::Cancel() {
  ++newest_;
  done_ = nullptr;
}

/// Nothing when the request is no longer the newest.
std::optional<Waveform> FileWaveformReader::Read(const std::string& path, std::uint64_t request) const {
  Waveform waveform;
  AudioFile file;
  SF_INFO info;
  if (request != newest_) return std::nullopt;
  if (OpenAudioFile(path, file, info) != kWaveOk || info.frames == 0) return waveform;
  waveform.length = std::chrono::milliseconds(info.frames * 1000 / info.samplerate);
  const auto count = std::min<std::int64_t>(info.frames, kPeaks);
  waveform.peaks.resize(static_cast<std::size_t>(count));
  const auto channels = static_cast<std::size_t>(info.channels);
  const std::size_t frames = std::max<std::size_t>(kChunkSamples / channels, 1);
  std::vector<float> chunk(frames * channels);
  sf_count_t at = 0;
  while (request == newest_) {
    const sf_count_t got = sf_readf_float(file.get(), chunk.data(), static_cast<sf_count_t>(frames));
    if (got <= 0) return waveform;
    for (sf_count_t i = 0; i < got && at < info.frames; ++i, ++at) {
      float& peak = waveform.peaks[static_cast<std::size_t>(at * count / info.frames)];
      peak =
          std::max(peak, PeakOf(std::span(chunk).subspan(static_cast<std::size_t>(i) * channels, channels)));
    }
  }
  return std::nullopt;
}

}  // namespace orven
