// SPDX-License-Identifier: GPL-3.0-or-later
// How a modem's caller IDs, formats and samples are read, and the tones of a line.
#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <numbers>
#include <random>
#include <sstream>

#include "adapters/line/modem/caller_id.h"
#include "adapters/line/modem/hang_up_detector.h"
#include "adapters/line/modem/modem_preparation.h"
#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/modem/voice_format.h"

namespace orven {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using Lines = std::vector<std::string>;
using Samples = std::vector<std::int16_t>;
using enum SampleKind;

TEST(CallerIdTest, ReadsEveryFormat) {
  const std::pair<Lines, std::string> rows[] = {
      // the lines, and "name/number" if either was given
      {{"DATE=0102", "TIME=1405", "NMBR=5551234", "NAME=Anna Bell"}, "Anna Bell/5551234"},
      {{"NAME = \"Anna Bell      \"", "nmbr =  5551234 ", "NMBR=O"}, "Anna Bell/5551234"},
      {{"NAME=J\xFCrgen"}, "J\xC3\xBCrgen/"},
      {{"NAME=J\xC3\xBCrgen", "NMBR="}, "J\xC3\xBCrgen/"},
      {{"DATE=0102", "TIME=1405"}, "-"},
      {{"NMBR = P", "NAME = P"}, "/"},
      {{"NMBR=O", "NAME=Anna"}, "Anna/"},
      {{"NAME=ANONYMOUS"}, "/"},
      // Messages: single (date, time, number), multiple (also the name), with a withheld number.
      {{"MESG=040F303130323134303535353531323334F7"}, "/5551234"},
      {{"MESG = 80 19 01 08 30 31 30 32 31 34 30 35 02 07 35 35 35 31 32 33 34 07 04 41 6E 6E 61 D6"},
       "Anna/5551234"},
      {{"MESG=800304015028"}, "/"},
      // A wrong checksum, messages cut short, a parameter beyond the end, no hex digits, an empty message.
      {{"MESG=040F303130323134303535353531323334F8"}, "-"},
      {{"MESG=040F303130", "MESG=8002020973", "MESG=80zz", "MESG=8", "MESG="}, "-"},
  };
  for (const auto& [lines, told] : rows) {
    CallerIdLines caller;
    for (const auto& line : lines) EXPECT_TRUE(caller.Take(line) && caller.Any()) << line;
    const auto found = caller.Finish();
    EXPECT_EQ(found ? found->name + "/" + found->number : "-", told) << lines[0];
    EXPECT_FALSE(caller.Any() || caller.Finish());
  }
  for (const char* line : {"OK", "RING", "=", "NMBR", "DRON=20", "+VCID=1"})
    EXPECT_FALSE(CallerIdLines().Take(line)) << line;
}

TEST(FirmwareTest, RecognizesTheFaultyOne) {
  EXPECT_THAT(FirmwareAdvice("56000, 56K FAX USB V1.2.18, 5637"), testing::HasSubstr("misses rings"));
  for (const char* fine : {"5637 V1.2.23", "HSF 1.2.18", "5637"}) EXPECT_EQ(FirmwareAdvice(fine), "");
}

/// Returns each format as its kind (L: 16-bit linear, M: mu-law, U: 8-bit unsigned), rate, "=" and setting.
std::string Text(const std::vector<VoiceFormat>& formats) {
  std::string text;
  for (const auto& one : formats) {
    text += std::string(text.empty() ? "" : " ") + "LMU"[int(one.kind)] + std::to_string(one.rate) + "=" +
            one.setting;
  }
  return text;
}

TEST(ModemFormatsTest, RanksFormatsByNameAndBits) {
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
        R"(0,"8-BIT SIGNED LINEAR",(8000))", R"(2,"UNSIGNED PCM",16,0,8000,0,0)", R"(x,"8-BIT LINEAR",8000)",
        "128", R"(128,"8-BIT LINEAR)", ")))((,,,\"", "128,,8000", R"(129,"16-BIT ADPCM",(8000))"},
       ""},
  };
  for (const auto& [lines, formats] : offers) EXPECT_EQ(Text(OfferedFormats(lines)), formats);
  std::string present;
  for (const char* line : {"+VSM: 128,8000", "4,8000,0,0", "129,8000", "1,9600"})
    present += Text(PresentFormat(Lines{line, "OK"})) + "; ";
  EXPECT_EQ(present, "U8000=128,8000; M8000=4,8000,0,0; ; ; ");
}

TEST(SampleEncoderTest, RoundsAndClipsToEightBits) {
  std::vector<std::uint8_t> bytes;
  SampleEncoder({Unsigned8, 8000, ""}).Encode(Samples{0, 127, 128, -128, -129, 32767, -32768}, bytes);
  EXPECT_THAT(bytes, ElementsAre(0x80, 0x80, 0x81, 0x80, 0x7F, 0xFF, 0x00));
}

