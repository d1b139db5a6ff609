// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace orven::test {

/// Draws that depend on nothing but the seed (the standard's distributions differ by library).
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}
  int Below(int bound) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(bound)); }
  bool OneIn(int chances) { return Below(chances) == 0; }
  template <class... Choice>
  std::string OneOf(Choice... choices) {
    const std::string all[] = {choices...};
    return all[Below(static_cast<int>(sizeof...(choices)))];
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace orven::test
