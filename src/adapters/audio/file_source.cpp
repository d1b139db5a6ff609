// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/file_source.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kAhead = kSampleRate;            ///< decoded ahead at most: one second
constexpr std::size_t kRefillBelow = kSampleRate / 2;  ///< decode again below half a second
constexpr std::size_t kDecodeChunk = kSampleRate / 10;
static_assert(kDecodeChunk % kBlockSamples == 0, "so that only the end of a file gives a partial block");

/// The device's thread wakes the decoder without taking its lock, so a wake-up can fall between the
/// decoder's look and its sleep; it then looks again this much later, with half a second in stock.
constexpr auto kLookAgain = 50ms;

}  // namespace

FileSource::FileSource(std::unique_ptr<TelephoneDecoder> decoder, std::chrono::milliseconds start,
                       std::function<void()> on_ended)
    : decoder_(std::move(decoder)), start_(start), on_ended_(std::move(on_ended)), ring_(kAhead) {
  // A caller waits for the first sound; starting a thread takes longer than decoding it.
  if (start_.count() == 0) more_ = DecodeChunk();
  thread_ = std::thread([this] { Decode(); });
}

FileSource::~FileSource() {
  Cancel();
  thread_.join();
}

void FileSource::WhenReady(std::function<void()> on_ready) {
  const std::lock_guard lock(mutex_);
  if (ready_) return on_ready();
  on_ready_ = std::move(on_ready);
}

void FileSource::TellReady() {
  const std::lock_guard lock(mutex_);
  ready_ = true;
  if (const auto tell = std::exchange(on_ready_, nullptr)) tell();
}

void FileSource::Cancel() {
  {
    const std::lock_guard lock(mutex_);
    cancelled_ = true;
    on_ready_ = nullptr;
  }
  wake_.notify_one();
}

bool FileSource::Read(std::span<std::int16_t> block) {
  const bool all = decoded_all_.load(std::memory_order_acquire);  // before Size: then Size is final
  const std::size_t stock = ring_.Size();
  if (stock == 0 && all) {
    on_ended_();
    return false;
  }
  const std::size_t count = std::min(stock, block.size());
  ring_.Pop(block.first(count));
  std::fill(block.begin() + static_cast<std::ptrdiff_t>(count), block.end(), std::int16_t{0});
  samples_played_ += static_cast<std::int64_t>(count);
  if (!all && ring_.Size() < kRefillBelow) wake_.notify_one();
  return true;
}

std::chrono::milliseconds FileSource::Position() const {
  return start_ + std::chrono::milliseconds(samples_played_ * 1000 / kSampleRate);
}

void FileSource::Decode() {
  if (start_.count() != 0) more_ = decoder_->SkipTo(start_);
  while (more_ && WaitForRoom()) more_ = DecodeChunk();
  decoder_.reset();
  decoded_all_.store(true, std::memory_order_release);
  finished_.store(true, std::memory_order_release);
}

/// False when that was the last.
bool FileSource::DecodeChunk() {
  std::array<std::int16_t, kDecodeChunk> chunk;
  const std::size_t count = decoder_->Read(chunk);
  ring_.Push(std::span(chunk).first(count));
  TellReady();
  return count == chunk.size();
}

/// True when a chunk fits, false when the play has been cancelled.
bool FileSource::WaitForRoom() {
  if (ring_.Room() >= kDecodeChunk) return !cancelled_;
  std::unique_lock lock(mutex_);
  while (!cancelled_ && ring_.Size() >= kRefillBelow) wake_.wait_for(lock, kLookAgain);
  return !cancelled_;
}

}  // namespace orven
