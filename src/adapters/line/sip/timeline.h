// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "adapters/line/sip/codec.h"
#include "adapters/line/sip/concealer.h"
#include "adapters/line/sip/placement.h"
#include "platform/audio_device.h"

namespace orven {

/// What is kept of a call's received audio: every packet at its place, however late it came. What has no gap
/// before it is passed on at once. At a gap it waits for the missing packets: until audio has come for a
/// second after it, and longer while nothing comes at all, since a sender that stalls has lost nothing. Only
/// what never came is concealed; a pause of the sender is silence. Not for several threads at once.
class TimeLine {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// A recording begins after the packets placed so far, at `now`.
  void Begin(const Placement& placement, Time now);
  bool Begun() const { return begun_; }

  /// Takes the next packet that was placed. Begun only.
  void Take(const PlacedPacket& packet);

  /// Writes what has no gap before it. Begun only.
  void PassOn(AudioSink& sink);

  /// Writes all that has come, and silence up to `now` if the sender pauses. The recording is over. Nothing
  /// happens if it has not begun.
  void Finish(Time now, AudioSink& sink);

  /// Packets beyond a gap wait.
  bool Waits() const { return !waiting_.empty(); }

 private:
  struct Waiting {
    PlacedPacket packet;
    std::vector<std::uint8_t> payload;
    Time::duration taken{};  ///< when, by `listened_`
  };

  using Packets = std::map<std::int64_t, Waiting>;

  void Leave(AudioSink& sink, Time::duration patience);
  std::pair<Packets::iterator, bool> NextAudio();
  bool Recover(const PlacedPacket& next, std::int64_t gap);
  void Fill(std::int64_t gap, bool is_lost, AudioSink& sink);
  void Append(const PlacedPacket& packet);
  void Write(AudioSink& sink);

  bool begun_ = false;
  Packets waiting_;            ///< by number
  std::int64_t number_ = 0;    ///< the latest packet passed on
  std::int64_t position_ = 0;  ///< the place up to which audio was passed on
  bool is_first_ = true;       ///< no audio was passed on
  Time arrived_;               ///< when the latest packet came
  Time spoken_;                ///< when audio came last, at first the beginning
  Time::duration listened_{};  ///< grows only while packets come
  Decoder decoder_;
  Concealer concealer_;
  std::vector<std::int16_t> complete_;  ///< not yet written
};

}  // namespace orven
