// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/timeline.h"

#include <algorithm>
#include <utility>

namespace orven {
namespace {

using std::chrono_literals::operator""s;
using std::chrono_literals::operator""ms;

/// How long a gap waits for its packets while others come.
constexpr auto kPatience = 1s;

/// While nothing comes for longer than this, the waiting time stands still.
constexpr auto kStall = 200ms;

/// The most that is written at once, so that a long pause takes no memory.
constexpr std::int64_t kPiece = kSampleRate;

std::int64_t SamplesIn(TimeLine::Time::duration time) {
  using Samples = std::chrono::duration<std::int64_t, std::ratio<1, kSampleRate>>;
  return std::chrono::duration_cast<Samples>(time).count();
}

}  // namespace

void TimeLine::Begin(const Placement& placement, Time now) {
  waiting_.clear();
  number_ = placement.Number();
  position_ = placement.Pauses(now) ? placement.Clock(now) : placement.End();
  begun_ = is_first_ = true;
  arrived_ = spoken_ = now;
  concealer_.Restart();
}

void TimeLine::Take(const PlacedPacket& packet) {
  if (packet.number <= number_) return;
  listened_ += std::clamp<Time::duration>(packet.arrived - arrived_, 0s, kStall);
  arrived_ = std::max(arrived_, packet.arrived);
  if (packet.samples > 0) spoken_ = arrived_;
  if (waiting_.empty() && packet.number == number_ + 1 && packet.place == position_) return Append(packet);
  waiting_.try_emplace(packet.number,
                       Waiting{packet, {packet.payload.begin(), packet.payload.end()}, listened_});
}

void TimeLine::PassOn(AudioSink& sink) {
  Leave(sink, kPatience);
}

void TimeLine::Finish(Time now, AudioSink& sink) {
  Leave(sink, 0s);
  if (now - spoken_ > kStall) Fill(SamplesIn(now - spoken_), false, sink);
  Write(sink);
  waiting_.clear();
  begun_ = false;
}

void TimeLine::Leave(AudioSink& sink, Time::duration patience) {
  while (!waiting_.empty()) {
    auto& [packet, payload, taken] = waiting_.begin()->second;
    if (is_first_ && packet.samples > 0) position_ = std::min(position_, packet.place);
    const std::int64_t gap = packet.place - position_;
    const bool is_lost = packet.number != number_ + 1;
    if (gap > 0 && is_lost && listened_ - taken < patience) break;
    if (packet.samples > 0 && !(is_lost && Recover(packet.codec, payload, gap))) Fill(gap, is_lost, sink);
    packet.payload = payload;
    Append(packet);
    waiting_.erase(waiting_.begin());
  }
  Write(sink);
}

/// Closes a gap where packets were lost with what the next one repeats of them, if its codec does so.
bool TimeLine::Recover(Codec codec, std::span<const std::uint8_t> next, std::int64_t gap) {
  const std::size_t begin = complete_.size();
  if (gap <= 0 || !decoder_.Recover(codec, next, static_cast<std::size_t>(gap), complete_)) return false;
  concealer_.Follow(std::span(complete_).subspan(begin));
  return true;
}

/// Closes a gap with silence or, where packets were lost, with what may have been said.
void TimeLine::Fill(std::int64_t gap, bool is_lost, AudioSink& sink) {
  if (gap > 0 && !is_lost) concealer_.Restart();
  while (gap > 0) {
    const auto piece = static_cast<std::size_t>(std::min(gap, kPiece));
    if (is_lost) {
      concealer_.Conceal(piece, complete_);
    } else {
      complete_.resize(complete_.size() + piece);
    }
    gap -= static_cast<std::int64_t>(piece);
    if (gap > 0) Write(sink);
  }
}

void TimeLine::Append(const PlacedPacket& packet) {
  number_ = packet.number;
  if (packet.samples == 0) return;
  const std::size_t begin = complete_.size();
  decoder_.Decode(packet.codec, packet.payload, complete_);
  concealer_.Follow(std::span(complete_).subspan(begin));
  position_ = packet.place + packet.samples;
  is_first_ = false;
}

void TimeLine::Write(AudioSink& sink) {
  if (!complete_.empty()) sink.Write(complete_);
  complete_.clear();
}

}  // namespace orven
