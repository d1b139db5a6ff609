// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orven {

/// What the sound cards are called. User-interface thread; nothing waits.
class SoundCardNames {
 public:
  virtual ~SoundCardNames() = default;

  /// The names of the sound cards' outputs, as far as they are known now; the index is the card's number,
  /// the setting `Sound`. A card that is not there now keeps its place, and its name says so. Begins to
  /// look anew: a card that was just plugged in is in a later answer.
  virtual std::vector<std::string> Names() = 0;
};

}  // namespace orven
