// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/audio/disk_file.h"
#include "adapters/audio/wave_image.h"

namespace orven {

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
