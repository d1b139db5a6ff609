// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/telephone_events.h"

#include <cstddef>
#include <string_view>

namespace orven {
namespace {

/// Keys by event code (RFC 4733, section 3.2).
constexpr std::string_view kKeys = "0123456789*#ABCD";
constexpr std::size_t kPayloadBytes = 4;
constexpr std::uint8_t kEndBit = 0x80;

/// Senders that (wrongly) move the timestamp on within a press send its packets closer together than
/// this; nobody presses a key twice in so short a time.
constexpr std::chrono::milliseconds kSamePress{80};

/// A timestamp further back than this is not late: the sender started over.
constexpr std::int32_t kLatest = 5 * 8000;

}  // namespace

bool TelephoneEvents::Continues(const Event& next, bool marker) const {
  if (next.ssrc != current_->ssrc) return false;
  const auto step = static_cast<std::int32_t>(next.timestamp - current_->timestamp);
  if (step <= 0 && step > -kLatest) return true;
  if (marker || current_->ended || next.code != current_->code) return false;
  // A press longer than 8 s goes on as a new segment (section 2.5.1.3).
  return step == current_->duration || next.last - current_->last <= kSamePress;
}

TelephoneEvents::Result TelephoneEvents::Take(const RtpPacket& packet, Time now) {
  const auto& payload = packet.payload;
  if (payload.size() < kPayloadBytes || payload[0] >= kKeys.size()) return {};
  const Event next{.ssrc = packet.header.ssrc,
                   .code = payload[0],
                   .timestamp = packet.header.timestamp,
                   .duration = static_cast<std::uint16_t>(payload[2] << 8 | payload[3]),
                   .ended = (payload[1] & kEndBit) != 0,
                   .last = now};
  const char digit = kKeys[next.code];
  if (!current_ || !Continues(next, packet.header.marker)) {
    current_ = next;
    return {Kind::kPressed, digit};
  }
  if (static_cast<std::int32_t>(next.timestamp - current_->timestamp) < 0) return {};
  const bool was_ended = current_->ended;
  current_ = next;
  current_->ended = was_ended || next.ended;
  return {was_ended ? Kind::kNothing : Kind::kHeld, digit};
}

}  // namespace orven
