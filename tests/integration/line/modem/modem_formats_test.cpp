// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "adapters/line/modem/modem_reader.h"
#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/modem/voice_format.h"

namespace orven {

void PrintTo(const VoiceFormat& format, std::ostream* out) {
  *out << static_cast<int>(format.kind) << '/' << format.rate << '/' << format.setting;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;
using enum SampleKind;

TEST(ModemFormatsTest, TakesTheBestByNameAndBits) {
  const Lines lucent{R"(128,"8-BIT LINEAR",(7200,8000,11025))", R"(129,"16-BIT LINEAR",(7200,8000,11025))",
                     R"(130,"8-BIT ALAW",(8000))", R"(131,"8-BIT ULAW",(8000))", R"(132,"IMA ADPCM",(8000))"};
  EXPECT_THAT(OfferedFormats(lucent),
              ElementsAre(VoiceFormat{Linear16, 8000, "129,8000"}, VoiceFormat{Linear16, 7200, "129,7200"},
                          VoiceFormat{Linear16, 11025, "129,11025"}, VoiceFormat{MuLaw, 8000, "131,8000"},
                          VoiceFormat{Unsigned8, 8000, "128,8000"}, VoiceFormat{Unsigned8, 7200, "128,7200"},
                          VoiceFormat{Unsigned8, 11025, "128,11025"}));
  const Lines fields{R"(0,"SIGNED PCM",8,0,8000,0,0)",
                     R"(1,"UNSIGNED PCM",8,0,8000,0,0)",
                     R"(129,"IMA ADPCM",4,0,8000,0,0)",
                     R"(133,"16-bit linear",16,0,(7200),0,0)",
                     R"(134,"SIGNED PCM",16,0,8000,0,0)",
                     R"(140,"2 Bit ADPCM",2,0,8000,0,0)",
                     "OK"};
  EXPECT_THAT(OfferedFormats(fields), ElementsAre(VoiceFormat{Linear16, 8000, "134,8000,0,0"},
                                                  VoiceFormat{Linear16, 7200, "133,7200,0,0"},
                                                  VoiceFormat{Unsigned8, 8000, "1,8000,0,0"}));
}

TEST(ModemFormatsTest, ReadsEveryWayToWriteThem) {
  const auto read = [](const char* line) { return OfferedFormats(Lines{line}); };
  EXPECT_THAT(read(R"(+VSM: 4 , "u-Law" , 8 , 0 , ( 8000 ) , (0,1) , 0)"),
              ElementsAre(VoiceFormat{MuLaw, 8000, "4,8000,0,0"}));
  EXPECT_THAT(read("+VSM=131,mulaw,(7200-8000)"),
              ElementsAre(VoiceFormat{MuLaw, 8000, "131,8000"}, VoiceFormat{MuLaw, 7200, "131,7200"}));
  for (const char* line : {"", "OK", R"(128,"8-BIT LINEAR",(9600))", R"(5,"A-LAW",8,0,8000,0,0)",
                           R"(0,"8-BIT SIGNED LINEAR",(8000))", R"(2,"UNSIGNED PCM",16,0,8000,0,0)",
                           R"("8-BIT LINEAR",128,8000)", R"(128,"8-BIT LINEAR)", ")))((,,,\"", "128,,8000",
                           R"(129,"16-BIT ADPCM",(8000))"}) {
    EXPECT_THAT(read(line), IsEmpty()) << line;
  }
}

TEST(ModemFormatsTest, UsesThePresentFormatOnlyWhenItsNumberIsClear) {
  EXPECT_THAT(PresentFormat(Lines{"+VSM: 128,8000", "OK"}),
              ElementsAre(VoiceFormat{Unsigned8, 8000, "128,8000"}));
  EXPECT_THAT(PresentFormat(Lines{"4,8000,0,0"}), ElementsAre(VoiceFormat{MuLaw, 8000, "4,8000,0,0"}));
  for (const char* line : {"129,8000", "0,8000", "1,9600", "OK"})
    EXPECT_THAT(PresentFormat(Lines{line}), IsEmpty());
}

std::vector<std::uint8_t> Encoded(SampleKind kind, const std::vector<std::int16_t>& samples) {
  std::vector<std::uint8_t> bytes;
  SampleEncoder({kind, 8000, ""}).Encode(samples, bytes);
  return bytes;
}

TEST(SampleCodecTest, EveryByteComesBackAsItWas) {
  for (const auto kind : {Linear16, MuLaw, Unsigned8}) {
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < 512; ++i) bytes.push_back(static_cast<std::uint8_t>(i + i / 256));
    if (kind == MuLaw) std::erase(bytes, 0x7F);  // one of its two zeros
    std::vector<std::int16_t> samples;
    SampleDecoder decoder({kind, 8000, ""});
    for (const auto byte : bytes) decoder.Decode({&byte, 1}, samples);
    EXPECT_EQ(Encoded(kind, samples), bytes);
  }
}

TEST(SampleCodecTest, EightBitsAreRoundedAndClipped) {
  EXPECT_THAT(Encoded(Unsigned8, {0, 127, 128, -128, -129, 32767, -32768}),
              ElementsAre(0x80, 0x80, 0x81, 0x80, 0x7F, 0xFF, 0x00));
  EXPECT_THAT(Encoded(Linear16, {0x1234, -2}), ElementsAre(0x34, 0x12, 0xFE, 0xFF));
}

/// How much of `samples` is no sine of 1000 Hz, as a part of the sine's power.
double Distortion(std::span<const std::int16_t> samples) {
  double in = 0;
  double across = 0;
  double all = 0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double phase = std::numbers::pi / 4 * static_cast<double>(i);
    in += samples[i] * std::sin(phase);
    across += samples[i] * std::cos(phase);
    all += samples[i] * static_cast<double>(samples[i]);
  }
  const double sine = 2 * (in * in + across * across) / static_cast<double>(samples.size());
  return (all - sine) / sine;
}

TEST(SampleCodecTest, OtherRatesSoundTheSame) {
  std::vector<std::int16_t> tone(16000);
  for (std::size_t i = 0; i < tone.size(); ++i) {
    tone[i] = static_cast<std::int16_t>(8000 * std::sin(std::numbers::pi / 4 * static_cast<double>(i)));
  }
  for (const int rate : {7200, 11025}) {
    SampleEncoder encoder({Linear16, rate, ""});
    SampleDecoder decoder({Linear16, rate, ""});
    std::vector<std::int16_t> back;
    for (std::size_t at = 0; at < tone.size(); at += 160) {
      std::vector<std::uint8_t> bytes;
      encoder.Encode(std::span(tone).subspan(at, 160), bytes);
      for (auto rest = std::span(bytes); !rest.empty();
           rest = rest.subspan(std::min<std::size_t>(33, rest.size()))) {
        decoder.Decode(rest.first(std::min<std::size_t>(33, rest.size())), back);
      }
    }
    EXPECT_NEAR(static_cast<double>(back.size()), 16000, 400);
    EXPECT_LT(Distortion(std::span(back).subspan(4000, 8000)), 1e-5);
  }
}

TEST(ShieldingTest, DoublesEachDle) {
  std::vector<std::uint8_t> out{1};
  AppendShielded(std::vector<std::uint8_t>{kDle, 2, kDle, kDle, kEtx, kDle}, out);
  EXPECT_THAT(out, ElementsAre(1, kDle, kDle, 2, kDle, kDle, kDle, kDle, kEtx, kDle, kDle));
}

}  // namespace
}  // namespace orven
