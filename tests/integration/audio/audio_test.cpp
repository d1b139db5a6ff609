// SPDX-License-Identifier: GPL-3.0-or-later
// The functions of the C library through which the faulty disk acts.
#include "integration/audio/audio_test.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace orven::testing {
namespace {

bool IsFaulty(int descriptor) {
  std::error_code unknown;
  const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), unknown);
  return !disk.folder.empty() && path.string().starts_with(disk.folder);
}

void WaitAt(std::size_t offset) {
  if (offset < disk.hangs_from) return;
  ++disk.held;
  Eventually([offset] { return offset < disk.hangs_from; });
  --disk.held;
}

}  // namespace

void FaultyDisk::Mend() {
  limit = hangs_from = SIZE_MAX;
  sync_error = 0;
  Eventually([this] { return held == 0; });
}

}  // namespace orven::testing

// The program's own definitions take precedence over the C library's, in shared libraries too.
extern "C" {

ssize_t read(int descriptor, void* data, size_t count) {
  using namespace orven::testing;
  if (IsFaulty(descriptor)) WaitAt(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_CUR)));
  return syscall(SYS_read, descriptor, data, count);
}

ssize_t pwrite(int descriptor, const void* data, size_t count, off_t offset) {
  using namespace orven::testing;
  const std::size_t limit = IsFaulty(descriptor) ? disk.limit.load() : SIZE_MAX;
  count = std::min(count, limit - std::min(static_cast<std::size_t>(offset), limit));
  if (count > 0) return syscall(SYS_pwrite64, descriptor, data, count, offset);
  errno = ENOSPC;
  return -1;
}

int fdatasync(int descriptor) {
  using namespace orven::testing;
  if (!IsFaulty(descriptor)) return static_cast<int>(syscall(SYS_fdatasync, descriptor));
  WaitAt(SIZE_MAX - 1);
  errno = disk.sync_error;
  return errno == 0 ? 0 : -1;
}
}
