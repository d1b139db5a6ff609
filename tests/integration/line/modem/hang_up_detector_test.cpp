// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/hang_up_detector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <numbers>
#include <random>

#include "adapters/audio/resampler.h"
#include "adapters/line/modem/sample_codec.h"

namespace orven {
namespace {

using Sound = std::vector<std::int16_t>;

/// A part of a cadence; no frequency is a pause, one or two are a tone.
struct Part {
  int milliseconds;
  std::vector<double> tones;
};

/// `parts` again and again, once at least, each tone at `level` dBm0, over noise of -50.
Sound Cadence(const std::vector<Part>& parts, int seconds, double level) {
  std::mt19937 random(5);
  std::normal_distribution<double> noise(0, 50);
  const double amplitude = 32768 * std::pow(10, (level - 3.14) / 20);
  Sound sound;
  do {
    for (const Part& part : parts) {
      for (int i = 0; i < part.milliseconds * 8; ++i) {
        double sum = 0;
        for (const double tone : part.tones) sum += std::sin(2 * std::numbers::pi * tone * i / 8000);
        const auto tones = static_cast<double>(std::max<std::size_t>(part.tones.size(), 1));
        sound.push_back(static_cast<std::int16_t>(sum * amplitude / std::sqrt(tones) + noise(random)));
      }
    }
  } while (sound.size() < static_cast<std::size_t>(seconds) * 8000);
  return sound;
}

Sound operator+(Sound one, const Sound& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

/// What is heard in `sound` through a modem of that kind, and after how many seconds.
std::pair<std::string, double> Heard(const Sound& sound, SampleKind kind) {
  std::pair<std::string, double> result;
  std::size_t at = 0;
  HangUpDetector listener([&](const char* what) {
    EXPECT_EQ(result.first, "");
    result = {what, static_cast<double>(at) / 8000};
  });
  SampleEncoder encoder({kind, 8000, ""});
  SampleDecoder decoder({kind, 8000, ""});
  for (std::size_t size = 0; at < sound.size(); at += size) {
    size = std::min<std::size_t>(171, sound.size() - at);
    std::vector<std::uint8_t> bytes;
    Sound samples;
    encoder.Encode(std::span(sound).subspan(at, size), bytes);
    decoder.Decode(bytes, samples);
    listener.Listen(samples);
  }
  return result;
}

class HangUpDetectorTest : public testing::TestWithParam<SampleKind> {
 protected:
  static void ExpectNothing(const Sound& sound) { EXPECT_EQ(Heard(sound, GetParam()).first, ""); }
};

TEST_P(HangUpDetectorTest, HearsEveryBusyToneWithinFourBursts) {
  const std::vector<std::vector<Part>> cadences{
      {{500, {480, 620}}, {500, {}}}, {{250, {480, 620}}, {250, {}}}, {{375, {400}}, {375, {}}},
      {{480, {425}}, {480, {}}},      {{200, {425}}, {200, {}}},      {{700, {450}}, {700, {}}},
      {{300, {440}}, {400, {}}},
  };
  for (const auto& cadence : cadences) {
    const double period = (cadence[0].milliseconds + cadence[1].milliseconds) / 1000.0;
    for (const double level : {-10.0, -20.0, -30.0}) {
      const auto [what, when] = Heard(Cadence(cadence, 8, level), GetParam());
      EXPECT_EQ(what, "the busy tone") << period << " s, " << level << " dBm0";
      EXPECT_LE(when, 4 * period);
    }
  }
  const std::vector<Part> groups{{400, {400}}, {350, {}}, {225, {400}}, {525, {}}};
  EXPECT_EQ(Heard(Cadence(groups, 8, -20), GetParam()).first, "the busy tone");
}

TEST_P(HangUpDetectorTest, HearsTheDialToneAndAMinuteOfSilence) {
  for (const auto& tones : std::vector<std::vector<double>>{{350, 440}, {350, 425}, {425}, {400}, {450}}) {
    for (const double level : {-10.0, -30.0}) {
      const auto [what, when] = Heard(Cadence({{1000, {}}, {9000, tones}}, 10, level), GetParam());
      EXPECT_EQ(what, "the dial tone");
      EXPECT_LE(when, 1 + 4);
    }
  }
  const auto [what, when] = Heard(Cadence({{1000, {1000}}, {65000, {}}}, 66, -20), GetParam());
  EXPECT_EQ(what, "a minute of silence");
  EXPECT_NEAR(when, 61, 0.1);
}

TEST_P(HangUpDetectorTest, OtherTonesAreNone) {
  ExpectNothing(Cadence({{500, {1100}}, {3000, {}}}, 50, -15));       // a fax calls
  ExpectNothing(Cadence({{2000, {440, 480}}, {4000, {}}}, 50, -15));  // ringing
  ExpectNothing(Cadence({{400, {400, 450}}, {200, {}}, {400, {400, 450}}, {2000, {}}}, 50, -15));
  ExpectNothing(Cadence({{100, {697, 1209}}, {100, {}}, {100, {941, 1336}}, {100, {}}}, 30, -8));  // keys
  ExpectNothing(Cadence({{2500, {425}}, {300, {}}, {900, {440}}, {50, {}}}, 30, -15));
  ExpectNothing(Cadence({{1000, {350, 400}}}, 20, -15));  // two that beat
  Sound tune;
  std::mt19937 random(1);
  for (int i = 0; i < 400; ++i) {  // a musical box, one note a beat
    const double note = 220 * std::pow(2, static_cast<double>(random() % 24) / 12);
    tune = std::move(tune) + Cadence({{250, {note}}, {i % 2 * 250, {}}}, 0, -15);
  }
  ExpectNothing(tune);
  Sound code;
  for (int i = 0; i < 100; ++i) {  // one tone, but no rhythm
    const int on = 120 + static_cast<int>(random() % 12) * 50;
    code = std::move(code) + Cadence({{on, {425}}, {300, {}}}, 0, -15);
  }
  ExpectNothing(code);
}

/// What espeak-ng says, as a telephone carries it.
Sound Spoken(const char* voice, const char* text) {
  const auto command = std::string("espeak-ng --stdout -v ") + voice + " '" + text + "'";
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::vector<float> samples;
  std::int16_t sample = 0;
  while (pipe && std::fread(&sample, sizeof sample, 1, pipe.get()) == 1)
    samples.push_back(static_cast<float>(sample) / 32768);
  Sound sound;
  Resampler resampler(22050, 8000);
  for (const float value : resampler.Process(samples, true)) {
    sound.push_back(static_cast<std::int16_t>(std::clamp(value, -1.0F, 0.99F) * 32768));
  }
  return sound;
}

TEST_P(HangUpDetectorTest, VoicesAreNone) {
  constexpr const char* kText =
      "Hello, who is there? Oh. Oh. Oh. Oh. Oh. No no no no no no. One. One. One. One. One. Mooooo. "
      "Mmmmmmmm. "
      "Hummmmmm. You you you you you. Please call me back at nine nine nine nine nine, soon. Do do do do do "
      "do.";
  for (const char* voice :
       {"en-us", "en-us+f2", "en-us+f5", "de+m3", "fr+f4", "cmn+f3", "ru", "it+whisper"}) {
    const auto speech = Spoken(voice, kText);
    ASSERT_GT(speech.size(), 8000U * 8) << voice;
    ExpectNothing(speech);
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, HangUpDetectorTest,
                         testing::Values(SampleKind::Linear16, SampleKind::MuLaw, SampleKind::Unsigned8));

}  // namespace
}  // namespace orven
