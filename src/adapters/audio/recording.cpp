// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/recording.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "base/paths.h"

namespace orven {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

/// A killed program loses at most this and what the line still holds; a power failure also the time of a
/// sync: less than a second on a healthy disk. Each write is synced at once: one wake-up does both.
constexpr std::chrono::milliseconds kWriteEvery = 500ms;

/// Between attempts while no disk accepts the file; each attempt writes the whole file.
constexpr std::chrono::milliseconds kTryAgain = 2s;

/// Samples that the queue takes without allocating, while a sync delays the writer.
constexpr std::size_t kQueueReserve = std::size_t{10} * kSampleRate;

/// An unused name in `folder`.
std::string UnusedName(const std::string& folder, const std::string& stem) {
  const std::string start = folder + "/" + stem + ".unsaved-";
  std::error_code unknown;
  for (int n = 1;; ++n) {
    std::string path = start + std::to_string(n) + ".wav";
    if (!std::filesystem::exists(path, unknown)) return path;
  }
}

}  // namespace

Recording::Recording(Settings settings, LiveMonitor& monitor)
    : settings_(std::move(settings)),
      monitor_(monitor),
      image_(std::in_place, settings_.format),
      growing_(settings_.folders, settings_.name) {
  queue_.reserve(kQueueReserve);
  drained_.reserve(kQueueReserve);
  thread_ = std::thread([this] { Run(); });
}

Recording::~Recording() {
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    abandoned_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

void Recording::Hear(std::span<const std::int16_t> block, SteadyClock::time_point at) {
  level_.Hear(block, at);
  monitor_.Push(block);
}

void Recording::Write(std::span<const std::int16_t> samples) {
  const std::lock_guard lock(queue_mutex_);
  queue_.insert(queue_.end(), samples.begin(), samples.end());
}

Recording::Saved Recording::SaveAs(const std::string& path) {
  Saved saved;
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    path_ = path;
    DrainQueue();
    saved.result = Store(path);
    if (saved.result != kWaveOk) unsaved_ = !Keep();
    if (saved.result != kWaveOk && stored_) saved.kept = stored_->Path();
  }
  wake_.notify_one();
  return saved;
}

/// A file that grew on the destination's file system is only renamed. When that fails, writing the file there
/// gives the result.
std::int32_t Recording::Store(const std::string& path) {
  if (settings_.to_disk && growing_.Update(*image_) == kWaveOk &&
      growing_.File()->RenameTo(path) == kWaveOk) {
    stored_ = growing_.File();
    return kWaveOk;
  }
  std::shared_ptr<DiskFile> fresh;
  std::int32_t result = WriteWhole(FolderOf(path), settings_.name, image_->Bytes(), fresh);
  if (result != kWaveOk) return result;
  result = fresh->Sync();  // before it replaces anything
  if (result == kWaveOk) result = fresh->RenameTo(path);
  if (result != kWaveOk) {
    fresh->Remove();
    return result;
  }
  growing_.Discard();
  stored_ = std::move(fresh);
  return kWaveOk;
}

/// Stores the recording at its intended path, unless a file exists there now.
bool Recording::StoreLate() {
  std::error_code unknown;
  return !std::filesystem::exists(path_, unknown) && Store(path_) == kWaveOk;
}

/// Keeps the recording as a playable file in one of the folders; false when none accepts it.
bool Recording::Keep() {
  if (growing_.Update(*image_) != kWaveOk) return false;
  stored_ = growing_.File();
  stored_->RenameTo(
      UnusedName(FolderOf(stored_->Path()),
                 std::filesystem::path(path_).stem().string()));  // when that fails, the old name is fine
  return true;
}

void Recording::Run() {
  Lock lock(mutex_);
  if (settings_.to_disk) Grow(lock);
  wake_.wait(lock, [this] { return ended_; });
  Finish(lock);
  image_.reset();
  finished_.store(true, std::memory_order_release);
}

void Recording::DrainQueue() {
  {
    const std::lock_guard lock(queue_mutex_);
    drained_.swap(queue_);
  }
  image_->Append(drained_);
  drained_.clear();
}

/// Updates the file until the recording ends.
void Recording::Grow(Lock& lock) {
  std::shared_ptr<DiskFile> named;  // the file whose name is durable
  while (!ended_) {
    const auto begin = SteadyClock::now();
    DrainQueue();
    const bool written = !image_->HasSound() || growing_.Update(*image_) == kWaveOk;
    Sync(lock, growing_.File(), growing_.File() != named);
    named = growing_.File();
    if (!ended_ && std::exchange(sync_failed_, false)) growing_.Distrust();
    wake_.wait_until(lock, begin + (written ? kWriteEvery : kTryAgain), [this] { return ended_; });
  }
}

/// Work that can wait until SaveAs has returned, or the last attempt in the destructor.
void Recording::Finish(Lock& lock) {
  while (unsaved_) {
    wake_.wait_for(lock, kTryAgain, [this] { return abandoned_; });
    unsaved_ = !StoreLate() && !Keep();
    if (abandoned_) break;  // this was the last attempt
  }
  if (!stored_ && settings_.to_disk) {  // SaveAs was not called
    DrainQueue();
    if (image_->HasSound()) growing_.Update(*image_);
    stored_ = growing_.File();
  }
  Sync(lock, stored_, true);
  if (!sync_failed_ || settings_.folders.empty()) return;
  growing_ = GrowingFile({settings_.folders.back()},
                         settings_.name);  // a second copy, in case the first is damaged
  Keep();
  Sync(lock, stored_, true);
}

/// Releases the lock meanwhile: SaveAs must not wait for the disk.
void Recording::Sync(Lock& lock, const std::shared_ptr<DiskFile>& file, bool name_too) {
  if (!file) return;
  const std::string folder = FolderOf(file->Path());
  lock.unlock();
  const bool safe = file->Sync() == kWaveOk;
  if (name_too) SyncFolder(folder);  // fails only on file systems that do not need it
  lock.lock();
  if (!safe) sync_failed_ = true;
}

}  // namespace orven
