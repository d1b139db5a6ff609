// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/audio/sounds.h"

#include <sndfile.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <numbers>
#include <random>
#include <stdexcept>

namespace orven::testing {
namespace {

using File = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

File Open(const std::string& path, int mode, SF_INFO& info) {
  return {sf_open(path.c_str(), mode, &info), sf_close};
}

SF_INFO Info(int format, int rate, int channels) {
  SF_INFO info{};
  info.format = format;
  info.samplerate = rate;
  info.channels = channels;
  return info;
}

/// What `command` prints.
std::string Output(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string text;
  char piece[4096];
  for (std::size_t got; (got = fread(piece, 1, sizeof piece, pipe.get())) > 0;) text.append(piece, got);
  return text;
}

}  // namespace

TempFolder::TempFolder(const std::filesystem::path& parent) {
  std::string name = (parent / "orven-audio-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
}

TempFolder::~TempFolder() {
  std::filesystem::remove_all(path_);
}

std::vector<std::string> TempFolder::Names(const std::string& suffix) const {
  std::vector<std::string> names;
  std::error_code gone;  // a folder that is not there has no names
  for (const auto& entry : std::filesystem::directory_iterator(path_, gone))
    if (entry.path().filename().string().ends_with(suffix)) names.push_back(entry.path().filename().string());
  return names;
}

std::vector<float> Sine(int rate, double frequency, double amplitude, double seconds) {
  std::vector<float> samples(static_cast<std::size_t>(rate * seconds));
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<float>(
        amplitude * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i) / rate + 0.1));
  return samples;
}

Samples Noise(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> any(-32768, 32767);
  Samples samples(count);
  for (auto& sample : samples) sample = static_cast<std::int16_t>(any(random));
  return samples;
}

Samples ThroughMuLaw(const Samples& samples) {
  const TempFolder folder;
  WriteSound(folder / "mulaw.wav", SF_FORMAT_WAV | SF_FORMAT_ULAW, samples);
  return *ReadWithSndfile(folder / "mulaw.wav");
}

void WriteSound(const std::string& path, int format, int rate, int channels, const std::vector<float>& mono) {
  SF_INFO info = Info(format, rate, channels);
  const File file = Open(path, SFM_WRITE, info);
  if (!file) throw std::runtime_error(sf_strerror(nullptr));
  sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  std::vector<float> frames;
  for (const float sample : mono) frames.insert(frames.end(), static_cast<std::size_t>(channels), sample);
  sf_write_float(file.get(), frames.data(), static_cast<sf_count_t>(frames.size()));
}

void WriteSound(const std::string& path, int format, const Samples& samples) {
  SF_INFO info = Info(format, 8000, 1);
  const File file = Open(path, SFM_WRITE, info);
  if (!file) throw std::runtime_error(sf_strerror(nullptr));
  sf_write_short(file.get(), samples.data(), static_cast<sf_count_t>(samples.size()));
}

std::optional<Samples> ReadWithSox(const std::string& path) {
  if (Soxi("-r", path).empty()) return std::nullopt;
  const std::string bytes = Output("sox -D '" + path + "' -t raw -e signed -b 16 -L - 2>/dev/null");
  Samples samples(bytes.size() / 2);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<std::int16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                           static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
  return samples;
}

std::optional<Samples> ReadWithSndfile(const std::string& path) {
  SF_INFO info{};
  const File file = Open(path, SFM_READ, info);
  if (!file) return std::nullopt;
  Samples samples(static_cast<std::size_t>(info.frames));
  const sf_count_t got = sf_readf_short(file.get(), samples.data(), info.frames);
  samples.resize(static_cast<std::size_t>(got));
  return samples;
}

std::string Soxi(const std::string& property, const std::string& path) {
  std::string text = Output("soxi " + property + " '" + path + "' 2>/dev/null");
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path) << text;
}

SineFit FitSine(const Samples& samples, double frequency) {
  double in_phase = 0;
  double quadrature = 0;
  double energy = 0;
  const auto count = static_cast<double>(samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double angle = 2 * std::numbers::pi * frequency * static_cast<double>(i) / kSampleRate;
    const double value = samples[i] / 32768.0;
    in_phase += value * std::cos(angle) * 2 / count;
    quadrature += value * std::sin(angle) * 2 / count;
    energy += value * value / count;
  }
  const double amplitude = std::hypot(in_phase, quadrature);
  const double signal = amplitude * amplitude / 2;
  return {amplitude, 10 * std::log10(signal / std::max(energy - signal, 1e-12))};
}

}  // namespace orven::testing
