// SPDX-License-Identifier: GPL-3.0-or-later
// How cards are numbered, which microphone they use, and how telephone audio is converted to their formats.
#include <gtest/gtest.h>

#include <cmath>

#include "adapters/sound/card_format.h"
#include "adapters/sound/card_list.h"
#include "adapters/sound/sound_server.h"
#include "platform/audio_device.h"

namespace orven::testing {
namespace {

using Outputs = std::vector<CardList::Output>;
using Cards = std::vector<SoundCard>;
using Samples = std::vector<std::int16_t>;

TEST(CardList, ACardKeepsItsNumberWhileUnplugged) {
  CardList cards;
  EXPECT_TRUE(cards.MayBe(7));  // no card is known yet
  cards.Update(Outputs{{"a", "Speakers"}, {"b", "Headset"}});
  cards.Update(Outputs{{"c", "Television"}, {"b", "Phones"}});
  EXPECT_EQ((Cards{{0, "Default output"}, {2, "Phones"}, {3, "Television"}}), cards.Present());
  EXPECT_EQ(std::nullopt, cards.IdOf(1));
  EXPECT_EQ("c", cards.IdOf(3));
  EXPECT_TRUE(cards.MayBe(1));
  for (const int number : {-1, 4, kFirstLineWaveDevice}) EXPECT_FALSE(cards.MayBe(number)) << number;
}

TEST(Microphone, IsTheConnectedOneOfTheCardThenTheDefaultThenAny) {
  SoundServer server;
  server.default_input = "webcam";
  server.outputs = {{"speakers", "card 0"}, {"headset", "card 1"}, {"virtual", ""}};
  server.inputs = {{"line in", "card 0", false}, {"boom", "card 1"}, {"webcam", "card 1"}, {"network", ""}};
  for (const char* output : {"headset", "speakers", "virtual", ""})
    EXPECT_EQ("webcam", MicrophoneOf(server, output));
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

TEST(CardFormat, AudioSurvivesTheConversionForACardAndBackAndImpossibleFormatsAreInvalid) {
  struct Row {
    QAudioFormat format;
    QByteArray half;  ///< a frame at half of full scale, little-endian
    int tolerance;    ///< in 16-bit samples
  };
  const Row rows[]{{Format(8000, 1, QAudioFormat::Int16), QByteArray("\0\x40", 2), 0},
                   {Format(8000, 2, QAudioFormat::Int32), QByteArray("\0\0\0\x40\0\0\0\x40", 8), 0},
                   {Format(8000, 1, QAudioFormat::Float), QByteArray("\0\0\0\x3f", 4), 0},
                   {Format(8000, 1, QAudioFormat::UInt8), QByteArray("\xc0"), 128},
                   {Format(44100, 2, QAudioFormat::Float), QByteArray(), 50},
                   {Format(96000, 1, QAudioFormat::Int16), QByteArray(), 50}};
  Samples samples(100 * kBlockSamples);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<std::int16_t>(std::lround(-16384 * std::cos(2.2 * static_cast<double>(i))));
  samples[0] = 16384;
  samples[1] = -32768;
  EXPECT_FALSE(CaptureConverter(QAudioFormat()).Valid() || CardConverter(QAudioFormat()).Valid());
  EXPECT_FALSE(CardConverter(Format(8000 * 257, 1, QAudioFormat::Int16)).Valid());
  for (const auto& [format, half, tolerance] : rows) {
    CardConverter to(format);
    CaptureConverter from(format);
    ASSERT_TRUE(to.Valid() && from.Valid());
    QByteArray bytes;
    for (std::size_t at = 0; at < samples.size(); at += kBlockSamples)
      bytes += to.Convert(std::span(samples).subspan(at, kBlockSamples));
    bytes += to.Flush();
    EXPECT_TRUE(bytes.startsWith(half)) << format.sampleFormat();
    EXPECT_NEAR(2 * format.sampleRate(), format.framesForBytes(static_cast<int>(bytes.size())), 2);
    Samples captured;
    for (qsizetype at = 0; at < bytes.size(); at += 1001) {  // pieces that end within a frame
      const auto some = from.Convert(bytes.mid(at, 1001));
      captured.insert(captured.end(), some.begin(), some.end());
    }
    ASSERT_NEAR(static_cast<double>(samples.size()), static_cast<double>(captured.size()), 48);
    for (std::size_t i = half.isEmpty() ? 800 : 0; i < captured.size() - 800; ++i)
      ASSERT_NEAR(samples[i], captured[i], tolerance) << i;
  }
}

}  // namespace
}  // namespace orven::testing
