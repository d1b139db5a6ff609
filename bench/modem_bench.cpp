// SPDX-License-Identifier: GPL-3.0-or-later
//
// Measures the parsing of a modem's output and the processing of
// its audio. At 115200 bit/s a modem sends 11.5 kB a second.
#include <benchmark/benchmark.h>

#include <random>
#include <span>
#include <vector>

#include "adapters/line/modem/hang_up_detector.h"
#include "adapters/line/modem/modem_reader.h"
#include "adapters/line/modem/sample_codec.h"

namespace orven {
namespace {

constexpr std::size_t kNoise = 100'000'000;
constexpr std::size_t kRead = 512;  ///< bytes per read of a serial port

const std::vector<std::uint8_t>& Noise() {
  static const auto noise = [] {
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes(kNoise);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
  }();
  return noise;
}

class Count : public ModemOutput {
 public:
  void Line(const std::string& text) override { bytes += text.size(); }
  void Event(char /*code*/) override { ++bytes; }
  void Packet(const std::string& text) override { bytes += text.size(); }
  void Audio(std::span<const std::uint8_t> samples) override { bytes += samples.size(); }
  void AudioEnded() override {
    if (reader != nullptr) BeginSound();
  }
  void BeginSound() {
    static constexpr std::uint8_t kConnect[] = {'C', 'O', 'N', 'N', 'E', 'C', 'T', '\n'};
    reader->ExpectAudio();
    reader->Read(kConnect);
  }

  ModemReader* reader = nullptr;  ///< set if all input is to be parsed as audio
  std::size_t bytes = 0;
};

void ReadNoise(ModemReader& reader) {
  for (std::span<const std::uint8_t> rest(Noise()); !rest.empty();) {
    const auto part = rest.first(std::min(kRead, rest.size()));
    reader.Read(part);
    rest = rest.subspan(part.size());
  }
}

void ReadNoiseAsLines(benchmark::State& state) {
  Count count;
  Noise();
  for (auto _ : state) {
    ModemReader reader(count);
    ReadNoise(reader);
  }
  benchmark::DoNotOptimize(count.bytes);
  state.SetBytesProcessed(static_cast<std::int64_t>(kNoise) * state.iterations());
}
BENCHMARK(ReadNoiseAsLines)->Unit(benchmark::kMillisecond);

/// When the noise contains an end-of-audio code, the next audio starts at once.
void ReadNoiseAsSound(benchmark::State& state) {
  Count count;
  Noise();
  for (auto _ : state) {
    ModemReader reader(count);
    count.reader = &reader;
    count.BeginSound();
    ReadNoise(reader);
  }
  benchmark::DoNotOptimize(count.bytes);
  state.SetBytesProcessed(static_cast<std::int64_t>(kNoise) * state.iterations());
}
BENCHMARK(ReadNoiseAsSound)->Unit(benchmark::kMillisecond);

/// Decodes one minute of call audio from an 8-bit modem and checks it for a hang-up.
void HearAMinute(benchmark::State& state) {
  const VoiceFormat format{SampleKind::Unsigned8, static_cast<int>(state.range(0)), ""};
  const auto minute = std::span(Noise()).first(60 * static_cast<std::size_t>(format.rate));
  for (auto _ : state) {
    SampleDecoder decoder(format);
    HangUpDetector hang_up([](const char*) {});
    std::vector<std::int16_t> samples;
    for (auto rest = minute; !rest.empty();) {
      const auto part = rest.first(std::min(kRead, rest.size()));
      samples.clear();
      decoder.Decode(part, samples);
      hang_up.Listen(samples);
      rest = rest.subspan(part.size());
    }
  }
}
BENCHMARK(HearAMinute)->Arg(8000)->Arg(7200)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orven
