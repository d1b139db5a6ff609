// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/audio/audio_test.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>

namespace orven::testing {
namespace {

bool IsFaulty(int descriptor) {
  std::array<char, 4096> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  return !disk.folder.empty() && readlink(link.c_str(), path.data(), path.size() - 1) > 0 &&
         std::string(path.data()).starts_with(disk.folder);
}

void WaitWhile(auto& value, auto holds) {
  if (!holds(value.load())) return;
  ++disk.held;
  for (auto now = value.load(); holds(now); now = value.load()) value.wait(now);
  --disk.held;
  disk.held.notify_all();
}

}  // namespace

Samples Noise(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  Samples samples(count);
  for (auto& sample : samples) sample = static_cast<std::int16_t>(random());
  return samples;
}

Samples Read(const std::string& path) {
  const std::string bytes =
      Printed("sox -D '" + path + "' -t raw -e signed -b 16 -r 8000 -c 1 - 2>/dev/null");
  Samples samples(bytes.size() / 2);
  std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
  return samples;
}

std::string Printed(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string text;
  std::array<char, 4096> piece;
  while (const auto got = fread(piece.data(), 1, piece.size(), pipe.get())) text.append(piece.data(), got);
  return text;
}

void FaultyDisk::Mend() {
  limit = SIZE_MAX;
  sync_error = 0;
  hold_reads_from = SIZE_MAX;
  hold_reads_from.notify_all();
  hold_syncs = false;
  hold_syncs.notify_all();
  for (int now = held; now != 0; now = held) held.wait(now);
}

std::optional<Samples> TestDevice::Pull() {
  const std::lock_guard lock(mutex_);
  Samples block(kBlockSamples, 1);
  if (source != nullptr && source->Read(block)) return block;
  source = nullptr;
  return std::nullopt;
}

Samples TestDevice::PlayToEnd() {
  Samples played;
  for (auto block = Pull(); block; block = Pull())
    if (*block != kSilence) played.insert(played.end(), block->begin(), block->end());
  return played;
}

void TestDevice::Capture(const Samples& samples) {
  for (std::size_t at = 0; at < samples.size(); at += kBlockSamples) {
    const std::lock_guard lock(mutex_);
    if (sink != nullptr) sink->Write(std::span(samples).subspan(at, kBlockSamples));
  }
}

std::vector<std::string> TempFolder::Names(const std::string& suffix) const {
  std::vector<std::string> names;
  std::error_code gone;  // a missing folder has no names
  for (const auto& entry : std::filesystem::directory_iterator(Path(), gone))
    if (entry.path().string().ends_with(suffix)) names.push_back(entry.path().filename());
  return names;
}

}  // namespace orven::testing

// The program's own definitions take precedence over the C library's, in shared libraries too.
extern "C" {

ssize_t read(int descriptor, void* data, size_t count) {
  using namespace orven::testing;
  if (IsFaulty(descriptor)) {
    const auto offset = static_cast<std::size_t>(lseek(descriptor, 0, SEEK_CUR));
    WaitWhile(disk.hold_reads_from, [offset](std::size_t from) { return offset >= from; });
  }
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
  WaitWhile(disk.hold_syncs, [](bool hold) { return hold; });
  errno = disk.sync_error;
  return errno == 0 ? 0 : -1;
}
}
