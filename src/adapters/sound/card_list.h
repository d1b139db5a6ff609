// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/sound/sound_devices.h"

namespace orven {

/// Numbers the sound cards: 0 is the desktop's current default output, the single outputs follow from 1 on.
/// An output keeps its number for the life of the list, also while it is unplugged. Any thread.
class CardList {
 public:
  /// Sets the connected outputs. Outputs beyond the last number of a sound card are left out.
  void Update(const std::vector<SoundDevice>& outputs);

  /// Whether there is an input now.
  void SetRecords(bool records);

  /// Whether card `number` is or was connected. True for every number before the first Update.
  bool MayBe(std::int32_t number) const;

  /// False while it is known that there is no input; true before.
  bool MayRecord() const;

  /// The id of card `number`, 1 or more; empty when it is not connected.
  std::string IdOf(std::int32_t number) const;

  /// The names of the cards, each at its number. That of an unplugged card says so.
  std::vector<std::string> Names() const;

 private:
  struct Known {
    SoundDevice output;
    bool present;
  };
  mutable std::mutex mutex_;
  bool looked_ = false;
  bool may_record_ = true;
  std::vector<Known> known_;  ///< card n at n - 1
};

}  // namespace orven
