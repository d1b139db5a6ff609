// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/durable_file.h"

namespace orven {

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
  // Some file systems cannot synchronise a folder and say EINVAL; nothing more can be done there.
  if (::fsync(number_) != 0 && errno != EINVAL) throw FileFailure(errno, path_);
}

void Descriptor::Close() {
  const int number = std::exchange(number_, -1);
  if (::close(number) != 0 && errno != EINTR) throw FileFailure(errno, path_);
}

}  // namespace orven
