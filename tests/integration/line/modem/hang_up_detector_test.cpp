// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/hang_up_detector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <numbers>
#include <random>
#include <sstream>

#include "adapters/line/modem/sample_codec.h"

namespace orven {
namespace {

using namespace std::string_literals;
using Samples = std::vector<std::int16_t>;

/// A part of a cadence: one or more tones, or a pause if there are none.
struct Part {
  int milliseconds = 0;
  std::vector<double> tones{};
};
using Cadence = std::vector<Part>;

/// Parses a cadence: "500/480/620 300" is half a second of two tones, then a pause of 300 ms.
Cadence Parsed(const std::string& text) {
  std::istringstream in(text);
  Cadence parts;
  for (Part part; in >> part.milliseconds; parts.push_back(std::exchange(part, {}))) {
    for (double tone = 0; in.peek() == '/' && in.ignore() >> tone;) part.tones.push_back(tone);
  }
  return parts;
}

/// Returns `parts`, repeated for `seconds` but at least once, with each tone at `level` dBm0, over noise at
/// -50 dBm0.
Samples Audio(const Cadence& parts, int seconds, double level) {
  std::mt19937 random(5);
  std::normal_distribution<double> noise(0, 50);
  const double amplitude = 32768 * std::pow(10, (level - 3.14) / 20);
  Samples samples;
  do {
    for (const auto& [milliseconds, tones] : parts) {
      for (int i = 0; i < milliseconds * 8; ++i) {
        double sum = 0;
        for (const double tone : tones) sum += std::sin(2 * std::numbers::pi * tone * i / 8000);
        const double each = amplitude / std::sqrt(std::max<std::size_t>(tones.size(), 1));
        samples.push_back(static_cast<std::int16_t>(sum * each + noise(random)));
      }
    }
  } while (samples.size() < static_cast<std::size_t>(seconds) * 8000);
  return samples;
}

struct HangUpDetectorTest : testing::TestWithParam<SampleKind> {
  /// Returns what is heard in `samples` through a modem of this kind, and after how many seconds.
  static std::pair<std::string, double> Heard(const Samples& samples) {
    std::pair<std::string, double> result;
    std::size_t at = 0;
    HangUpDetector detector([&](const char* what) {
      EXPECT_EQ(result.first, "");
      result = {what, static_cast<double>(at) / 8000};
    });
    SampleEncoder encoder({GetParam(), 8000, ""});
    SampleDecoder decoder({GetParam(), 8000, ""});
    for (std::size_t size = 0; at < samples.size(); at += size) {
      size = std::min<std::size_t>(171, samples.size() - at);
      std::vector<std::uint8_t> bytes;
      Samples decoded;
      encoder.Encode(std::span(samples).subspan(at, size), bytes);
      decoder.Decode(bytes, decoded);
      detector.Listen(decoded);
    }
    return result;
  }
};

TEST_P(HangUpDetectorTest, HearsBusyTonesDialTonesAndAMinuteOfSilence) {
  const auto expect = [](const char* cadence, const std::string& what, double seconds) {
    for (const double level : {-10.0, -20.0, -30.0}) {
      const auto [heard, when] = Heard(Audio(Parsed(cadence), 8, level));
      EXPECT_EQ(heard, what) << cadence << " at " << level << " dBm0";
      EXPECT_LE(when, seconds);
    }
  };
  for (const char* busy : {"500/480/620 500", "250/480/620 250", "375/400 375", "480/425 480", "200/425 200",
                           "700/450 700", "300/440 400", "400/400 350 225/400 525"})
    expect(busy, "the busy tone", 4 * double(Audio(Parsed(busy), 0, 0).size()) / 8000);  // four cycles
  for (const char* dial :
       {"1000 9000/350/440", "1000 9000/350/425", "1000 9000/425", "1000 9000/400", "1000 9000/450"})
    expect(dial, "the dial tone", 1 + 4);
  const auto [heard, when] = Heard(Audio(Parsed("1000/1000 65000"), 66, -20));
  EXPECT_EQ(heard, "a minute of silence");
  EXPECT_NEAR(when, 61, 0.1);
}

TEST_P(HangUpDetectorTest, OtherTonesAreIgnored) {
  std::mt19937 random(1);
  std::string tune, code, knocks;
  for (int i = 0; i < 400; ++i)  // a music box, one note per beat
    tune +=
        "250/" + std::to_string(220 * std::pow(2, double(random() % 24) / 12)) + (i % 2 == 0 ? " " : " 250 ");
  for (int i = 0; i < 100; ++i)  // one tone with random lengths
    code += std::to_string(120 + int(random() % 12) * 50) + "/425 300 ";
  for (int i = 0; i < 100; ++i) knocks += "300/425 " + std::to_string(100 + i % 9 * 80) + " ";
  // A calling fax, ringing tones (single and in pairs), keys, tones with short gaps, beating tones, other
  // pitches and changing pitches.
  for (const auto& cadence :
       {"500/1100 3000"s, "2000/440/480 4000"s, "400/400/450 200 400/400/450 2000"s,
        "100/697/1209 100 100/941/1336 100"s, "2500/425 300 900/440 50"s, "1000/350/400"s, "9000/600"s,
        "9000/350/620"s, "9000/300/425"s, "500/600 500"s, "900/425 500"s, "400/440 400 400/500 400"s,
        "400/480/620 400 400/480/660 400"s, tune, code, knocks})
    EXPECT_EQ(Heard(Audio(Parsed(cadence), 40, -15)).first, "") << cadence.substr(0, 50);
}

// A voice that is mistaken for a busy tone would cut a message off.
TEST_P(HangUpDetectorTest, VoicesAreNotTones) {
  const std::string text =
      "Hello, who is there? Oh. Oh. Oh. Oh. No no no no no no. One. One. One. One. Mooooo. Mmmmmmmm. "
      "Hummmmmm. "
      "You you you you you. Please call me back at nine nine nine nine nine, soon. Do do do do do do.";
  for (const std::string voice : {"en-us", "en-us+f5", "de+m3", "cmn+f3", "ru", "it+whisper"}) {
    const auto command =
        "espeak-ng --stdout -v " + voice + " '" + text + "' | sox -V1 -t wav - -t raw -r 8000 -";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    Samples samples(8000 * 60);
    samples.resize(std::fread(samples.data(), sizeof samples[0], samples.size(), pipe.get()));
    ASSERT_GT(samples.size(), 8000U * 8) << voice;
    EXPECT_EQ(Heard(samples).first, "") << voice;
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, HangUpDetectorTest,
                         testing::Values(SampleKind::Linear16, SampleKind::MuLaw, SampleKind::Unsigned8));

}  // namespace
}  // namespace orven
