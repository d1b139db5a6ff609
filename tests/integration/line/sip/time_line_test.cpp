// SPDX-License-Identifier: GPL-3.0-or-later
// What is kept of a call whose packets come late, out of order, twice or not at all, or whose sender pauses,
// stalls, starts over or counts wrongly: every word at its place, and a message as long as the talk.
#include "adapters/line/sip/timeline.h"

#include <cmath>
#include <functional>

#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

/// A packet of 20 ms on its way. Times are in milliseconds since the first one was spoken.
struct Sent {
  double spoken, arrives;
  rtp_header header;
  bool is_audio = true;
};
using Stream = std::vector<Sent>;

/// From 1 s on it is recorded; sequence and timestamp wrap at 2 s.
constexpr std::size_t kFirst = 50, kWraps = 100, kChange = 200;

Stream Talk(std::size_t packets) {
  Stream stream;
  for (std::uint32_t i = 0; i < packets; ++i) {
    Sent sent{i * 20.0, i * 20.0 + 50, {}};
    sent.header.seq = static_cast<std::uint16_t>(i - kWraps);
    sent.header.ts = (i - static_cast<std::uint32_t>(kWraps)) * 160;
    stream.push_back(sent);
  }
  return stream;
}

Bytes Word(double spoken) {
  return NoiseBytes(1, static_cast<std::uint32_t>(spoken));
}

struct Message : AudioSink {
  void Write(std::span<const std::int16_t> samples) override {
    all.insert(all.end(), samples.begin(), samples.end());
  }
  /// The first samples of a word may be blended with what was made up before it.
  bool Has(double spoken) const {
    const auto word = Decoded(Word(spoken));
    const auto at = static_cast<std::size_t>((spoken - kFirst * 20.0) * 8);
    return at + word.size() <= all.size() && std::equal(word.begin() + 40, word.end(), all.begin() + at + 40);
  }
  std::vector<std::int16_t> all;
};

/// Passes a stream on in turns of 100 ms. Returns the message of a recording from the first second to `end`,
/// and the longest time by which it was behind.
Message Kept(Stream stream, double end, double& behind) {
  std::ranges::stable_sort(stream, {}, &Sent::arrives);
  const auto moment = [](double at) {
    return Placement::Time(std::chrono::hours(1)) + std::chrono::microseconds(std::llround(at * 1000));
  };
  Placement placement(moment(0));
  TimeLine kept;
  Message message;
  auto next = stream.begin();
  for (double now = 50; now < end; now += 100) {
    for (; next != stream.end() && next->arrives <= now; ++next) {
      const Bytes word = Word(next->spoken);
      const auto codec = next->is_audio ? std::optional(Codec::kMuLaw) : std::nullopt;
      const auto placed = placement.Place(next->header, codec, word, moment(next->arrives));
      if (placed && kept.Begun()) kept.Take(*placed);
      if (!kept.Begun() && next->spoken == (kFirst - 1) * 20.0) kept.Begin(placement, moment(next->arrives));
    }
    if (!kept.Begun()) continue;
    kept.PassOn(message);
    behind = std::max(behind, now - kFirst * 20.0 - static_cast<double>(message.all.size()) / 8);
  }
  kept.Finish(moment(end), message);
  return message;
}

using Change = std::function<void(Stream&)>;

/// Changes each packet from number `first` on.
Change From(std::size_t first, const std::function<void(Sent&)>& change) {
  return [=](Stream& stream) {
    std::for_each(stream.begin() + static_cast<std::ptrdiff_t>(first), stream.end(), change);
  };
}

/// The sender pauses, for 2 s, and numbers what it sends without a gap.
void Pause(Stream& stream) {
  From(kChange + 100,
       [](Sent& sent) { sent.header.seq = static_cast<std::uint16_t>(sent.header.seq - 100); })(stream);
  stream.erase(stream.begin() + kChange, stream.begin() + kChange + 100);
}

/// Packets without audio share the sequence.
void Press(Stream& stream) {
  for (std::size_t i = kChange; i < kChange + 10; ++i) {
    stream[i].is_audio = false;
    stream[i].header.ts = stream[kChange].header.ts;
  }
}

void Jitter(Stream& stream) {
  std::minstd_rand random(7);
  From(kFirst + 20, [&](Sent& sent) { sent.arrives += static_cast<double>(random() % 300); })(stream);
}

void Lose(Stream& stream) {
  std::minstd_rand random(5);
  std::erase_if(stream, [&](const Sent& sent) { return random() % 100 < 5 && sent.spoken > 1000; });
}

Change Both(const Change& first, const Change& second) {
  return [=](Stream& stream) { first(stream), second(stream); };
}

