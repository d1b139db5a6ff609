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

/// One new file being written, with results of the wave control. It stays on disk when the object dies.
/// One thread at a time, but Sync may run beside anything else.
class DiskFile {
 public:
  /// Creates ".recording-<name>-<process>-<n>.wav.part" in `folder`, with the first n that is free; without
  /// a name, ".recording-<process>-<n>.wav.part". Such a name marks sound that was not finished or not
  /// filed; a listing of "*.wav" passes it over.
  static std::int32_t Create(const std::string& folder, const std::string& name,
                             std::shared_ptr<DiskFile>& file);

  ~DiskFile();
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;

  /// Writes all of `bytes` at `offset`, or fails with a part of them written.
  std::int32_t WriteAt(std::size_t offset, std::span<const std::byte> bytes);

  /// Returns when everything written has reached the disk.
  std::int32_t Sync();

  /// Moves the file within its file system, replacing an older file.
  std::int32_t RenameTo(const std::string& path);

  /// Deletes the file.
  void Remove();

  /// False when somebody else has deleted the file, or its folder.
  bool IsThere() const;

  const std::string& Path() const { return path_; }

 private:
  DiskFile(std::string path, int descriptor);

  std::string path_;
  const int descriptor_;
};

/// Makes created, renamed and deleted names in `folder` survive a loss of power.
std::int32_t SyncFolder(const std::string& folder);

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
  AudioFile writer_;  ///< after file_: closing it still writes
  std::size_t header_bytes_ = 0;
};

/// The file on disk that follows a WaveImage while it grows. It lives in the first of a few folders
/// that takes it; where one fails later, the whole recording moves on to the next. Between updates the
/// file is a valid WAV file. One thread at a time.
class GrowingFile {
 public:
  /// `folders` in order of preference; the last one is created when it is missing. `name` becomes a part
  /// of the file's name. Creates no file yet.
  GrowingFile(std::vector<std::string> folders, std::string name)
      : folders_(std::move(folders)), name_(std::move(name)) {}

  /// Brings the file up to `image`, creating it first when there is none or when somebody deleted it.
  /// When no folder takes all of it, returns the first failure; the file then holds an earlier state,
  /// and the next Update tries everything again.
  std::int32_t Update(const WaveImage& image);

  /// The file, or nullptr.
  std::shared_ptr<DiskFile> File() const { return file_; }

  /// What has been written so far may not have reached the disk: the next Update writes all of it
  /// again, elsewhere if it can.
  void Distrust();

  /// Deletes the file, because its sound is safe elsewhere.
  void Discard();

 private:
  std::int32_t WriteNews(const WaveImage& image);
  std::int32_t MoveOn(const WaveImage& image);

  std::vector<std::string> folders_;
  std::string name_;
  std::shared_ptr<DiskFile> file_;
  std::string folder_;       ///< which of them holds file_
  std::size_t written_ = 0;  ///< bytes of the image that the file holds
  bool distrusted_ = false;
};

/// Writes `bytes` into a new file in `folder` (DiskFile::Create with `name`), or leaves nothing there. Not
/// synced yet.
std::int32_t WriteWhole(const std::string& folder, const std::string& name, std::span<const std::byte> bytes,
                        std::shared_ptr<DiskFile>& file);

}  // namespace orven
