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
  const Known* const known = Find(number);
  return known == nullptr ? std::string() : known->output.id;
}

std::vector<SoundCard> CardList::Present() const {
  const std::lock_guard lock(mutex_);
  std::vector<SoundCard> cards{{0, "Default output"}};
  for (std::int32_t number = 1; number <= static_cast<std::int32_t>(known_.size()); ++number)
    if (const Known* const known = Find(number)) cards.push_back({number, known->output.description});
  return cards;
}

const CardList::Known* CardList::Find(std::int32_t number) const {
  if (number < 1 || static_cast<std::size_t>(number) > known_.size()) return nullptr;
  const Known& known = known_[static_cast<std::size_t>(number) - 1];
  return known.present ? &known : nullptr;
}

}  // namespace orven
