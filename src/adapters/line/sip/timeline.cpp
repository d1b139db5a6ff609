// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/timeline.h"

#include <algorithm>
#include <iterator>
#include <span>
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
  if (!begun_) return;
  Leave(sink, 0s);
  if (now - spoken_ > kStall) Fill(SamplesIn(now - spoken_), false, sink);
  Write(sink);
  waiting_.clear();
  begun_ = false;
}

void TimeLine::Leave(AudioSink& sink, Time::duration patience) {
  while (!waiting_.empty()) {
    const auto [next, is_lost] = NextAudio();
    auto& [packet, payload, taken] = next->second;
    const bool is_audio = packet.samples > 0;
    if (is_first_ && is_audio) position_ = std::min(position_, packet.place);
    const std::int64_t gap = packet.place - position_;
    // Audio tells whether anything is missing before it; a key press may come before audio that is late.
    const bool has_gap = is_lost && (gap > 0 || !is_audio);
    if (has_gap && listened_ - waiting_.begin()->second.taken < patience) break;
    packet.payload = payload;
    if (is_audio && !(is_lost && Recover(packet, gap))) Fill(gap, is_lost, sink);
    Append(packet);
    waiting_.erase(waiting_.begin(), std::next(next));
  }
  Write(sink);
}

/// The first packet that waits and has audio, or the last one when none has, and whether packets are missing
/// before it. There is one that waits.
std::pair<TimeLine::Packets::iterator, bool> TimeLine::NextAudio() {
  auto next = waiting_.begin();
  bool is_lost = next->first != number_ + 1;
  while (next->second.packet.samples == 0 && std::next(next) != waiting_.end()) {
    const std::int64_t before = next->first;
    is_lost = (++next)->first != before + 1 || is_lost;
  }
  return {next, is_lost};
}

/// Closes a gap where packets were lost with what the next one repeats of them, if its codec does so.
bool TimeLine::Recover(const PlacedPacket& next, std::int64_t gap) {
  const std::size_t begin = complete_.size();
  if (gap <= 0 || !decoder_.Recover(next.codec, next.payload, static_cast<std::size_t>(gap), complete_))
    return false;
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
