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

std::shared_ptr<RegistrationState> LineStates::Add(const LineSection& section) {
  devices_.push_back({section, std::make_shared<RegistrationState>()});
  return devices_.back().registration;
}

}  // namespace orven
