// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace orven {

/// Keeps as many file descriptors as a call needs, so that a stranger who holds all others by
/// idle connections cannot keep calls away: the descriptors that are released are the next ones given.
class DescriptorReserve {
 public:
  DescriptorReserve() {
    held_.fill(kNone);
    Fill();
  }
  ~DescriptorReserve() { Release(); }
  DescriptorReserve(const DescriptorReserve&) = delete;
  DescriptorReserve& operator=(const DescriptorReserve&) = delete;

  /// Takes what is missing; idempotent.
  void Fill();

  /// Gives them free for whoever opens something next; idempotent.
  void Release();

 private:
  static constexpr int kNone = -1;
  std::array<int, 8> held_;  ///< a call takes two ports and three timers, and one more for a moment
};

}  // namespace orven
