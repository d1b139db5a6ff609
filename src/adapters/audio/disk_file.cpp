// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/disk_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

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

std::string FolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

std::int32_t SyncFolder(const std::string& folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return ResultOf(errno);
  const std::int32_t result = fsync(descriptor) == 0 ? kWaveOk : ResultOf(errno);
  close(descriptor);
  return result;
}

}  // namespace orven
