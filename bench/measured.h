// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace orven::bench {

/// The durations of all runs of an operation, in milliseconds.
using Times = std::vector<double>;

/// Runs `operation` once to warm up, then measures `count` runs; `prepare` runs before each of them and is
/// not measured.
template <class Operation, class Prepare>
Times Measure(int count, Operation operation, Prepare prepare) {
  using Clock = std::chrono::steady_clock;
  Times times;
  for (int i = -1; i < count; ++i) {
    prepare();
    const auto begin = Clock::now();
    operation();
    const std::chrono::duration<double, std::milli> took = Clock::now() - begin;
    if (i >= 0) times.push_back(took.count());
  }
  return times;
}

template <class Operation>
Times Measure(int count, Operation operation) {
  return Measure(count, operation, [] {});
}

inline double Median(Times times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

inline double Worst(const Times& times) {
  return *std::max_element(times.begin(), times.end());
}

inline void PrintTimes(const char* what, const Times& times) {
  std::printf("  %-34s median %9.3f ms   worst %9.3f ms   of %zu\n", what, Median(times), Worst(times),
              times.size());
}

}  // namespace orven::bench
