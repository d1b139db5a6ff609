// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/placement.h"

#include <algorithm>

#include "platform/audio_device.h"

namespace orven {
namespace {

using std::chrono_literals::operator""s;

/// A larger step forward is a sequence that started over (RFC 3550, appendix A.1).
constexpr std::int64_t kDropout = 3'000;

/// After this many misfits in a row the sequence started over shortly before its newest packet.
constexpr int kMostMisfits = 25;

/// The shortest way is that of the last 2 to 4 seconds.
constexpr auto kWindow = 2s;

/// Packets that a network held back for seconds come at once; no audio is further ahead of our clock than
/// this and a thousandth, far more than clocks differ. Bounds what a flood or a broken sender adds to a
/// recording.
constexpr std::int64_t kMostAhead = 5 * kSampleRate;

/// Audio that was lost by the sequence numbers needs no other proof unless it would be this early.
constexpr std::int64_t kImpossible = kSampleRate;

}  // namespace

std::optional<PlacedPacket> Placement::Place(const rtp_header& header, std::optional<Codec> codec,
                                             std::span<const std::uint8_t> payload, Time arrived) {
  const std::size_t samples = codec ? SamplesIn(*codec, payload) : 0;
  const auto number = NumberOf(header, samples > 0, arrived);
  if (!number) return std::nullopt;
  Known packet{.number = *number,
               .ssrc = header.ssrc,
               .timestamp = header.ts,
               .rate = codec ? ClockRate(*codec) : 0,
               .samples = static_cast<std::int64_t>(samples)};
  const Known* const same = Find(*number);
  if (same != nullptr && same->timestamp == packet.timestamp) return std::nullopt;
  auto place = same == nullptr ? PlaceFor(packet, arrived) : std::nullopt;
  if (!place) {
    if (++misfits_ < kMostMisfits) return std::nullopt;
    packet.number = StartOver(header);
    place = PlaceFor(packet, arrived);
  }
  packet.place = *place;
  const std::int64_t elapsed = Elapsed(arrived);
  if (packet.End() > elapsed + elapsed / 1000 + kMostAhead) return std::nullopt;
  Remember(packet, arrived);
  return PlacedPacket{packet.number, packet.place, packet.samples, codec.value_or(Codec::kMuLaw),
                      payload,       arrived};
}

std::int64_t Placement::Clock(Time at) const {
  return Elapsed(at) - std::min(shortest_, shortest_before_);
}

std::int64_t Placement::Elapsed(Time at) const {
  using Samples = std::chrono::duration<std::int64_t, std::ratio<1, kSampleRate>>;
  return std::chrono::duration_cast<Samples>(at - start_).count();
}

/// Nothing when the packet is not of `source`.
std::optional<std::int64_t> Placement::StepTo(const std::optional<Source>& source, const rtp_header& header) {
  if (!source || source->ssrc != header.ssrc) return std::nullopt;
  const auto step = static_cast<std::int16_t>(header.seq - source->sequence);
  return step > -kMemory && step < kDropout ? std::optional<std::int64_t>(step) : std::nullopt;
}

std::optional<std::int64_t> Placement::NumberOf(const rtp_header& header, bool is_audio, Time arrived) {
  if (const auto step = StepTo(source_, header)) {
    const std::int64_t number = source_->number + *step;
    if (*step > 0) source_->number = number, source_->sequence = header.seq;
    return number >= source_->first ? std::optional(number) : std::nullopt;
  }
  if (const auto step = StepTo(source_before_, header)) {
    const std::int64_t number = source_before_->number + *step;
    if (*step <= 0) return number >= source_before_->first ? std::optional(number) : std::nullopt;
    // Under way when the new source began, or a second stream beside it.
    if (!Pauses(arrived)) return std::nullopt;
  }
  return is_audio ? std::optional(StartOver(header)) : std::nullopt;
}

std::int64_t Placement::StartOver(const rtp_header& header) {
  source_before_ = source_;
  source_ = Source{header.ssrc, header.seq, number_ + 1, number_ + 1};
  return number_ + 1;
}

std::optional<std::int64_t> Placement::PlaceFor(const Known& packet, Time arrived) const {
  if (packet.samples > 0) return packet.number > newest_.number ? Next(packet, arrived) : Between(packet);
  const Known* const before = AudioBeside(packet.number, -1);
  return before != nullptr ? before->End() : newest_.End();
}

/// The place of audio newer than all before.
std::int64_t Placement::Next(const Known& packet, Time arrived) const {
  if (newest_.number == 0) return Clock(arrived);
  const std::int64_t lost = Missing(packet.number) * newest_.samples;
  if (!newest_.SharesClock(packet)) return Behind(0, arrived);
  const std::int64_t place = newest_.ByTimestamp(packet);
  const std::int64_t pause = place - newest_.End() - lost;
  const std::int64_t early = place - Clock(arrived);
  const bool is_true = place >= newest_.End() && early <= (pause > 0 ? pause / 2 : kImpossible);
  return is_true ? place : Behind(lost, arrived);
}

/// After the newest audio and what was lost since, if there was time for it to be sent.
std::int64_t Placement::Behind(std::int64_t lost, Time arrived) const {
  const std::int64_t clock = Clock(arrived);
  const bool had_time = newest_.End() + lost - clock <= lost / 2;
  const std::int64_t place = newest_.End() + (had_time ? lost : 0);
  return Pauses(arrived) ? std::max(place, clock) : place;
}

/// The place of late audio, in the gap between its neighbours; nothing when it does not fit there.
std::optional<std::int64_t> Placement::Between(const Known& packet) const {
  const Known* const before = AudioBeside(packet.number, -1);
  const Known* const after = AudioBeside(packet.number, 1);
  if (before == nullptr || after == nullptr) return std::nullopt;
  const std::int64_t in_order = before->End() + (packet.number - before->number - 1) * packet.samples;
  for (const std::int64_t place :
       {before->SharesClock(packet) ? before->ByTimestamp(packet) : in_order,
        after->SharesClock(packet) ? after->ByTimestamp(packet) : in_order, in_order}) {
    if (place >= before->End() && place + packet.samples <= after->place) return place;
  }
  return std::nullopt;
}

const Placement::Known* Placement::Find(std::int64_t number) const {
  const Known& known = known_[static_cast<std::size_t>(number % kMemory)];
  return known.number == number ? &known : nullptr;
}

const Placement::Known* Placement::AudioBeside(std::int64_t number, int direction) const {
  for (std::int64_t i = 1; i < kMemory; ++i) {
    const std::int64_t next = number + i * direction;
    if (next < 1 || next > number_) return nullptr;
    const Known* const known = Find(next);
    if (known != nullptr && known->samples > 0) return known;
  }
  return nullptr;
}

/// How many packets between the newest audio and the packet `before` have not come.
std::int64_t Placement::Missing(std::int64_t before) const {
  std::int64_t missing = before - newest_.number - 1;
  for (std::int64_t number = std::max(newest_.number + 1, before - kMemory); number < before; ++number)
    missing -= Find(number) != nullptr ? 1 : 0;
  return missing;
}

std::int64_t Placement::Known::ByTimestamp(const Known& other) const {
  return place + std::int64_t{static_cast<std::int32_t>(other.timestamp - timestamp)} * kSampleRate / rate;
}

void Placement::Remember(const Known& packet, Time arrived) {
  known_[static_cast<std::size_t>(packet.number % kMemory)] = packet;
  number_ = std::max(number_, packet.number);
  if (packet.samples == 0) return;
  arrived_ = std::max(arrived_, arrived);
  if (packet.number <= newest_.number) return;
  newest_ = packet;
  misfits_ = 0;
  const std::int64_t way = Elapsed(arrived) - packet.place;
  if (arrived - since_ > kWindow) {
    shortest_before_ = shortest_;
    shortest_ = way;
    since_ = arrived;
  }
  shortest_ = std::min(shortest_, way);
}

}  // namespace orven
