// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "modem_emulator/command_line.h"
#include "modem_emulator/host_port.h"
#include "modem_emulator/interpreter.h"
#include "modem_emulator/modem_emulator.h"
#include "modem_emulator/playback.h"
#include "modem_emulator/receive_stream.h"
#include "modem_emulator/silence_watch.h"

namespace orven {

/// The modem: the host's side in host_side.cpp, the line's in line_side.cpp, and how sound passes between
/// them in sound_side.cpp.
class ModemEmulator::Impl final : emulator::Hardware {
 public:
  using Time = std::chrono::milliseconds;

  Impl(const ModemProfile& profile, const ModemFaults& faults, EventLoop& loop, const Clock& clock,
       ToHost to_host);

  void FromHost(std::span<const std::uint8_t> bytes);
  std::size_t Room() const;
  int NeededPortRate() const;

  void Ring();
  void CallerIdLine(const std::string& line);
  void Press(char key, Time duration);
  void Say(std::vector<std::int16_t> samples);
  void HangUp(emulator::NetworkTone tone);
  void Sign(char code);
  void Wedge(bool wedged);
  void PowerCycle();

  bool OffHook() const override { return off_hook_; }

  Tell tell;
  emulator::CallerSound caller;
  Time off_hook_at{0};
  Time key_reported_at{0};
  std::vector<std::int16_t> heard;
  std::vector<std::int16_t> spoken;
  std::vector<std::uint8_t> played;
  std::vector<std::uint8_t> sent;
  std::vector<std::string> commands;
  std::vector<std::string> complaints;

 private:
  enum class Mode { Command, Transmit, Receive };

  // The host's side.
  void CommandByte(std::uint8_t byte);
  void TransmitByte(std::uint8_t byte);
  void ReceiveByte(std::uint8_t byte);
  void Execute(const std::string& line);
  void Reply(const emulator::Interpreter::Answer& answer);
  std::string Framed(const std::string& line) const;
  std::string ResultText(emulator::Result result) const;
  void Answer(const std::string& text, EventLoop::Task then = {});
  void EndOfSound(const std::string& result);

  // The line's side.
  bool GoOffHook() override;
  void GoOnHook() override;
  void RingReport();
  void PressNow(char key, Time duration);
  void SignInCall(char code, Time delay);

  // Sound.
  void PlayTones(std::vector<emulator::ToneStep> steps) override;
  void StartTransmit();
  void StartReceive();
  void StopAsked();
  void EndReceive();
  void Advance();
  void Pass(std::size_t samples);
  void WatchInactivity();

  void Complain(const std::string& sentence) override;
  void News(const std::string& word);
  void After(Time delay, EventLoop::Task task);

  const ModemProfile& profile_;
  const ModemFaults faults_;
  EventLoop& loop_;
  const Clock& clock_;
  emulator::HostPort port_;
  emulator::CommandLine line_;
  emulator::Interpreter interpreter_;
  std::unique_ptr<Timer> tick_;

  Mode mode_ = Mode::Command;
  bool answering_ = false;  ///< the answer to a command has not left yet
  bool dle_ = false;        ///< the latest byte, in commands or while receiving
  bool wedged_ = false;
  Time active_at_{0};  ///< bytes from the host, or to it

  bool off_hook_ = false;
  bool missed_one_ = false;  ///< the answer that did not take has been
  int call_ = 0;             ///< how often it went on or off the hook: what was meant for one call ends there
  Time rings_until_{0};
  Time keys_free_at_{0};  ///< when the next key can be pressed

  Time answered_at_{0};
  std::int64_t passed_ = 0;  ///< samples of the line since then
  std::optional<emulator::Playback> playback_;
  std::optional<emulator::ReceiveStream> receive_;
  std::optional<emulator::ToneSequence> tones_;
  emulator::SilenceWatch silence_;
  int stops_ = 0;
  bool stopping_ = false;

  Lifeline lifeline_;
};

}  // namespace orven
