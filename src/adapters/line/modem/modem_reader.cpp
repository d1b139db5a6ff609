// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_reader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"

namespace orven {
namespace {

constexpr char kPacketBegins = 'X';
constexpr char kPacketEnds = '.';
constexpr std::array<std::uint8_t, 2> kTwoDle{kDle, kDle};

bool IsLineEnd(std::uint8_t byte) {
  return byte == '\r' || byte == '\n';
}

bool IsControl(std::uint8_t byte) {
  return byte < 0x20 || byte == 0x7F;
}

bool IsVisible(std::uint8_t byte) {
  return byte > 0x20 && byte < 0x7F;
}

/// "CONNECT", also with the rate that some modems append.
bool IsConnect(const std::string& line) {
  return line == "CONNECT" || line.starts_with("CONNECT ");
}

}  // namespace

void AppendShielded(std::span<const std::uint8_t> audio, std::vector<std::uint8_t>& out) {
  auto rest = audio.begin();
  while (rest != audio.end()) {
    const auto dle = std::find(rest, audio.end(), kDle);
    out.insert(out.end(), rest, dle);
    if (dle == audio.end()) return;
    out.insert(out.end(), 2, kDle);
    rest = dle + 1;
  }
}

void ModemReader::Read(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    if (mode_ == Mode::Connected) {
      mode_ = Mode::Audio;
      if (bytes.front() == '\n') bytes = bytes.subspan(1);
    } else if (mode_ == Mode::Audio && !packet_ && (!dle_ || bytes.front() == kDle)) {
      bytes = bytes.subspan(ReadAudio(bytes));
    } else {
      const auto byte = bytes.front();
      bytes = bytes.subspan(1);
      ReadByte(byte);
    }
  }
}

void ModemReader::ExpectLines() {
  mode_ = Mode::Lines;
  audio_expected_ = dle_ = packet_ = too_long_ = false;
  line_.clear();
}

/// Passes on the run of samples at the start of `bytes` and returns how many bytes were read. A <DLE> after a
/// <DLE> is a sample and starts the run.
std::size_t ModemReader::ReadAudio(std::span<const std::uint8_t> bytes) {
  const auto dle = std::find(bytes.begin() + (dle_ ? 1 : 0), bytes.end(), kDle);
  const auto run = bytes.first(static_cast<std::size_t>(dle - bytes.begin()));
  dle_ = dle != bytes.end();
  const auto read = run.size() + (dle_ ? 1 : 0);
  if (!run.empty()) output_.Audio(run);
  return read;
}

void ModemReader::ReadByte(std::uint8_t byte) {
  if (dle_) {
    dle_ = false;
    BehindDle(byte);
  } else if (byte == kDle) {
    dle_ = true;
  } else {
    ReadText(byte);
  }
}

void ModemReader::BehindDle(std::uint8_t byte) {
  const bool sound = mode_ == Mode::Audio;
  if (IsVisible(byte)) {
    ReadEvent(static_cast<char>(byte));
  } else if (sound && (byte == kEtx || byte == kEsc)) {
    EndAudio();
  } else if (sound && !packet_) {
    if (byte == kSub) output_.Audio(kTwoDle);
  } else {
    ReadText(byte);  // the <DLE> was garbage; it must not swallow the line's end
  }
}

void ModemReader::ReadEvent(char code) {
  if (code == kPacketBegins) {
    packet_ = true;
    packet_text_.clear();
  } else if (packet_ && code == kPacketEnds) {
    packet_ = false;
    output_.Packet(std::exchange(packet_text_, {}));
  } else {
    output_.Event(code);
  }
}

void ModemReader::ReadText(std::uint8_t byte) {
  const bool end = IsLineEnd(byte);
  if (packet_) {
    if (end || !IsControl(byte)) packet_text_ += static_cast<char>(byte);
    packet_ = packet_text_.size() <= kLongestLine;
  } else if (end) {
    EndLine(byte);
  } else if (!IsControl(byte) && !too_long_) {
    line_ += static_cast<char>(byte);
    too_long_ = line_.size() > kLongestLine;
  }
}

void ModemReader::EndLine(std::uint8_t end) {
  const std::string text(Trimmed(line_, " "));
  line_.clear();
  if (std::exchange(too_long_, false) || text.empty()) return;
  if (audio_expected_ && IsConnect(text)) {
    audio_expected_ = false;
    mode_ = end == '\n' ? Mode::Audio : Mode::Connected;
  }
  output_.Line(text);
}

void ModemReader::EndAudio() {
  mode_ = Mode::Lines;
  packet_ = too_long_ = false;
  line_.clear();
  output_.AudioEnded();
}

}  // namespace orven
