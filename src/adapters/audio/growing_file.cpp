// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/growing_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

#include "platform/audio_device.h"
#include "platform/wave.h"

namespace orven {
namespace {

std::int32_t ResultOf(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG: return kWavePathNotFound;
    case EACCES:
    case EPERM:
    case EROFS: return kWaveWriteDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return kWaveDiskFull;
    default: return kWaveWriteFailed;
  }
}

}  // namespace

std::int32_t DiskFile::Create(const std::string& folder, const std::string& name,
                              std::shared_ptr<DiskFile>& file) {
  const std::string start =
      folder + "/.recording-" + (name.empty() ? "" : name + "-") + std::to_string(getpid()) + "-";
  for (int n = 1;; ++n) {
    std::string path = start + std::to_string(n) + ".wav.part";
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0 && errno == EEXIST) continue;
    if (descriptor < 0) return ResultOf(errno);
    file = std::shared_ptr<DiskFile>(new DiskFile(std::move(path), descriptor));
    return kWaveOk;
  }
}

DiskFile::DiskFile(std::string path, int descriptor) : path_(std::move(path)), descriptor_(descriptor) {}

DiskFile::~DiskFile() {
  close(descriptor_);
}

std::int32_t DiskFile::WriteAt(std::size_t offset, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return ResultOf(errno);
    if (written == 0) return kWaveWriteFailed;
    offset += static_cast<std::size_t>(written);
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return kWaveOk;
}

std::int32_t DiskFile::Sync() {
  return fdatasync(descriptor_) == 0 ? kWaveOk : ResultOf(errno);
}

std::int32_t DiskFile::RenameTo(const std::string& path) {
  if (rename(path_.c_str(), path.c_str()) != 0) return ResultOf(errno);
  path_ = path;
  return kWaveOk;
}

void DiskFile::Remove() {
  unlink(path_.c_str());
}

bool DiskFile::IsThere() const {
  struct stat status {};
  return fstat(descriptor_, &status) == 0 && status.st_nlink > 0;
}

std::int32_t SyncFolder(const std::string& folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return ResultOf(errno);
  const std::int32_t result = fsync(descriptor) == 0 ? kWaveOk : ResultOf(errno);
  close(descriptor);
  return result;
}

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
  const std::int32_t here = file_ && !distrusted_ ? WriteNewPart(image) : kWaveWriteFailed;
  if (here == kWaveOk) return kWaveOk;
  const std::int32_t moved = MoveToNextFolder(image);
  if (moved == kWaveOk || !file_) return moved;
  return std::exchange(distrusted_, false) ? WriteNewPart(image) : here;
}

void GrowingFile::Distrust() {
  distrusted_ = true;
  written_ = 0;
}

void GrowingFile::Discard() {
  if (file_) file_->Remove();
  file_.reset();
}

/// Samples first, then the header that counts them: the header never counts missing samples.
std::int32_t GrowingFile::WriteNewPart(const WaveImage& image) {
  std::int32_t result = file_->WriteAt(written_, image.Bytes().subspan(written_));
  if (result == kWaveOk) result = file_->WriteAt(0, image.Header());
  if (result == kWaveOk) written_ = image.Bytes().size();
  return result;
}

/// The current file stays until its audio is safe in the next one.
std::int32_t GrowingFile::MoveToNextFolder(const WaveImage& image) {
  std::int32_t first_failure = kWaveOk;
  for (const std::string& folder : folders_) {
    if (file_ && folder == folder_) continue;
    std::error_code ignored;  // creating the file will fail then
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
