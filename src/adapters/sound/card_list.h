// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace orven {

/// A sound card as a person chooses it.
struct SoundCard {
  std::int32_t number = 0;
  std::string description;
  bool operator==(const SoundCard&) const = default;
};

/// Numbers the sound cards: 0 is the desktop's default output, whatever that is, the single outputs
/// follow from 1 on. An output keeps its number as long as the list lives, also while it is unplugged.
/// Any thread.
class CardList {
 public:
  /// An output that is there: `id` is the same each time it comes.
  struct Output {
    std::string id;
    std::string description;
  };

  /// These outputs are there now, and no others. Outputs beyond the last number that a sound card can
  /// have are left out.
  void Update(const std::vector<Output>& outputs);

  /// Whether there is an input now.
  void SetRecords(bool records);

  /// Whether there is or was a card `number`. Before the first Update every number may be one.
  bool MayBe(std::int32_t number) const;

  /// False while it is known that there is no input.
  bool MayRecord() const;

  /// The id of card `number`, which is 1 or more and there.
  std::optional<std::string> IdOf(std::int32_t number) const;

  /// The cards that are there, in the order of their numbers; 0 always is.
  std::vector<SoundCard> Present() const;

 private:
  struct Known {
    Output output;
    bool present;
  };
  const Known* Find(std::int32_t number) const;

  mutable std::mutex mutex_;
  bool looked_ = false;
  bool may_record_ = true;
  std::vector<Known> known_;  ///< card n at n - 1
};

}  // namespace orven
