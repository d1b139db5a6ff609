// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "adapters/audio/audio_file.h"
#include "platform/wave.h"

namespace orven {

/// A new file being written; results are the wave control's. It stays on disk when the object is destroyed.
/// One thread at a time, but Sync may run concurrently with anything else.
class DiskFile {
 public:
  /// Creates ".recording-<name>-<process>-<n>.wav.part" in `folder`, with the first n that is free; without
  /// a name, ".recording-<process>-<n>.wav.part". Such a name marks audio that was not finished or not
  /// filed; a listing of "*.wav" does not show it.
  static std::int32_t Create(const std::string& folder, const std::string& name,
                             std::shared_ptr<DiskFile>& file);

  ~DiskFile();
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;

  /// Writes all of `bytes` at `offset`; on failure part of them may have been written.
  std::int32_t WriteAt(std::size_t offset, std::span<const std::byte> bytes);

  /// Returns when everything written has reached the disk.
  std::int32_t Sync();

  /// Moves the file within its file system, replacing an older file.
  std::int32_t RenameTo(const std::string& path);

  /// Deletes the file.
  void Remove();

  /// False when another program has deleted the file or its folder.
  bool IsThere() const;

  const std::string& Path() const { return path_; }

 private:
  DiskFile(std::string path, int descriptor);

  std::string path_;
  const int descriptor_;
};

/// Makes created, renamed and deleted names in `folder` survive a power failure.
std::int32_t SyncFolder(const std::string& folder);

/// Whether a recording can be made in `format`: 16-bit PCM or 8-bit mu-law, mono, 8000 samples a second.
bool IsRecordable(const WaveFormat& format);

/// A recording as a WAV file in memory, complete and valid after each Append. It takes 58 MB an hour (mu-law:
/// 29) and does not depend on the disk. One thread at a time.
class WaveImage {
 public:
  /// `format` must be recordable.
  explicit WaveImage(const WaveFormat& format);
  WaveImage(const WaveImage&) = delete;
  WaveImage& operator=(const WaveImage&) = delete;

  void Append(std::span<const std::int16_t> samples);

  /// The whole file. Append changes only its header and what comes after its current end.
  std::span<const std::byte> Bytes() const { return file_.bytes; }

  /// The part of Bytes() before the samples.
  std::span<const std::byte> Header() const { return Bytes().first(header_bytes_); }

  bool HasSound() const { return Bytes().size() > header_bytes_; }

 private:
  /// What libsndfile uses as a file.
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
  AudioFile writer_;  ///< after file_: closing it still writes
  std::size_t header_bytes_ = 0;
};

/// The file on disk that follows a growing WaveImage. It is in the first of a few folders that accepts it;
/// when one fails later, the whole recording moves to the next. Between updates it is a valid WAV file.
/// One thread at a time.
class GrowingFile {
 public:
  /// `folders` in order of preference; the last one is created if it is missing. `name` becomes a part of the
  /// file's name. The first Update creates the file.
  GrowingFile(std::vector<std::string> folders, std::string name)
      : folders_(std::move(folders)), name_(std::move(name)) {}

  /// Writes to the file what `image` has gained; creates the file if it is missing. When no folder takes all
  /// of it, returns the first failure; the file then holds an earlier state, and the next Update tries
  /// everything again.
  std::int32_t Update(const WaveImage& image);

  /// The file, or nullptr.
  std::shared_ptr<DiskFile> File() const { return file_; }

  /// What was written may not have reached the disk: the next Update writes all of it again, elsewhere if
  /// possible.
  void Distrust();

  /// Deletes the file, because its audio is safe elsewhere.
  void Discard();

 private:
  std::int32_t WriteNewPart(const WaveImage& image);
  std::int32_t MoveToNextFolder(const WaveImage& image);

  std::vector<std::string> folders_;
  std::string name_;
  std::shared_ptr<DiskFile> file_;
  std::string folder_;       ///< the one that holds file_
  std::size_t written_ = 0;  ///< bytes of the image that the file holds
  bool distrusted_ = false;
};

/// Writes `bytes` into a new file in `folder` (DiskFile::Create with `name`), not synced; leaves no file when
/// that fails.
std::int32_t WriteWhole(const std::string& folder, const std::string& name, std::span<const std::byte> bytes,
                        std::shared_ptr<DiskFile>& file);

}  // namespace orven
