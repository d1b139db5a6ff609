// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/story.h"

#include <algorithm>
#include <sstream>

namespace orven::test {

void Story::Close() {
  std::stable_sort(steps.begin(), steps.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
  std::size_t number = 0;
  for (auto& step : steps) step.number = ++number;
}

std::chrono::milliseconds Writer::Moment() {
  using std::chrono::milliseconds;
  if (OneIn(2)) return begin + milliseconds(Below(9000));
  const int tenths = Below(90);
  return begin + std::max(milliseconds(0), milliseconds(tenths * 100 + Below(3) - 1));
}

std::string Story::Script() const {
  std::ostringstream text;
  for (const auto& step : steps) {
    text << "  [" << step.number << "] ";
    if (step.at >= std::chrono::milliseconds(0)) text << step.at.count() << " ms: ";
    text << step.what << '\n';
  }
  return text.str();
}

}  // namespace orven::test
