// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_take.h"

#include <utility>

namespace orven {

bool CardTake::Write(std::span<const std::int16_t> block) {
  const std::lock_guard lock(mutex_);
  if (client_ == nullptr) return false;
  last_block_ = Clock::now();
  client_->Write(block);
  return true;
}

bool CardTake::Fail() {
  const std::lock_guard lock(mutex_);
  return std::exchange(client_, nullptr) != nullptr;
}

}  // namespace orven
