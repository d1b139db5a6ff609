// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/durable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/paths.h"

namespace orven {

namespace fs = std::filesystem;

namespace {

ErrorNumber NumberOf(int error) {
  switch (error) {
    case ENOENT: return ErrorNumber::FileNotFound;
    case ENOTDIR: return ErrorNumber::PathNotFound;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return ErrorNumber::DiskFull;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY: return ErrorNumber::PermissionDenied;
    case EEXIST:
    case ENOTEMPTY: return ErrorNumber::FileAlreadyExists;
    case EIO:
    case ENXIO:
    case ENODEV: return ErrorNumber::DeviceIoError;
    case ENOMEM: return ErrorNumber::OutOfMemory;
    default: return ErrorNumber::PathAccessError;
  }
}

void SyncFolderOf(const std::string& path) {
  Descriptor(FolderOf(path), O_RDONLY | O_DIRECTORY).Sync();
}

/// The file that a symbolic link at `path` leads to, else `path` itself.
std::string BehindLink(const std::string& path) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) return path;
  const fs::path target = fs::canonical(path, error);
  return error ? path : target.string();
}

/// A temporary file in its target's folder; the destructor removes it unless it has become the target. If the
/// file system supports it, it has no name until then, so that a killed program leaves nothing behind.
/// Failures name the target, the only name that a reader of the log knows.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target)
      : path_(FolderOf(target) + "/.orven-XXXXXX"), file_(Make(path_), target) {
    const int error = errno;
    if (file_.Number() >= 0) return;
    path_.clear();
    // mkostemp did not find the target's folder.
    if (error == ENOENT) throw RuntimeError(ErrorNumber::PathNotFound, target);
    throw FileFailure(error, target);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!path_.empty()) ::unlink(path_.c_str());
  }

  Descriptor& File() { return file_; }

  /// Makes the file durable under its final name.
  void Become(const std::string& target, unsigned mode, bool replace) {
    if (::fchmod(file_.Number(), mode) != 0) throw FileFailure(errno, target);
    file_.Sync();
    if (path_.empty() && !replace) {
      Link(target, target);
    } else {
      if (path_.empty()) Link(UnusedPath(target), target);
      Rename(target, replace);
    }
    file_.Close();
    SyncFolderOf(target);
  }

 private:
  static constexpr const char* kOpenFiles = "/proc/self/fd/";

  /// Opens a file without a name and clears `path`, or a file named from the template `path`.
  static int Make(std::string& path) {
    const int unnamed = ::access(kOpenFiles, X_OK) == 0
                            ? ::open(FolderOf(path).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600)
                            : -1;
    if (unnamed < 0) return ::mkostemp(path.data(), O_CLOEXEC);
    path.clear();
    return unnamed;
  }

  static std::string UnusedPath(const std::string& target) {
    static std::atomic<unsigned> count{0};
    return FolderOf(target) + "/.orven-" + std::to_string(::getpid()) + "-" + std::to_string(++count);
  }

  /// Gives the file that has no name the name `path`.
  void Link(const std::string& path, const std::string& target) {
    const std::string self = kOpenFiles + std::to_string(file_.Number());
    if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      throw FileFailure(errno, target);
    }
    if (path != target) path_ = path;
  }

  void Rename(const std::string& target, bool replace) {
    if (!replace) {
      RenameKeeping(path_, target);
    } else if (::rename(path_.c_str(), target.c_str()) != 0) {
      throw FileFailure(errno, target);
    }
    path_.clear();
  }

  std::string path_;  ///< its own name, if it has one
  Descriptor file_;
};

void WriteWhole(const std::string& path, std::string_view content, unsigned mode, bool replace) {
  TemporaryFile temporary(path);
  temporary.File().Write(content);
  temporary.Become(path, mode, replace);
}

bool Taken(const std::string& path) {
  for (const char* companion : {"", "-wal", "-shm", "-journal"}) {
    std::error_code error;
    if (fs::exists(fs::symlink_status(path + companion, error))) return true;
  }
  return false;
}

}  // namespace

Descriptor::Descriptor(const std::string& path, int flags, unsigned mode)
    : path_(path), number_(::open(path.c_str(), flags | O_CLOEXEC, mode)) {
  if (number_ < 0) throw FileFailure(errno, path_);
}

Descriptor::~Descriptor() {
  if (number_ >= 0) ::close(number_);
}

void Descriptor::Write(std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(number_, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw FileFailure(errno, path_);
    content.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string Descriptor::Read() {
  std::string block(std::size_t{64} * 1024, '\0');
  ssize_t got = -1;
  do {
    got = ::read(number_, block.data(), block.size());
  } while (got < 0 && errno == EINTR);
  if (got < 0) throw FileFailure(errno, path_);
  block.resize(static_cast<std::size_t>(got));
  return block;
}

void Descriptor::Sync() {
  // Some file systems cannot sync a folder and return EINVAL; nothing more can be done there.
  if (::fsync(number_) != 0 && errno != EINVAL) throw FileFailure(errno, path_);
}

void Descriptor::Close() {
  const int number = std::exchange(number_, -1);
  if (::close(number) != 0 && errno != EINTR) throw FileFailure(errno, path_);
}

RuntimeError FileFailure(int error, const std::string& path) {
  return {NumberOf(error), path + " (" + std::generic_category().message(error) + ")"};
}

void ReplaceFile(const std::string& path, std::string_view content, unsigned mode) {
  WriteWhole(BehindLink(path), content, mode, true);
}

void CreateFile(const std::string& path, std::string_view content, unsigned mode) {
  WriteWhole(path, content, mode, false);
}

void CopyFile(const std::string& from, const std::string& to, bool replace) {
  Descriptor source(from, O_RDONLY);
  struct stat status {};
  if (::fstat(source.Number(), &status) != 0) throw FileFailure(errno, from);
  if (S_ISDIR(status.st_mode)) throw FileFailure(EISDIR, from);
  const std::string target = replace ? BehindLink(to) : to;
  TemporaryFile temporary(target);
  for (std::string block = source.Read(); !block.empty(); block = source.Read()) {
    temporary.File().Write(block);
  }
  const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
  if (!replace) ::futimens(temporary.File().Number(), times.data());
  temporary.Become(target, status.st_mode & 0777U, replace);
}

bool RenameKeeping(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  int error = errno;
  if (error == EINVAL || error == ENOSYS) {
    // The file system has no exclusive rename: checks first, at the risk of a race with another program.
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(to, ignored))) throw FileFailure(EEXIST, to);
    if (::rename(from.c_str(), to.c_str()) == 0) return true;
    error = errno;
  }
  if (error == EXDEV) return false;
  struct stat status {};
  const bool from_missing = ::lstat(from.c_str(), &status) != 0;
  if (error == ENOENT && !from_missing) throw RuntimeError(ErrorNumber::PathNotFound, to);
  throw FileFailure(error, error == ENOENT || from_missing ? from : to);
}

std::string NameToSetAside(const std::string& path, std::string_view label,
                           std::chrono::system_clock::time_point now) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  ::localtime_r(&seconds, &local);
  std::array<char, 32> stamp{};
  std::strftime(stamp.data(), stamp.size(), "%Y%m%dT%H%M%S", &local);
  const std::string first = path + "." + std::string(label) + "-" + stamp.data();
  std::string name = first;
  for (int number = 2; Taken(name); ++number) name = first + "-" + std::to_string(number);
  return name;
}

}  // namespace orven