TEST(TimeLineTest, EveryPacketThatComesIsAtItsPlaceAndNothingIsAddedOrLost) {
  const auto burst = [](Sent& sent) { sent.arrives = std::ceil(sent.arrives / 500) * 500; };
  const auto swap = [](Stream& stream) {
    for (std::size_t i = kChange; i + 1 < stream.size(); i += 2)
      std::swap(stream[i].arrives, stream[i + 1].arrives);
  };
  const auto twice = [](Stream& stream) {
    stream.insert(stream.end(), stream.begin() + kChange, stream.end());
  };
  const auto jump = [](int samples) {
    return From(kChange, [=](Sent& sent) { sent.header.ts += static_cast<std::uint32_t>(samples); });
  };
  const auto stand = From(kChange, [](Sent& sent) { sent.header.ts = 12'345; });
  const auto other = From(
      kChange, [](Sent& sent) { sent.header.ssrc = 77, sent.header.ts += 99'999'999, sent.header.seq += 7; });
  const auto restart = From(kChange, [](Sent& sent) { sent.header.seq += 20'000; });
  const auto drift = [](double ppm) { return From(0, [=](Sent& sent) { sent.arrives *= 1 + ppm * 1e-6; }); };
  // The network, or the sender, holds back 1 or 3 s of talk; what follows is late too, or not.
  const auto stall = [](double length, bool catches_up) {
    return From(kChange, [=](Sent& sent) {
      const double until = kChange * 20 + 50 + length;
      sent.arrives = catches_up ? std::max(sent.arrives, until) : sent.arrives + length;
    });
  };
  const auto fall_silent = [](Stream& stream) { stream.resize(kChange); };
  // How long the recording may be behind what was sent, in ms, and the length of the talk in packets.
  const std::tuple<const char*, Change, double, std::size_t> kRows[] = {
      {"untouched", [](Stream&) {}, 150, 600},
      {"5 % lost", Lose, 1200, 600},
      {"5 % lost, and late by up to 300 ms", Both(Lose, Jitter), 1600, 600},
      {"late by up to 300 ms", Jitter, 500, 600},
      {"neighbours change places", swap, 200, 600},
      {"doubles", twice, 150, 600},
      {"bursts of 500 ms", From(0, burst), 700, 600},
      {"the clock jumps forward", jump(4000), 150, 600},
      {"the clock jumps back", jump(-4000), 150, 600},
      {"the clock jumps, packets late by up to 300 ms", Both(jump(8000), Jitter), 500, 600},
      {"the clock stands still", stand, 150, 600},
      {"a new source", other, 150, 600},
      {"the sequence starts over", restart, 150, 600},
      {"the sender pauses", Pause, 2150, 600},
      {"the sender pauses, packets late by up to 300 ms", Both(Pause, Jitter), 2500, 600},
      {"a key is pressed", Press, 400, 600},
      {"a key is pressed, packets late by up to 300 ms", Both(Press, Jitter), 700, 600},
      {"the sender's clock is slow", drift(300), 400, 30'000},
      {"the sender's clock is fast", drift(-300), 150, 30'000},
      {"a stall of 1 s, caught up", stall(1000, true), 1150, 600},
      {"a stall of 3 s, caught up", stall(3000, true), 3150, 600},
      {"a stall of 1 s", stall(1000, false), 1150, 600},
      {"a stall of 3 s", stall(3000, false), 3150, 600},
      {"silence at the end", fall_silent, 10'000, 600},
  };
  for (const auto& [name, change, limit, packets] : kRows) {
    Stream stream = Talk(packets);
    const double spoken = stream.back().spoken + 20;
    change(stream);
    double end = spoken + 40, behind = 0;
    for (const Sent& sent : stream) end = std::max(end, sent.arrives + 100);
    const Message message = Kept(stream, end, behind);
    std::size_t in_place = 0, audio = 0;
    for (const Sent& sent : stream) {
      audio += sent.is_audio && sent.spoken >= kFirst * 20.0 ? 1 : 0;
      in_place += sent.is_audio && sent.spoken >= kFirst * 20.0 && message.Has(sent.spoken) ? 1 : 0;
    }
    EXPECT_EQ(in_place, audio) << name;
    EXPECT_NEAR(static_cast<double>(message.all.size()) / 8, spoken - kFirst * 20.0, 20) << name;
    EXPECT_LE(behind, limit) << name;
  }
  Message none;
  TimeLine().Finish(Placement::Time(std::chrono::hours(1)), none);
  EXPECT_TRUE(none.all.empty()) << "it ends before it begins";
}

}  // namespace
}  // namespace orven::test
