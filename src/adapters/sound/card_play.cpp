// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_play.h"

#include <utility>

namespace orven {

CardPlay::Got CardPlay::Read(std::span<std::int16_t> block) {
  const std::lock_guard lock(mutex_);
  if (source_ == nullptr) return Got::Stopped;
  last_read_ = Clock::now();
  if (source_->Read(block)) return Got::Block;
  source_ = nullptr;
  return Got::End;
}

void CardPlay::Stop() {
  const std::lock_guard lock(mutex_);
  source_ = nullptr;
}

bool CardPlay::Fail() {
  const std::lock_guard lock(mutex_);
  if (source_ == nullptr) return false;
  std::exchange(source_, nullptr)->Gone();
  return true;
}

bool CardPlay::Active() const {
  const std::lock_guard lock(mutex_);
  return source_ != nullptr;
}

std::chrono::milliseconds CardPlay::SinceLastRead() const {
  const std::lock_guard lock(mutex_);
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - last_read_);
}

}  // namespace orven
