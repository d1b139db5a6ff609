// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/attachment.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "adapters/files/durable.h"

namespace orven {

bool IsAttachable(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0) return S_ISREG(status.st_mode);
  return !path.empty() && errno != ENOENT && errno != ENOTDIR;
}

// O_NONBLOCK, so that a pipe in the file's place is refused and not waited for.
Attachment::Attachment(std::string path, const std::string& source)
    : path_(std::move(path)), file_(source, O_RDONLY | O_NONBLOCK) {
  struct stat status {};
  if (::fstat(file_.Number(), &status) != 0) throw FileFailure(errno, path_);
  if (!S_ISREG(status.st_mode)) throw RuntimeError(ErrorNumber::PathAccessError, path_ + " (not a file)");
  size_ = status.st_size;
}

std::optional<std::size_t> Attachment::Read(std::span<char> buffer) {
  const auto wanted = std::min(static_cast<std::int64_t>(buffer.size()), size_ - position_);
  const ssize_t count = ::pread(file_.Number(), buffer.data(), static_cast<std::size_t>(wanted), position_);
  if (count < 0) {
    failure_ = FileFailure(errno, path_).what();
    return {};
  }
  if (count == 0 && wanted > 0) {
    failure_ = path_ + " became shorter while it was being sent";
    return {};
  }
  position_ += count;
  return static_cast<std::size_t>(count);
}

bool Attachment::Seek(std::int64_t position) {
  if (position < 0 || position > size_) return false;
  position_ = position;
  return true;
}

}  // namespace orven