/// Returns the audio of a cadence, repeated for `seconds` but at least once, over noise at -50 dBm0. A part
/// of it is its milliseconds, then its tones: "500/480/620 300" is half a second of two tones, then a pause
/// of 300 ms.
Samples Audio(const std::string& cadence, int seconds, double level) {
  std::mt19937 random(5);
  std::normal_distribution<double> noise(0, 50);
  const double amplitude = 32768 * std::pow(10, (level - 3.14) / 20);  // of `level` in dBm0
  Samples samples;
  do {
    std::istringstream parts(cadence);
    for (int length = 0; parts >> length;) {
      std::vector<double> tones;
      for (double tone = 0; parts.peek() == '/' && parts.ignore() >> tone;) tones.push_back(tone);
      for (int i = 0; i < length * 8; ++i) {
        double sum = 0;
        for (const double tone : tones) sum += std::sin(2 * std::numbers::pi * tone * i / 8000);
        const double each = amplitude / std::sqrt(std::max<std::size_t>(tones.size(), 1));
        samples.push_back(static_cast<std::int16_t>(sum * each + noise(random)));
      }
    }
  } while (samples.size() < static_cast<std::size_t>(seconds) * 8000);
  return samples;
}

struct HangUpDetectorTest : testing::TestWithParam<std::pair<SampleKind, int>> {
  /// Returns what is heard in `samples` through a modem with this kind and rate of samples, and after how
  /// many seconds.
  static std::pair<std::string, double> Heard(const Samples& samples) {
    std::pair<std::string, double> result;
    std::size_t at = 0;
    HangUpDetector detector([&](const char* what) {
      EXPECT_EQ(result.first, "");
      result = {what, static_cast<double>(at) / 8000};
    });
    const VoiceFormat format{GetParam().first, GetParam().second, ""};
    SampleEncoder encoder(format);
    SampleDecoder decoder(format);
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
      const auto [heard, when] = Heard(Audio(cadence, 8, level));
      EXPECT_EQ(heard, what) << cadence << " at " << level << " dBm0";
      EXPECT_LE(when, seconds);
    }
  };
  for (const char* busy : {"500/480/620 500", "250/480/620 250", "375/400 375", "480/425 480", "200/425 200",
                           "700/450 700", "300/440 400", "400/400 350 225/400 525"})
    expect(busy, "the busy tone", 4 * double(Audio(busy, 0, 0).size()) / 8000);  // four cycles
  for (const char* dial :
       {"1000 9000/350/440", "1000 9000/350/425", "1000 9000/425", "1000 9000/400", "1000 9000/450"})
    expect(dial, "the dial tone", 1 + 4);
  const auto [heard, when] = Heard(Audio("1000/1000 65000", 66, -20));
  EXPECT_EQ(heard, "a minute of silence");
  EXPECT_NEAR(when, 61, 0.1);
}

// A voice or a tune that is mistaken for a busy tone would cut a message off.
TEST_P(HangUpDetectorTest, OtherTonesAndVoicesAreIgnored) {
  std::mt19937 random(1);
  std::string tune, code,
      knocks;  // a music box with a note per beat, and one tone with random lengths and pauses
  for (int i = 0; i < 400; ++i)
    tune +=
        "250/" + std::to_string(220 * std::pow(2, double(random() % 24) / 12)) + (i % 2 == 0 ? " " : " 250 ");
  for (int i = 0; i < 100; ++i) {
    code += std::to_string(120 + int(random() % 12) * 50) + "/425 300 ";
    knocks += "300/425 " + std::to_string(100 + i % 9 * 80) + " ";
  }
  // A calling fax, ringing tones (single and in pairs), keys, tones with short gaps, beating tones, other
  // pitches and changing pitches.
  for (const auto& cadence :
       {"500/1100 3000"s, "2000/440/480 4000"s, "400/400/450 200 400/400/450 2000"s,
        "100/697/1209 100 100/941/1336 100"s, "2500/425 300 900/440 50"s, "1000/350/400"s, "9000/600"s,
        "9000/350/620"s, "9000/300/425"s, "500/600 500"s, "900/425 500"s, "400/440 400 400/500 400"s,
        "400/480/620 400 400/480/660 400"s, tune, code, knocks})
    EXPECT_EQ(Heard(Audio(cadence, 40, -15)).first, "") << cadence.substr(0, 50);
  const std::string text =
      "Hello, who is there? Oh. Oh. Oh. Oh. No no no no no no. One. One. One. One. Mooooo. Mmmmmmmm. "
      "Hummmmmm. You "
      "you you you you. Please call me back at nine nine nine nine nine, soon. Do do do do do do.";
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
                         testing::Values(std::pair(Linear16, 7200), std::pair(MuLaw, 8000),
                                         std::pair(Unsigned8, 11025)));

}  // namespace
}  // namespace orven
