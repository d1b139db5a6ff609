// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/audio/disk_faults.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace orven::testing {
namespace {

std::mutex registry_mutex;

std::vector<DiskFaults*>& Registry() {
  static std::vector<DiskFaults*> registry;
  return registry;
}

template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

DiskFaults::DiskFaults(const std::string& folder) : folder_(folder + "/") {
  const std::lock_guard lock(registry_mutex);
  Registry().push_back(this);
}

DiskFaults::~DiskFaults() {
  Release();
  const std::lock_guard lock(registry_mutex);
  std::erase(Registry(), this);
}

DiskFaults* DiskFaults::Of(int descriptor) {
  const std::lock_guard lock(registry_mutex);
  if (Registry().empty()) return nullptr;
  char path[4096];
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t length = readlink(link.c_str(), path, sizeof path);
  const std::string_view name(path, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
  for (DiskFaults* faults : Registry())
    if (name.starts_with(faults->folder_)) return faults;
  return nullptr;
}

void DiskFaults::LimitSize(std::optional<std::size_t> bytes) {
  const std::lock_guard lock(mutex_);
  limit_ = bytes;
}

void DiskFaults::FailSync(int error) {
  const std::lock_guard lock(mutex_);
  sync_error_ = error;
}

void DiskFaults::HoldReads(std::size_t offset) {
  const std::lock_guard lock(mutex_);
  hold_reads_ = true;
  reads_from_ = offset;
}

void DiskFaults::HoldSyncs() {
  const std::lock_guard lock(mutex_);
  hold_syncs_ = true;
}

void DiskFaults::Release() {
  std::unique_lock lock(mutex_);
  hold_reads_ = false;
  hold_syncs_ = false;
  released_.notify_all();
  released_.wait(lock, [this] { return holding_ == 0; });
}

bool DiskFaults::Holds() {
  const std::lock_guard lock(mutex_);
  return holding_ > 0;
}

void DiskFaults::Wait(std::unique_lock<std::mutex>& lock, const bool& held_back) {
  if (!held_back) return;
  ++holding_;
  released_.wait(lock, [&] { return !held_back; });
  --holding_;
  released_.notify_all();
}

void DiskFaults::BeforeRead(std::size_t offset) {
  std::unique_lock lock(mutex_);
  if (offset >= reads_from_) Wait(lock, hold_reads_);
}

std::size_t DiskFaults::Writable(std::size_t offset, std::size_t count) {
  const std::lock_guard lock(mutex_);
  if (!limit_) return count;
  return std::min(count, *limit_ - std::min(offset, *limit_));
}

int DiskFaults::BeforeSync() {
  std::unique_lock lock(mutex_);
  Wait(lock, hold_syncs_);
  return sync_error_;
}

}  // namespace orven::testing

// The program's own definitions come before the C library's, in its libraries, too.
extern "C" {

ssize_t read(int descriptor, void* data, size_t count) {
  using orven::testing::DiskFaults;
  static const auto real = orven::testing::Real<ssize_t(int, void*, size_t)>("read");
  if (DiskFaults* const faults = DiskFaults::Of(descriptor))
    faults->BeforeRead(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_CUR)));
  return real(descriptor, data, count);
}

ssize_t pwrite(int descriptor, const void* data, size_t count, off_t offset) {
  using orven::testing::DiskFaults;
  static const auto real = orven::testing::Real<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  if (DiskFaults* const faults = DiskFaults::Of(descriptor)) {
    count = faults->Writable(static_cast<std::size_t>(offset), count);
    if (count == 0) {
      errno = ENOSPC;
      return -1;
    }
  }
  return real(descriptor, data, count, offset);
}

int fdatasync(int descriptor) {
  using orven::testing::DiskFaults;
  static const auto real = orven::testing::Real<int(int)>("fdatasync");
  DiskFaults* const faults = DiskFaults::Of(descriptor);
  if (const int error = faults ? faults->BeforeSync() : 0; error != 0) {
    errno = error;
    return -1;
  }
  return real(descriptor);
}
}
