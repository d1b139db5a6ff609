// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/digit_merger.h"

#include <algorithm>
#include <cstddef>

namespace orven {
namespace {

/// Sound is played out up to 0.2 s late, its tone detected 0.05 s later; a SIP message may wait for
/// the key's release and one retransmission (0.5 s).
constexpr std::chrono::milliseconds kSamePress{1000};

/// Events repeat every 20 to 50 ms while a key is down (RFC 4733, section 2.5.1.2).
constexpr std::chrono::milliseconds kStillDown{120};

/// Nobody presses more keys within a second; who pretends to is not to keep us busy with it.
constexpr std::size_t kMostPresses = 64;

constexpr unsigned Bit(DigitSource source) {
  return 1U << static_cast<unsigned>(source);
}

}  // namespace

bool DigitMerger::Report(DigitSource source, char digit, Time now) {
  Forget(now);
  for (Press& press : presses_) {
    if (press.digit != digit) continue;
    const bool torn_tone = source == DigitSource::kInBand && press.held && now - press.last <= kStillDown;
    if ((press.sources & Bit(source)) != 0 && !torn_tone) continue;
    press.sources |= Bit(source);
    press.last = std::max(press.last, now);
    return false;
  }
  if (presses_.size() == kMostPresses) presses_.pop_front();
  presses_.push_back({digit, Bit(source), now, false});
  return true;
}

void DigitMerger::Held(DigitSource source, Time now) {
  const auto latest = std::find_if(presses_.rbegin(), presses_.rend(), [source](const Press& press) {
    return (press.sources & Bit(source)) != 0;
  });
  if (latest == presses_.rend()) return;
  latest->last = now;
  latest->held = true;
}

void DigitMerger::Forget(Time now) {
  std::erase_if(presses_, [now](const Press& press) { return now - press.last > kSamePress; });
}

}  // namespace orven
