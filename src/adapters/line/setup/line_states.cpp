// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/line_states.h"

namespace orven {

void RegistrationState::Take(const RegistrationNews& news) {
  const std::lock_guard lock(mutex_);
  latest_ = news;
}

RegistrationNews RegistrationState::Latest() const {
  const std::lock_guard lock(mutex_);
  return latest_;
}

void ModemState::Take(const std::string& words) {
  const std::lock_guard lock(mutex_);
  latest_ = words;
}

std::string ModemState::Latest() const {
  const std::lock_guard lock(mutex_);
  return latest_;
}

const LineStates::Device& LineStates::Add(const LineSection& section) {
  devices_.push_back({.section = section});
  return devices_.back();
}

}  // namespace orven
