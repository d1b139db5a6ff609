// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "adapters/line/modem/modem_reader.h"
#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/modem/voice_format.h"

namespace orven {
namespace {

using testing::ElementsAre;
using Lines = std::vector<std::string>;
using enum SampleKind;

/// One "kind rate setting" per format: L linear of 16 bits, M mu-law, U unsigned of 8 bits.
std::string Text(const std::vector<VoiceFormat>& formats) {
  std::string text;
  for (const auto& one : formats) {
    text += std::string(text.empty() ? "" : " ") + "LMU"[int(one.kind)] + std::to_string(one.rate) + "=" +
            one.setting;
  }
  return text;
}

TEST(ModemFormatsTest, TakesTheBestByNameAndBits) {
  const std::pair<Lines, std::string> offers[] = {
      {{R"(128,"8-BIT LINEAR",(7200,8000,11025))", R"(129,"16-BIT LINEAR",(7200,8000,11025))",
        R"(130,"8-BIT ALAW",(8000))", R"(131,"8-BIT ULAW",(8000))", R"(132,"IMA ADPCM",(8000))"},
       "L8000=129,8000 L7200=129,7200 L11025=129,11025 M8000=131,8000 "
       "U8000=128,8000 U7200=128,7200 U11025=128,11025"},
      {{R"(0,"SIGNED PCM",8,0,8000,0,0)", R"(1,"UNSIGNED PCM",8,0,8000,0,0)",
        R"(129,"IMA ADPCM",4,0,8000,0,0)", R"(133,"16-bit linear",16,0,(7200),0,0)",
        R"(134,"SIGNED PCM",16,0,8000,0,0)", "OK"},
       "L8000=134,8000,0,0 L7200=133,7200,0,0 U8000=1,8000,0,0"},
      {{R"(+VSM: 4 , "u-Law" , 8 , 0 , ( 8000 ) , (0,1) , 0)"}, "M8000=4,8000,0,0"},
      {{"+VSM=131,mulaw,(7200-8000)"}, "M8000=131,8000 M7200=131,7200"},
      {{"", "OK", R"(128,"8-BIT LINEAR",(9600))", R"(5,"A-LAW",8,0,8000,0,0)",
        R"(0,"8-BIT SIGNED LINEAR",(8000))", R"(2,"UNSIGNED PCM",16,0,8000,0,0)",
        R"("8-BIT LINEAR",128,8000)", R"(128,"8-BIT LINEAR)", ")))((,,,\"", "128,,8000",
        R"(129,"16-BIT ADPCM",(8000))"},
       ""},
  };
  for (const auto& [lines, formats] : offers) EXPECT_EQ(Text(OfferedFormats(lines)), formats);
  const std::pair<const char*, const char*> present[] = {{"+VSM: 128,8000", "U8000=128,8000"},
                                                         {"4,8000,0,0", "M8000=4,8000,0,0"},
                                                         {"129,8000", ""},
                                                         {"1,9600", ""}};
  for (const auto& [line, format] : present)
    EXPECT_EQ(Text(PresentFormat(Lines{line, "OK"})), format) << line;
}

std::vector<std::uint8_t> Encoded(SampleKind kind, const std::vector<std::int16_t>& samples) {
  std::vector<std::uint8_t> bytes;
  SampleEncoder({kind, 8000, ""}).Encode(samples, bytes);
  return bytes;
}

TEST(SampleCodecTest, EveryByteComesBackAsItWasRoundedAndClipped) {
  for (const auto kind : {Linear16, MuLaw, Unsigned8}) {
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < 512; ++i) bytes.push_back(static_cast<std::uint8_t>(i + i / 256));
    if (kind == MuLaw) std::erase(bytes, 0x7F);  // one of its two zeros
    std::vector<std::int16_t> samples;
    SampleDecoder decoder({kind, 8000, ""});
    for (const auto byte : bytes) decoder.Decode({&byte, 1}, samples);
    EXPECT_EQ(Encoded(kind, samples), bytes);
  }
  EXPECT_THAT(Encoded(Unsigned8, {0, 127, 128, -128, -129, 32767, -32768}),
              ElementsAre(0x80, 0x80, 0x81, 0x80, 0x7F, 0xFF, 0x00));
  EXPECT_THAT(Encoded(Linear16, {0x1234, -2}), ElementsAre(0x34, 0x12, 0xFE, 0xFF));
  std::vector<std::uint8_t> shielded{1};
  AppendShielded(std::vector<std::uint8_t>{kDle, 2, kDle, kDle, kEtx, kDle}, shielded);
  EXPECT_THAT(shielded, ElementsAre(1, kDle, kDle, 2, kDle, kDle, kDle, kDle, kEtx, kDle, kDle));
}

TEST(SampleCodecTest, AToneStaysAToneAtOtherRates) {
  constexpr double kStep = std::numbers::pi / 4;  // 1000 Hz
  std::vector<std::int16_t> tone(16000);
  for (std::size_t i = 0; i < tone.size(); ++i) tone[i] = std::int16_t(8000 * std::sin(kStep * double(i)));
  for (const int rate : {7200, 11025}) {
    SampleEncoder encoder({Linear16, rate, ""});
    SampleDecoder decoder({Linear16, rate, ""});
    std::vector<std::int16_t> back;
    for (std::size_t at = 0; at < tone.size(); at += 160) {
      std::vector<std::uint8_t> bytes;
      encoder.Encode(std::span(tone).subspan(at, 160), bytes);
      const auto half = bytes.size() / 3;  // in the middle of a sample
      decoder.Decode(std::span(bytes).first(half), back);
      decoder.Decode(std::span(bytes).subspan(half), back);
    }
    EXPECT_NEAR(double(back.size()), 16000, 400);
    double error = 0;  // a sine's neighbours add up to cos(1000 Hz) times twice itself
    for (std::size_t i = 4000; i < 12000; ++i) {
      error = std::max(error, std::abs(back[i - 1] + back[i + 1] - 2 * std::cos(kStep) * back[i]));
    }
    EXPECT_LT(error, 40) << "of 8000";
  }
}

}  // namespace
}  // namespace orven
