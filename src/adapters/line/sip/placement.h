// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>

#include "adapters/line/sip/codec.h"
#include "adapters/line/sip/libre.h"

namespace orven {

/// A received packet on the call's time line.
struct PlacedPacket {
  std::int64_t number = 0;   ///< in the order of sending; never wraps or starts over
  std::int64_t place = 0;    ///< where it begins, in samples at 8000 Hz since the call's audio began
  std::int64_t samples = 0;  ///< 0: no audio (a key press, comfort noise), but nothing is missing either
  Codec codec = Codec::kMuLaw;
  std::span<const std::uint8_t> payload;  ///< of audio
  std::chrono::steady_clock::time_point arrived{};
};

/// Decides where on the time line each received packet belongs. The sender's timestamps count (RFC 3550,
/// section 5.1) as long as they can be true:
/// - A step that the sequence numbers do not explain is a pause of the sender, unless the packet would then
///   have come before it was sent: then the sender's clock has jumped, and the packet follows those before.
/// - Timestamps that stand still or go back while the sequence goes on: each packet follows the one before.
/// - A new source, or a sequence that starts over, goes on at the end, plus the pause by our clock if it
///   was longer than 200 ms.
/// Packets with growing numbers have growing places and do not overlap. For one thread.
class Placement {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// Place 0 is at `start`.
  explicit Placement(Time start) : start_(start), since_(start) {}

  /// The place of a packet; without a codec it is no audio. Nothing for doubles, for a source that another
  /// one has replaced, and for more audio than can have been spoken.
  std::optional<PlacedPacket> Place(const rtp_header& header, std::optional<Codec> codec,
                                    std::span<const std::uint8_t> payload, Time arrived);

  std::int64_t Number() const { return number_; }     ///< of the newest packet; 0: none has come
  std::int64_t End() const { return newest_.End(); }  ///< of the newest audio

  /// The latest place that audio arriving at `at` can have: with the shortest way seen in the last seconds.
  std::int64_t Clock(Time at) const;

  /// No audio has come for longer than packets are late on a sound network.
  bool Pauses(Time at) const { return number_ == 0 || at - arrived_ > kPause; }

 private:
  static constexpr std::chrono::milliseconds kPause{200};

  /// Packets that are remembered: 10 s of the usual 20 ms. No network delays one for longer.
  static constexpr std::int64_t kMemory = 512;

  /// A sequence of packets: its latest one, and the number of its first.
  struct Source {
    std::uint32_t ssrc = 0;
    std::uint16_t sequence = 0;
    std::int64_t number = 0;
    std::int64_t first = 0;
  };

  struct Known {
    std::int64_t number = 0;  ///< 0: none
    std::uint32_t ssrc = 0;
    std::uint32_t timestamp = 0;
    int rate = 0;
    std::int64_t samples = 0;
    std::int64_t place = 0;

    std::int64_t End() const { return place + samples; }
    bool SharesClock(const Known& other) const { return ssrc == other.ssrc && rate == other.rate; }
    /// Where `other` is by its timestamp; they share a clock.
    std::int64_t ByTimestamp(const Known& other) const;
  };

  static std::optional<std::int64_t> StepTo(const std::optional<Source>& source, const rtp_header& header);
  std::optional<std::int64_t> NumberOf(const rtp_header& header, bool is_audio, Time arrived);
  std::int64_t StartOver(const rtp_header& header);
  std::optional<std::int64_t> PlaceFor(const Known& packet, Time arrived) const;
  std::int64_t Next(const Known& packet, Time arrived) const;
  std::int64_t Behind(std::int64_t lost, Time arrived) const;
  std::optional<std::int64_t> Between(const Known& packet) const;
  const Known* Find(std::int64_t number) const;
  const Known* AudioBeside(std::int64_t number, int direction) const;
  std::int64_t Missing(std::int64_t before) const;
  std::int64_t Elapsed(Time at) const;
  void Remember(const Known& packet, Time arrived);

  const Time start_;
  std::optional<Source> source_;
  std::optional<Source> source_before_;
  std::array<Known, kMemory> known_{};
  std::int64_t number_ = 0;
  Known newest_;     ///< the newest audio
  Time arrived_{};   ///< when audio came last
  int misfits_ = 0;  ///< packets in a row that are older than the newest and fit nowhere

  std::int64_t shortest_ = 0;  ///< the least arrival - place since `since_`, in samples
  std::int64_t shortest_before_ = 0;
  Time since_;
};

}  // namespace orven
