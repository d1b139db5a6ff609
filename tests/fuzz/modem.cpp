// SPDX-License-Identifier: GPL-3.0-or-later
// Passes any bytes from a modem, in pieces of any size, to every reader of them.
#include <string>
#include <vector>

#include "adapters/line/modem/caller_id.h"
#include "adapters/line/modem/hang_up_detector.h"
#include "adapters/line/modem/modem_call.h"
#include "adapters/line/modem/modem_reader.h"
#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/modem/voice_format.h"
#include "base/unicode.h"
#include "fuzz/fuzz.h"

namespace orven::fuzz {
namespace {

class Listener : public ModemOutput {
 public:
  explicit Listener(std::uint8_t choice) : choice_(choice) {}

  void Line(const std::string& text) override {
    const auto control = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    Require(!text.empty() && text.size() <= ModemReader::kLongestLine && std::ranges::none_of(text, control));
    caller_.Take(text);
    lines_.push_back(text);
    if (text.starts_with("OK")) EndOfAnswer();
    if (text == "VCON") reader.ExpectAudio();
  }
  void Event(char code) override {
    Require(code > 0x20 && code < 0x7F);
    now_ += std::chrono::milliseconds(choice_);
    keys_.Event(code, now_);
    if (code == 'l') reader.ExpectLines();
  }
  void Packet(const std::string& text) override {
    Require(text.size() <= ModemReader::kLongestLine);
    caller_.TakePacket(text);
  }
  void Audio(Bytes bytes) override {
    std::vector<std::int16_t> samples;
    decoder_.Decode(bytes, samples);
    hang_up_.Listen(samples);
  }
  void AudioEnded() override { EndOfAnswer(); }

  void EndOfAnswer() {
    for (const auto& format : OfferedFormats(lines_)) Require(format.rate > 0);
    (void)PresentFormat(lines_);
    lines_.clear();
    if (const auto caller = caller_.Finish()) Require(IsUtf8(caller->name) && IsUtf8(caller->number));
    Require(!caller_.Any());
  }

  ModemReader reader{*this};

 private:
  VoiceFormat Format() const {
    constexpr int kRates[] = {8000, 7200, 11025, 8000};
    return {static_cast<SampleKind>(choice_ % 3), kRates[choice_ / 3 % 4], ""};
  }

  std::uint8_t choice_;
  CallerIdLines caller_;
  KeyPresses keys_;
  std::chrono::milliseconds now_{0};
  std::vector<std::string> lines_;
  SampleDecoder decoder_{Format()};
  HangUpDetector hang_up_{[](const char*) {}};
};

}  // namespace

void Modem(Bytes input) {
  Choices choices(input);
  Listener listener(choices.Byte());
  unsigned pace = choices.Byte();
  if (pace % 2 != 0) listener.reader.ExpectAudio();
  for (pace /= 2; choices.Any(); pace = pace * 5 % 127)
    listener.reader.Read(choices.Take(pace == 0 ? input.size() : 1 + pace % 17));
  listener.EndOfAnswer();
}

}  // namespace orven::fuzz
