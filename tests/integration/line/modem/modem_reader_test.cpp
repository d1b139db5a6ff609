// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_reader.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string_view>

namespace orven {
namespace {

using namespace std::string_view_literals;

/// Writes down what is said: lines as "text|", signs as <x>, packets as {text}, sound as it is, its end as #.
class Transcript : public ModemOutput {
 public:
  void Line(const std::string& text) override {
    text_ += text + '|';
    if (on_line) on_line(text);
  }
  void Event(char code) override { text_ += {'<', code, '>'}; }
  void Packet(const std::string& text) override { text_ += '{' + text + '}'; }
  void Audio(std::span<const std::uint8_t> bytes) override {
    text_.append(bytes.begin(), bytes.end());
    ++runs;
  }
  void AudioEnded() override { text_ += '#'; }

  std::string Take() { return std::exchange(text_, {}); }
  std::function<void(const std::string&)> on_line;
  int runs = 0;

 private:
  std::string text_;
};

class ModemReaderTest : public testing::Test {
 protected:
  void Read(std::string_view text) {
    reader.Read({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  }
  std::string Said(std::string_view text) {
    Read(text);
    return said.Take();
  }

  Transcript said;
  ModemReader reader{said};
};

// A call as it may come: signs within lines, sound that looks like events and like answers, doubled <DLE>.
constexpr auto kCall =
    "\r\nRING\r\n\x10R\r\nDATE = 0102\r\nNM\x10RBR = "
    "555\r\n\x10XNAME=Eve\r\nNMBR=1\r\n\x10.\r\nCONNECT\r\nVCON\r\n"
    "CONNECT\r\nab\r\nOK\r\n\x10\x10R\x10"
    "5c\x10\x1A"
    "d\x10s\x10\x10\x10\x10\x03"
    "e\x10\x03\r\nVCON\r\n\x10"
    "b"sv;
constexpr auto kCallSaid =
    "RING|<R>DATE = 0102|<R>NMBR = 555|{NAME=Eve\r\nNMBR=1\r\n}CONNECT|VCON|CONNECT|"
    "ab\r\nOK\r\n\x10R<5>c\x10\x10"
    "d<s>\x10\x10\x03"
    "e#VCON|<b>"sv;

TEST_F(ModemReaderTest, ReadsTheSameHoweverTheBytesAreSplit) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    ModemReader fresh(said);
    said.on_line = [&fresh](const std::string& line) {
      if (line == "VCON") fresh.ExpectAudio();
    };
    for (auto rest = kCall; !rest.empty();) {
      const auto longest = round == 0 ? kCall.size() : round == 1 ? 1 : 1 + random() % 9;
      const auto part = rest.substr(0, longest);
      fresh.Read({reinterpret_cast<const std::uint8_t*>(part.data()), part.size()});
      rest.remove_prefix(part.size());
    }
    ASSERT_EQ(said.Take(), kCallSaid) << "round " << round;
  }
}

TEST_F(ModemReaderTest, SoundComesInRuns) {
  reader.ExpectAudio();
  Read("CONNECT\r\n");
  Read(std::string(5000, 'a') + "\x10\x10" + std::string(5000, 'b') + "\x10\x1B");
  EXPECT_EQ(said.runs, 2);
  EXPECT_EQ(said.Take().size(), 8U + 10001 + 1);
}

TEST_F(ModemReaderTest, SoundBeginsBehindWhicheverLineEndThereIs) {
  for (const auto end : {"\r\n"sv, "\n"sv, "\r"sv}) {
    reader.ExpectAudio();
    EXPECT_EQ(Said("CONNECT" + std::string(end)), "CONNECT|");
    EXPECT_EQ(Said("\x80\x10\x03"), "\x80#");
  }
  // Who asks for sound and is refused reads lines on.
  reader.ExpectAudio();
  EXPECT_EQ(Said("ERROR\r\n"), "ERROR|");
  reader.ExpectLines();
  EXPECT_EQ(Said("CONNECT\r\nOK\r\n"), "CONNECT|OK|");
}

TEST_F(ModemReaderTest, ReadsLinesAgainWhenTheEndOfSoundWasLost) {
  reader.ExpectAudio();
  Read("CONNECT\r\nab\x10");
  reader.ExpectLines();
  said.Take();
  EXPECT_EQ(Said("OK\r\n\x10\x03"
                 "OK\r\n"),
            "OK|OK|");
}

TEST_F(ModemReaderTest, GarbageCostsNoMoreThanItsLine) {
  EXPECT_EQ(Said("\0\x7F\x01 AT\0 OK \r\n\t\r \n"sv), "AT OK|");
  EXPECT_EQ(Said("O\x10\rK\n\x10\x80"
                 "A\r"),
            "O|K|\x80"
            "A|");
  EXPECT_EQ(Said(std::string(ModemReader::kLongestLine + 1, 'x') + "\r\nOK\r\n"), "OK|");
  EXPECT_EQ(Said(std::string(ModemReader::kLongestLine, 'x') + "\n").size(), ModemReader::kLongestLine + 1);
  // A packet without an end, in lines and in sound.
  EXPECT_EQ(Said("\x10X" + std::string(ModemReader::kLongestLine + 1, 'x') + "OK\r\n"), "OK|");
  reader.ExpectAudio();
  EXPECT_EQ(Said("CONNECT\r\na\x10Xb\x10\x10"
                 "c\x10\x03OK\r\n"),
            "CONNECT|a#OK|");
}

}  // namespace
}  // namespace orven
