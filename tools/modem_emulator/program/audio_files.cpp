// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/program/audio_files.h"

#include <stdexcept>

namespace orven::emulator {
namespace {

constexpr int kRate = 8000;

}  // namespace

std::vector<std::int16_t> ReadAudio(const std::string& path) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
  if (!file) throw std::runtime_error(path + ": " + sf_strerror(nullptr));
  if (info.channels != 1 || info.samplerate != kRate) {
    throw std::runtime_error(path + " is not mono with 8000 samples a second");
  }
  std::vector<std::int16_t> samples(static_cast<std::size_t>(info.frames));
  samples.resize(static_cast<std::size_t>(sf_read_short(file.get(), samples.data(), info.frames)));
  return samples;
}

void GrowingWav::Begin() {
  if (path_.empty()) return;
  SF_INFO info{};
  info.channels = 1;
  info.samplerate = kRate;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  file_.reset(sf_open(path_.c_str(), SFM_WRITE, &info));
  if (!file_) throw std::runtime_error(path_ + ": " + sf_strerror(nullptr));
  sf_command(file_.get(), SFC_SET_UPDATE_HEADER_AUTO, nullptr, SF_TRUE);
  written_ = 0;
}

void GrowingWav::Append(const std::vector<std::int16_t>& all) {
  if (!file_ || all.size() <= written_) return;
  sf_write_short(file_.get(), all.data() + written_, static_cast<sf_count_t>(all.size() - written_));
  sf_write_sync(file_.get());
  written_ = all.size();
}

void GrowingFile::Begin() {
  if (path_.empty()) return;
  file_.close();
  file_.clear();
  file_.open(path_, std::ios::binary | std::ios::trunc);
  if (!file_) throw std::runtime_error(path_ + " cannot be written");
  written_ = 0;
}

void GrowingFile::Append(const std::vector<std::uint8_t>& all) {
  if (!file_.is_open() || all.size() <= written_) return;
  file_.write(reinterpret_cast<const char*>(all.data()) + written_,
              static_cast<std::streamsize>(all.size() - written_));
  file_.flush();
  written_ = all.size();
}

}  // namespace orven::emulator
