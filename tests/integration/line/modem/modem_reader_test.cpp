// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_reader.h"

#include <gtest/gtest.h>

#include <string_view>

namespace orven {
namespace {

using namespace std::string_literals;

/// Writes down what is said: lines as "text|", events as <x>, packets as {text}, audio as it is, its end as
/// #. Audio is expected behind the line "ATA".
class Transcript : public ModemOutput {
 public:
  std::string Read(std::string_view text, std::size_t piece) {
    for (; !text.empty(); text.remove_prefix(std::min(piece, text.size()))) {
      const auto part = text.substr(0, piece);
      reader_.Read({reinterpret_cast<const std::uint8_t*>(part.data()), part.size()});
    }
    return text_;
  }
  ModemReader& Reader() { return reader_; }

 private:
  void Line(const std::string& text) override {
    text_ += text + '|';
    if (text == "ATA") reader_.ExpectAudio();
  }
  void Event(char code) override { text_ += {'<', code, '>'}; }
  void Packet(const std::string& text) override { text_ += '{' + text + '}'; }
  void Audio(std::span<const std::uint8_t> bytes) override { text_.append(bytes.begin(), bytes.end()); }
  void AudioEnded() override { text_ += '#'; }

  std::string text_;
  ModemReader reader_{*this};
};

TEST(ModemReaderTest, ReadsTheSameHoweverTheBytesAreSplit) {
  const std::string longest(ModemReader::kLongestLine, 'x');
  const std::pair<std::string, std::string> rows[] = {
      // Events within lines, packets, audio that looks like events and like answers, doubled <DLE>.
      {"\r\nRING\r\n\x10R\r\nDATE = 0102\r\nNM\x10RBR = 555\r\n", "RING|<R>DATE = 0102|<R>NMBR = 555|"},
      {"\x10XNAME=Eve\r\nNMBR=1\r\n\x10.\r\nCONNECT\r\nOK\r\n", "{NAME=Eve\r\nNMBR=1\r\n}CONNECT|OK|"},
      {"ATA\rCONNECT\r\nab\r\nOK\r\n\x10\x10R\x10#\x10\x1Az\x10s",
       "ATA|CONNECT|ab\r\nOK\r\n\x10R<#>\x10\x10z<s>"},
      {"ATA\rCONNECT\n\x80\x10\x10\x03z\x10\x03\r\nVCON\r\n\x10y", "ATA|CONNECT|\x80\x10\x03z#VCON|<y>"},
      {"ATA\rCONNECT 115200\ra\x10\x1B", "ATA|CONNECT 115200|a#"},
      // Garbage costs no more than its line or packet.
      {"\0\x7F\x01 AT\0 OK \r\n\t\r \n"s, "AT OK|"},
      {"O\x10\rK\n\x10\x80Z\r", "O|K|\x80Z|"},
      {longest + "x\r\nOK\r\n" + longest + "\n", "OK|" + longest + "|"},
      {"\x10X" + longest + "xOK\r\n", "OK|"},
      {"ATA\rCONNECT\r\na\x10Xb\x10\x10z\x10\x03OK\r\n", "ATA|CONNECT|a#OK|"},
  };
  for (const auto& [bytes, said] : rows) {
    for (std::size_t piece : {1U, 2U, 3U, 5U, 7U, 100'000U}) {
      EXPECT_EQ(Transcript().Read(bytes, piece), said) << piece;
    }
  }
}

TEST(ModemReaderTest, ReadsLinesAgainWhenTheEndOfTheAudioWasLost) {
  Transcript said;
  said.Read("ATA\rCONNECT\r\nab\x10", 100);
  said.Reader().ExpectLines();
  EXPECT_EQ(said.Read("OK\r\n\x10\x03OK\r\nCONNECT\r\nOK\r\n", 100), "ATA|CONNECT|abOK|OK|CONNECT|OK|");
}

}  // namespace
}  // namespace orven
