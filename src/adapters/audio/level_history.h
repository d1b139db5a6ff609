// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace orven {

/// How loud the latest blocks of a recording were, and when they came: 256 of them, five seconds. One thread
/// at a time.
class LevelHistory {
 public:
  using Time = std::chrono::steady_clock::time_point;

  void Add(std::int32_t level, Time at) { blocks_[count_++ % blocks_.size()] = {at, level}; }

  /// When the latest block louder than `level` came.
  std::optional<Time> LatestLouder(std::int32_t level) const {
    const std::size_t kept = count_ < blocks_.size() ? count_ : blocks_.size();
    for (std::size_t back = 1; back <= kept; ++back) {
      const Block& block = blocks_[(count_ - back) % blocks_.size()];
      if (block.level > level) return block.at;
    }
    return std::nullopt;
  }

 private:
  struct Block {
    Time at;
    std::int32_t level = 0;
  };
  std::array<Block, 256> blocks_{};
  std::size_t count_ = 0;
};

}  // namespace orven
