// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "adapters/audio/telephone_decoder.h"
#include "platform/wave.h"

namespace orven {

/// Whether a recording can be made in `format`: 16-bit PCM or 8-bit mu-law, one channel, 8000.
bool IsRecordable(const WaveFormat& format);

/// A recording as the bytes of a WAV file, in memory, complete and valid after each Append. It takes
/// 16,000 bytes a second (mu-law: 8,000), an hour 58 MB; that whatever happens to the disk meanwhile,
/// everything recorded is still there, is worth it. One thread at a time.
class WaveImage {
 public:
  /// `format` must be recordable.
  explicit WaveImage(const WaveFormat& format);
  WaveImage(const WaveImage&) = delete;
  WaveImage& operator=(const WaveImage&) = delete;

  void Append(std::span<const std::int16_t> samples);

  /// The file. Append changes only its header and what comes after its present end.
  std::span<const std::byte> Bytes() const { return file_.bytes; }

  /// The part of Bytes() that comes before the sound.
  std::span<const std::byte> Header() const { return Bytes().first(header_bytes_); }

  bool HasSound() const { return Bytes().size() > header_bytes_; }

 private:
  /// What the sound library takes for a file.
  struct MemoryFile {
    std::vector<std::byte> bytes;
    std::size_t position = 0;

    static sf_count_t Length(void* self);
    static sf_count_t Seek(sf_count_t offset, int whence, void* self);
    static sf_count_t Read(void* data, sf_count_t count, void* self);
    static sf_count_t Write(const void* data, sf_count_t count, void* self);
    static sf_count_t Tell(void* self);
  };

  MemoryFile file_;
  SoundFile writer_;  ///< after file_: closing it still writes
  std::size_t header_bytes_ = 0;
};

}  // namespace orven
