// SPDX-License-Identifier: GPL-3.0-or-later
// The host's bytes, and the answers to them.
#include <utility>

#include "modem_emulator/modem_emulator.h"
#include "modem_emulator/voice_streams.h"

namespace orven {

using emulator::Playback;
using emulator::Result;

namespace {

constexpr std::chrono::milliseconds kEcho(1);
constexpr std::size_t kCommandRoom = 1024;
constexpr int kVoiceCall = 8;  // the usual number in place of VCON

}  // namespace

std::size_t ModemEmulator::Room() const {
  if (wedged_ && playback_) return 0;
  // After the end of the audio a cancelling code must still get through.
  return playback_ && !playback_->Ended() ? playback_->Room() : kCommandRoom;
}

int ModemEmulator::NeededPortRate() const {
  constexpr int kBitsPerByte = 10;  // a start and a stop bit
  const auto size = static_cast<int>(emulator::BytesPerSample(interpreter_.Format().coding));
  return interpreter_.Rate() * size * kBitsPerByte;
}

void ModemEmulator::FromHost(std::span<const std::uint8_t> bytes) {
  if (wedged_) return;
  active_at_ = clock_.Uptime();
  for (const auto byte : bytes) {
    switch (mode_) {
      case Mode::Command: CommandByte(byte); break;
      case Mode::Transmit: TransmitByte(byte); break;
      case Mode::Receive: ReceiveByte(byte); break;
    }
  }
}

void ModemEmulator::CommandByte(std::uint8_t byte) {
  const bool behind_dle = dle_;
  dle_ = byte == emulator::kDleByte && !behind_dle;
  if (dle_ || behind_dle) return;  // a code for audio that has ended
  if (answering_) {
    Complain("a byte in the middle of an answer");
    return;
  }
  if (interpreter_.Echo()) port_.Send(std::span(&byte, 1), kEcho);
  if (const auto line = line_.Put(byte)) Execute(*line);
}

void ModemEmulator::Execute(const std::string& line) {
  commands_.push_back(line);
  answering_ = true;
  Advance();
  Reply(interpreter_.Execute(line));
}

void ModemEmulator::Reply(const emulator::Interpreter::Answer& answer) {
  std::string text;
  for (const auto& line : answer.lines) {
    if (faults_.ring_inside_a_reply && !text.empty()) text += Framed("RING");
    text += Framed(line);
  }
  switch (answer.result) {
    case Result::Transmit: return Answer(text + ResultText(answer.result), [this] { StartTransmit(); });
    case Result::Receive: return Answer(text + ResultText(answer.result), [this] { StartReceive(); });
    case Result::Later: return;
    default: return Answer(text + ResultText(answer.result));
  }
}

std::string ModemEmulator::Framed(const std::string& line) const {
  return (interpreter_.Verbose() ? "\r\n" : "") + line + "\r\n";
}

std::string ModemEmulator::ResultText(Result result) const {
  static const std::map<Result, std::pair<std::string, int>> texts = {
      {Result::Ok, {"OK", 0}},
      {Result::Later, {"OK", 0}},
      {Result::Error, {"ERROR", 4}},
      {Result::NoCarrier, {"NO CARRIER", 3}},
      {Result::Transmit, {"CONNECT", 1}},
      {Result::Receive, {"CONNECT", 1}},
      {Result::Voice, {"VCON", kVoiceCall}},
  };
  if (interpreter_.Quiet()) return "";
  const auto& [word, number] = texts.at(result);
  return interpreter_.Verbose() ? Framed(word) : std::to_string(number) + "\r";
}

void ModemEmulator::Answer(const std::string& text, EventLoop::Task then) {
  answering_ = true;
  port_.Send(text, port_.AnswerDelay(), [this, then = std::move(then)] {
    answering_ = false;
    active_at_ = clock_.Uptime();
    if (then) then();
  });
}

void ModemEmulator::EndOfAudio(const std::string& result) {
  mode_ = Mode::Command;
  dle_ = false;
  News("idle");
  Answer(ResultText(result == "VCON" ? Result::Voice : Result::Ok));
  if (faults_.stale_ok) port_.Send(ResultText(Result::Ok), port_.AnswerDelay());
}

void ModemEmulator::TransmitByte(std::uint8_t byte) {
  if (!playback_->Begun()) Advance();  // playback starts now, not at the last tick
  switch (playback_->Put(byte)) {
    case Playback::Said::Sound: return;
    case Playback::Said::End: return;  // the answer comes when everything has been played
    case Playback::Said::Full: return Complain("a byte came when the buffer was full");
    case Playback::Said::Other: return Complain("an unshielded 0x10 in the audio, or an unknown code");
    case Playback::Said::Cancel: break;
  }
  Advance();
  playback_.reset();
  EndOfAudio("OK");
}

void ModemEmulator::ReceiveByte(std::uint8_t byte) {
  if (std::exchange(dle_, false)) {
    const bool stop = byte == '!' || (byte == emulator::kEscByte && profile_.escape_ends);
    if (stop) StopAsked();
  } else if (byte == emulator::kDleByte) {
    dle_ = true;
  } else if (!stopping_) {
    Complain("an unshielded byte while the modem receives");
    if (profile_.any_byte_ends) StopAsked();
  }
}

void ModemEmulator::Complain(const std::string& sentence) {
  complaints_.push_back(sentence);
  News("complaint: " + sentence);
}

void ModemEmulator::News(const std::string& word) {
  if (tell_) tell_(word);
}

}  // namespace orven
