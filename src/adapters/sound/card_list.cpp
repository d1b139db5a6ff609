// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_list.h"

#include <algorithm>

#include "platform/audio_device.h"

namespace orven {

void CardList::Update(const std::vector<SoundDevice>& outputs) {
  const std::lock_guard lock(mutex_);
  looked_ = true;
  for (Known& known : known_) known.present = false;
  for (const SoundDevice& output : outputs) {
    const auto old =
        std::ranges::find_if(known_, [&](const Known& known) { return known.output.id == output.id; });
    if (old != known_.end()) {
      *old = {output, true};
    } else if (known_.size() + 1 < kFirstLineWaveDevice) {
      known_.push_back({output, true});
    }
  }
}

void CardList::SetRecords(bool records) {
  const std::lock_guard lock(mutex_);
  may_record_ = records;
}

bool CardList::MayRecord() const {
  const std::lock_guard lock(mutex_);
  return may_record_;
}

bool CardList::MayBe(std::int32_t number) const {
  const std::lock_guard lock(mutex_);
  if (number < 0 || number >= kFirstLineWaveDevice) return false;
  return !looked_ || static_cast<std::size_t>(number) <= known_.size();
}

std::string CardList::IdOf(std::int32_t number) const {
  const std::lock_guard lock(mutex_);
  const std::size_t index = static_cast<std::size_t>(number) - 1;  // beyond all for 0 and less
  return index < known_.size() && known_[index].present ? known_[index].output.id : std::string();
}

std::vector<std::string> CardList::Names() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names{"Default output"};
  for (const auto& [output, present] : known_) names.push_back(present ? output.description : "");
  return names;
}

}  // namespace orven
