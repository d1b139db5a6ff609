// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/digits.h"

#include <spandsp.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace orven {
namespace {

/// Keys by event code (RFC 4733, section 3.2).
constexpr std::string_view kKeys = "0123456789*#ABCD";
constexpr std::size_t kPayloadBytes = 4;
constexpr std::uint8_t kEndBit = 0x80;

/// Some senders wrongly advance the timestamp within a press. Its packets are closer together than this, and
/// a person cannot press a key twice in so short a time.
constexpr std::chrono::milliseconds kSameEvent{80};

/// A timestamp further back than this is not a late packet: the sender started over.
constexpr std::int32_t kLatest = 5 * 8000;

/// The key that `text`, in lower case, names by its character or by its event code (10 to 15).
std::optional<char> Key(std::string_view text) {
  const std::size_t code = text.size() == 1 ? Lower(kKeys).find(text[0]) : std::string_view::npos;
  if (code != std::string_view::npos) return kKeys[code];
  if (text.size() != 2 || text[0] != '1' || text[1] < '0' || text[1] > '5') return std::nullopt;
  return kKeys[static_cast<std::size_t>(10 + text[1] - '0')];
}

/// Audio is played up to 0.2 s late, and a tone detected 0.05 s later; a SIP message may wait for the key's
/// release and one retransmission (0.5 s).
constexpr std::chrono::milliseconds kSamePress{1000};

/// Events repeat every 20 to 50 ms while a key is down (RFC 4733, section 2.5.1.2); a tone is heard up to
/// 0.16 s after it came.
constexpr std::chrono::milliseconds kStillDown{220};

/// More than a person can press within a second; bounds the work when a caller floods us.
constexpr std::size_t kMostPresses = 64;

constexpr unsigned Bit(DigitSource source) {
  return 1U << static_cast<unsigned>(source);
}

}  // namespace

bool TelephoneEvents::Continues(const Event& next, bool marker) const {
  if (next.ssrc != current_->ssrc) return false;
  const auto step = static_cast<std::int32_t>(next.timestamp - current_->timestamp);
  if (step <= 0 && step > -kLatest) return true;
  if (marker || current_->ended || next.code != current_->code) return false;
  // A press longer than 8 s continues as a new segment (section 2.5.1.3).
  return step == current_->duration || next.last - current_->last <= kSameEvent;
}

TelephoneEvents::Result TelephoneEvents::Take(const RtpPacket& packet, Time now) {
  const auto& payload = packet.payload;
  if (payload.size() < kPayloadBytes || payload[0] >= kKeys.size()) return {};
  const Event next{.ssrc = packet.header.ssrc,
                   .code = payload[0],
                   .timestamp = packet.header.ts,
                   .duration = static_cast<std::uint16_t>(payload[2] << 8 | payload[3]),
                   .ended = (payload[1] & kEndBit) != 0,
                   .last = now};
  const char digit = kKeys[next.code];
  if (!current_ || !Continues(next, packet.header.m)) {
    current_ = next;
    return {Kind::kPressed, digit};
  }
  if (static_cast<std::int32_t>(next.timestamp - current_->timestamp) < 0) return {};
  const bool was_ended = current_->ended;
  current_ = next;
  current_->ended = was_ended || next.ended;
  return {was_ended ? Kind::kNothing : Kind::kHeld, digit};
}

std::optional<char> DigitOfInfo(std::string_view body) {
  const std::string lower = Lower(body);
  std::string_view rest = lower;
  if (const auto signal = rest.find("signal"); signal != std::string_view::npos) {
    rest.remove_prefix(signal + 6);
    const auto equals = rest.find_first_not_of(" \t");
    if (equals == std::string_view::npos || rest[equals] != '=') return std::nullopt;
    rest = rest.substr(equals + 1);
    rest = rest.substr(0, rest.find_first_of("\r\n"));
  }
  return Key(Trimmed(rest));
}

DtmfDetector::DtmfDetector(std::function<void(char)> heard)
    : heard_(std::move(heard)), state_(dtmf_rx_init(nullptr, nullptr, nullptr), dtmf_rx_free) {}

void DtmfDetector::Listen(std::span<const std::int16_t> block) {
  dtmf_rx(state_.get(), block.data(), static_cast<int>(block.size()));
  std::array<char, MAX_DTMF_DIGITS + 1> digits{};
  const std::size_t count = dtmf_rx_get(state_.get(), digits.data(), MAX_DTMF_DIGITS);
  for (std::size_t i = 0; i < count; ++i) heard_(digits[i]);
}

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
