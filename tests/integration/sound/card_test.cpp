// SPDX-License-Identifier: GPL-3.0-or-later
// How cards are numbered, which microphone is theirs, and how telephone sound is made into theirs and back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <numbers>

#include "adapters/sound/card_format.h"
#include "adapters/sound/card_list.h"
#include "adapters/sound/sound_server.h"
#include "platform/audio_device.h"

namespace orven::testing {
namespace {

using Outputs = std::vector<CardList::Output>;
using Cards = std::vector<SoundCard>;

TEST(CardList, ACardKeepsItsNumberWhileItIsAway) {
  CardList cards;
  EXPECT_TRUE(cards.MayBe(7));  // nobody has looked yet
  EXPECT_EQ((Cards{{0, "Default output"}}), cards.Present());

  cards.Update(Outputs{{"a", "Speakers"}, {"b", "Headset"}});
  cards.Update(Outputs{{"c", "Television"}, {"b", "Headset"}});
  EXPECT_EQ((Cards{{0, "Default output"}, {2, "Headset"}, {3, "Television"}}), cards.Present());
  EXPECT_TRUE(cards.MayBe(1));
  EXPECT_EQ(std::nullopt, cards.IdOf(1));
  EXPECT_EQ("c", cards.IdOf(3));

  cards.Update(Outputs{{"a", "Loudspeakers"}});
  EXPECT_EQ((Cards{{0, "Default output"}, {1, "Loudspeakers"}}), cards.Present());
  for (const int number : {-1, 4, kFirstLineWaveDevice}) EXPECT_FALSE(cards.MayBe(number)) << number;
}

TEST(CardList, NoCardGetsTheNumberOfALine) {
  CardList cards;
  Outputs many;
  for (int i = 0; i < 2000; ++i) many.push_back({std::to_string(i), "card"});
  cards.Update(many);
  EXPECT_EQ(kFirstLineWaveDevice - 1, cards.Present().back().number);
}

TEST(Microphone, TheCardsOwnConnectedOneElseTheDefaultElseAny) {
  SoundServer server;
  server.default_input = "webcam";
  server.outputs = {{"speakers", "card 0"}, {"headset", "card 1"}, {"television", "card 2"}, {"virtual", ""}};
  server.inputs = {{"line in", "card 0", false},
                   {"boom", "card 1", true},
                   {"webcam", "card 3", true},
                   {"network", "", true}};
  EXPECT_EQ("boom", MicrophoneOf(server, "headset"));
  for (const char* output : {"speakers", "television", "virtual", "gone", ""})
    EXPECT_EQ("webcam", MicrophoneOf(server, output)) << output;

  server.inputs[2].card = "card 1";
  EXPECT_EQ("webcam", MicrophoneOf(server, "headset"));
  server.default_input = "speakers.monitor";
  EXPECT_EQ("boom", MicrophoneOf(server, "speakers"));
  server.inputs.resize(1);
  EXPECT_EQ("", MicrophoneOf(server, "speakers"));
}

QAudioFormat Format(int rate, int channels, QAudioFormat::SampleFormat kind) {
  QAudioFormat format;
  format.setSampleRate(rate);
  format.setChannelCount(channels);
  format.setSampleFormat(kind);
  return format;
}

/// `samples` in the card's format, block by block as a play does it.
QByteArray Converted(const QAudioFormat& format, const std::vector<std::int16_t>& samples) {
  CardConverter converter(format);
  EXPECT_TRUE(converter.Valid());
  QByteArray bytes;
  for (std::size_t at = 0; at < samples.size(); at += kBlockSamples)
    bytes += converter.Convert(std::span(samples).subspan(at, kBlockSamples));
  return bytes + converter.Flush();
}

template <class Number>
std::vector<Number> Numbers(const QByteArray& bytes) {
  std::vector<Number> numbers(static_cast<std::size_t>(bytes.size()) / sizeof(Number));
  std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(Number));
  return numbers;
}

TEST(CardFormat, EveryKindOfSampleOnEveryChannel) {
  std::vector<std::int16_t> samples(kBlockSamples, 0);
  samples[1] = 16384;
  samples[2] = -32768;
  const auto is = [&](auto full, int channels, QAudioFormat::SampleFormat kind, auto zero) {
    using Number = decltype(zero);
    const auto numbers = Numbers<Number>(Converted(Format(kSampleRate, channels, kind), samples));
    ASSERT_EQ(static_cast<std::size_t>(kBlockSamples * channels), numbers.size());
    for (int channel = 0; channel < channels; ++channel) {
      const auto at = [&](int frame) {
        return numbers[static_cast<std::size_t>(frame * channels + channel)];
      };
      EXPECT_EQ(zero, at(0));
      EXPECT_EQ(static_cast<Number>(zero + full / 2), at(1));
      EXPECT_EQ(static_cast<Number>(zero - full), at(2));
    }
  };
  is(32768, 1, QAudioFormat::Int16, std::int16_t{0});
  is(32768, 2, QAudioFormat::Int16, std::int16_t{0});
  is(128, 2, QAudioFormat::UInt8, std::uint8_t{128});
  is(2147483648LL, 6, QAudioFormat::Int32, std::int32_t{0});
  is(1.0, 2, QAudioFormat::Float, 0.0F);
}

TEST(CardFormat, ATelephoneToneIsTheSameToneAtTheCardsRate) {
  const auto tone = [](int rate, std::size_t i) {
    return 0.5 * std::sin(2 * std::numbers::pi * 3000 * static_cast<double>(i) / rate);
  };
  std::vector<std::int16_t> samples(100 * kBlockSamples);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<std::int16_t>(std::lround(32768 * tone(kSampleRate, i)));
  for (const int rate : {44100, 48000}) {
    const auto heard = Numbers<float>(Converted(Format(rate, 1, QAudioFormat::Float), samples));
    EXPECT_NEAR(2.0 * rate, static_cast<double>(heard.size()), 2);  // seconds, to the end
    double noise = 0;
    const auto edge = static_cast<std::size_t>(rate / 10);
    for (std::size_t i = edge; i < heard.size() - edge; ++i) noise += std::pow(heard[i] - tone(rate, i), 2);
    EXPECT_LT(noise / static_cast<double>(heard.size()), 1e-6) << rate;  // more than 50 dB below the tone
  }
}

/// What an input in the card's format captures, handed over in pieces of `piece` bytes.
std::vector<std::int16_t> Captured(const QAudioFormat& format, const QByteArray& bytes, qsizetype piece) {
  CaptureConverter converter(format);
  EXPECT_TRUE(converter.Valid());
  std::vector<std::int16_t> samples;
  for (qsizetype at = 0; at < bytes.size(); at += piece) {
    const auto some = converter.Convert(bytes.mid(at, piece));
    samples.insert(samples.end(), some.begin(), some.end());
  }
  return samples;
}

TEST(CardFormat, WhatIsCapturedIsTelephoneSoundAgain) {
  std::vector<std::int16_t> samples(100 * kBlockSamples);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] =
        static_cast<std::int16_t>(std::lround(-16384 * std::cos(2.2 * static_cast<double>(i) + 0.1)));
  samples.front() = -32768;
  samples.back() = 32767;
  const auto largest_difference = [&](const QAudioFormat& format, std::size_t edge) {
    const auto captured = Captured(format, Converted(format, samples), 1001);
    EXPECT_NEAR(static_cast<double>(samples.size()), static_cast<double>(captured.size()), 48);
    int largest = 0;
    for (std::size_t i = edge; i < std::min(samples.size(), captured.size()) - edge; ++i)
      largest = std::max(largest, std::abs(samples[i] - captured[i]));
    return largest;
  };
  EXPECT_EQ(0, largest_difference(Format(kSampleRate, 1, QAudioFormat::Int16), 0));
  EXPECT_EQ(0, largest_difference(Format(kSampleRate, 2, QAudioFormat::Int16), 0));
  EXPECT_EQ(0, largest_difference(Format(kSampleRate, 4, QAudioFormat::Int32), 0));
  EXPECT_EQ(0, largest_difference(Format(kSampleRate, 2, QAudioFormat::Float), 0));
  EXPECT_GE(256, largest_difference(Format(kSampleRate, 1, QAudioFormat::UInt8), 0));
  for (const int rate : {44100, 48000, 96000})
    EXPECT_GE(50, largest_difference(Format(rate, 2, QAudioFormat::Float), 800)) << rate;
}

TEST(CardFormat, WhatCannotBeMadeIsNotValid) {
  EXPECT_FALSE(CaptureConverter(QAudioFormat()).Valid());
  EXPECT_FALSE(CardConverter(QAudioFormat()).Valid());
  EXPECT_FALSE(CardConverter(Format(8000 * 257, 1, QAudioFormat::Int16)).Valid());
}

}  // namespace
}  // namespace orven::testing
