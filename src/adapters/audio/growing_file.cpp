// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/growing_file.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace orven {

std::int32_t WriteWhole(const std::string& folder, const std::string& name, std::span<const std::byte> bytes,
                        std::shared_ptr<DiskFile>& file) {
  std::shared_ptr<DiskFile> fresh;
  std::int32_t result = DiskFile::Create(folder, name, fresh);
  if (result != kWaveOk) return result;
  result = fresh->WriteAt(0, bytes);
  if (result != kWaveOk) {
    fresh->Remove();
    return result;
  }
  file = std::move(fresh);
  return kWaveOk;
}

std::int32_t GrowingFile::Update(const WaveImage& image) {
  if (file_ && !file_->IsThere()) file_.reset();
  const std::int32_t here = file_ && !distrusted_ ? WriteNews(image) : kWaveWriteFailed;
  if (here == kWaveOk) return kWaveOk;
  const std::int32_t moved = MoveOn(image);
  if (moved == kWaveOk || !file_) return moved;
  return std::exchange(distrusted_, false) ? WriteNews(image) : here;
}

void GrowingFile::Distrust() {
  distrusted_ = true;
  written_ = 0;
}

void GrowingFile::Discard() {
  if (file_) file_->Remove();
  file_.reset();
}

/// Sound first, then the header that counts it: the header never promises what is not there.
std::int32_t GrowingFile::WriteNews(const WaveImage& image) {
  std::int32_t result = file_->WriteAt(written_, image.Bytes().subspan(written_));
  if (result == kWaveOk) result = file_->WriteAt(0, image.Header());
  if (result == kWaveOk) written_ = image.Bytes().size();
  return result;
}

/// The present file stays until its sound is safe in the next one.
std::int32_t GrowingFile::MoveOn(const WaveImage& image) {
  std::int32_t first_failure = kWaveOk;
  for (const std::string& folder : folders_) {
    if (file_ && folder == folder_) continue;
    std::error_code ignored;  // creating a file in it will tell
    if (&folder == &folders_.back()) std::filesystem::create_directories(folder, ignored);
    std::shared_ptr<DiskFile> fresh;
    std::int32_t result = WriteWhole(folder, name_, image.Bytes(), fresh);
    if (result == kWaveOk && file_) result = fresh->Sync();
    if (result == kWaveOk) {
      Discard();
      file_ = std::move(fresh);
      folder_ = folder;
      written_ = image.Bytes().size();
      distrusted_ = false;
      return kWaveOk;
    }
    if (fresh) fresh->Remove();
    if (first_failure == kWaveOk) first_failure = result;
  }
  return first_failure == kWaveOk ? kWavePathNotFound : first_failure;
}

}  // namespace orven
