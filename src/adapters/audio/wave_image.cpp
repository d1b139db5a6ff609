// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/wave_image.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "platform/audio_device.h"

namespace orven {

bool IsRecordable(const WaveFormat& format) {
  return format == WaveFormat{kWaveFormatPcm, 1, 16, kSampleRate} ||
         format == WaveFormat{kWaveFormatMuLaw, 1, 8, kSampleRate};
}

WaveImage::WaveImage(const WaveFormat& format) {
  static SF_VIRTUAL_IO memory{MemoryFile::Length, MemoryFile::Seek, MemoryFile::Read, MemoryFile::Write,
                              MemoryFile::Tell};
  SF_INFO info{};
  info.samplerate = kSampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | (format.tag == kWaveFormatMuLaw ? SF_FORMAT_ULAW : SF_FORMAT_PCM_16);
  writer_.reset(sf_open_virtual(&memory, SFM_WRITE, &info, &file_));
  if (!writer_) throw std::bad_alloc();  // nothing else can fail in memory
  Append({});
  header_bytes_ = file_.bytes.size();
}

void WaveImage::Append(std::span<const std::int16_t> samples) {
  sf_write_short(writer_.get(), samples.data(), static_cast<sf_count_t>(samples.size()));
  sf_command(writer_.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
}

sf_count_t WaveImage::MemoryFile::Length(void* self) {
  return static_cast<sf_count_t>(static_cast<MemoryFile*>(self)->bytes.size());
}

sf_count_t WaveImage::MemoryFile::Seek(sf_count_t offset, int whence, void* self) {
  auto& file = *static_cast<MemoryFile*>(self);
  sf_count_t base = 0;
  if (whence == SEEK_CUR) base = Tell(self);
  if (whence == SEEK_END) base = Length(self);
  file.position = static_cast<std::size_t>(std::max<sf_count_t>(base + offset, 0));
  return Tell(self);
}

sf_count_t WaveImage::MemoryFile::Read(void* data, sf_count_t count, void* self) {
  auto& file = *static_cast<MemoryFile*>(self);
  const std::size_t left = file.bytes.size() - std::min(file.position, file.bytes.size());
  const std::size_t got = std::min(left, static_cast<std::size_t>(count));
  if (got > 0) std::memcpy(data, file.bytes.data() + file.position, got);
  file.position += got;
  return static_cast<sf_count_t>(got);
}

sf_count_t WaveImage::MemoryFile::Write(const void* data, sf_count_t count, void* self) {
  auto& file = *static_cast<MemoryFile*>(self);
  const std::size_t end = file.position + static_cast<std::size_t>(count);
  if (end > file.bytes.size()) file.bytes.resize(end);
  if (count > 0) std::memcpy(file.bytes.data() + file.position, data, static_cast<std::size_t>(count));
  file.position = end;
  return count;
}

sf_count_t WaveImage::MemoryFile::Tell(void* self) {
  return static_cast<sf_count_t>(static_cast<MemoryFile*>(self)->position);
}

}  // namespace orven
