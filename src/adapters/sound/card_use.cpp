// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_use.h"

#include <utility>

namespace orven {

CardPlay::Got CardPlay::Read(std::span<std::int16_t> block) {
  const std::lock_guard lock(mutex_);
  if (client_ == nullptr) return Got::Stopped;
  last_block_ = Clock::now();
  if (client_->Read(block)) return Got::Block;
  client_ = nullptr;
  return Got::End;
}

bool CardPlay::Fail() {
  const std::lock_guard lock(mutex_);
  if (client_ == nullptr) return false;
  std::exchange(client_, nullptr)->Gone();
  return true;
}

bool CardTake::Write(std::span<const std::int16_t> block) {
  const std::lock_guard lock(mutex_);
  if (client_ == nullptr) return false;
  last_block_ = Clock::now();
  client_->Hear(block, last_block_);
  client_->Write(block);
  return true;
}

bool CardTake::Fail() {
  const std::lock_guard lock(mutex_);
  return std::exchange(client_, nullptr) != nullptr;
}

}  // namespace orven
