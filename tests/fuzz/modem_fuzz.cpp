// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a modem sends, in pieces of any size, through all that reads it.
// Links: orven_line_modem
#include <cstdint>
#include <string>
#include <vector>

#include "adapters/line/modem/caller_id.h"
#include "adapters/line/modem/hang_up_detector.h"
#include "adapters/line/modem/modem_call.h"
#include "adapters/line/modem/modem_reader.h"
#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/modem/voice_format.h"
#include "base/unicode.h"
#include "fuzz/input.h"

namespace {

using namespace orven::fuzz;

/// The largest sound that shielding and resampling can make of `bytes`, in samples.
constexpr std::size_t kMostSamples = 16 * 4096;

class Listener : public orven::ModemOutput {
 public:
  explicit Listener(std::uint8_t choice) : choice_(choice) {}

  void Attach(orven::ModemReader& reader) { reader_ = &reader; }

  void Line(const std::string& text) override {
    Require(!text.empty() && text.size() <= orven::ModemReader::kLongestLine);
    for (const char c : text) Require(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    caller_.Take(text);
    lines_.push_back(text);
    if (text.starts_with("OK")) EndOfAnswer();
    if (text == "VCON") reader_->ExpectAudio();
  }

  void Event(char code) override {
    Require(code > 0x20 && code < 0x7F);
    now_ += std::chrono::milliseconds(choice_);
    if (code == 'R') rings_.Ring(now_);
    Require(rings_.Patience() >= std::chrono::seconds(8));
    keys_.Event(code, now_);
    if (code == 'l') reader_->ExpectLines();
  }

  void Packet(const std::string& text) override {
    Require(text.size() <= orven::ModemReader::kLongestLine);
    caller_.TakePacket(text);
  }

  void Audio(Bytes bytes) override {
    Require(!bytes.empty());
    std::vector<std::int16_t> samples;
    decoder_.Decode(bytes, samples);
    Require(samples.size() <= bytes.size() + kMostSamples);
    hang_up_.Listen(samples);
    std::vector<std::uint8_t> back;
    encoder_.Encode(samples, back);
    std::vector<std::uint8_t> shielded;
    orven::AppendShielded(back, shielded);
    Require(shielded.size() >= back.size() && shielded.size() <= 2 * back.size());
  }

  void AudioEnded() override { EndOfAnswer(); }

  void EndOfAnswer() {
    for (const auto& format : orven::OfferedFormats(lines_))
      Require(format.rate > 0 && format.setting.size() < 1100);
    for (const auto& format : orven::PresentFormat(lines_)) Require(format.setting.size() < 1100);
    lines_.clear();
    if (const auto caller = caller_.Finish()) {
      Require(orven::IsUtf8(caller->name) && orven::IsUtf8(caller->number));
    }
    Require(!caller_.Any());
  }

 private:
  orven::VoiceFormat Format() const {
    constexpr int kRates[] = {8000, 7200, 11025, 8000};
    return {static_cast<orven::SampleKind>(choice_ % 3), kRates[choice_ / 3 % 4], ""};
  }

  std::uint8_t choice_;
  orven::ModemReader* reader_ = nullptr;
  orven::CallerIdLines caller_;
  orven::RingPattern rings_;
  orven::KeyPresses keys_;
  std::chrono::milliseconds now_{0};
  std::vector<std::string> lines_;
  orven::SampleDecoder decoder_{Format()};
  orven::SampleEncoder encoder_{Format()};
  orven::HangUpDetector hang_up_{[](const char*) {}};
};

}  // namespace

/// The first byte chooses the sample format, the second whether sound is expected and how long the pieces
/// are.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  Listener listener(data[0]);
  orven::ModemReader reader(listener);
  listener.Attach(reader);
  if ((data[1] & 1U) != 0) reader.ExpectAudio();
  unsigned pace = data[1] / 2U;
  for (Bytes rest(data + 2, size - 2); !rest.empty();) {
    const auto part = rest.first(std::min<std::size_t>(rest.size(), pace == 0 ? rest.size() : 1 + pace % 17));
    pace = pace * 5 % 127;
    reader.Read(part);
    rest = rest.subspan(part.size());
  }
  listener.EndOfAnswer();
  return 0;
}
