// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "adapters/line/modem/at_channel.h"
#include "adapters/line/modem/voice_format.h"
#include "platform/event_loop.h"

namespace orven {
/// The rate at which 16-bit sound of 8000 samples a second gets through a port (160 kbit/s and more with
/// start and stop bits and shielding), and the usual one, enough for 8 bits.
inline constexpr int kFastRate = 230'400;
inline constexpr int kUsualRate = 115'200;

/// What a port's modem turned out to be.
struct PreparedModem {
  enum class State : std::uint8_t {
    Ready,     ///< it waits for calls in data mode, caller id is on
    Silent,    ///< nothing answers
    NoModem,   ///< something answers, not as a modem does
    NoVoice,   ///< a modem without voice mode
    NoFormat,  ///< a voice modem with no sample format that we understand
  };
  State state = State::Silent;
  VoiceFormat format;
  bool detects_silence = false;  ///< it has +VSD
  bool has_gains = false;        ///< it has +VGR and +VGT
  bool always_echoes = false;    ///< ATE0 does nothing
  std::string identity;          ///< what it calls itself, for the log
};

/// Finds out what is at an open link, and makes it ready for calls. Whatever the modem was doing ends.
class ModemPreparation {
 public:
  using Done = std::function<void(const PreparedModem&)>;

  ModemPreparation(AtChannel& channel, ModemLink& link, EventLoop& loop, Done done)
      : channel_(channel), link_(link), loop_(loop), done_(std::move(done)) {}

  /// `done` is told once, unless this goes before.
  void Start();

 private:
  void WakeUp(int tries_left);
  void Reset();
  void AskClasses();
  void AskVoice();
  void TryFormat();
  void TryRate();
  void SetFormat();
  void TryNextFormat();
  void AskPresentFormat();
  void WaitForCalls();
  void Finish(PreparedModem::State state);

  AtChannel& channel_;
  ModemLink& link_;
  EventLoop& loop_;
  Done done_;
  PreparedModem modem_;
  std::vector<VoiceFormat> formats_;  ///< still to be tried, the best first
  bool last_formats_ = false;         ///< there are no others to ask for
  Lifeline lifeline_;
};

/// What its owner should know of the firmware of the modem that calls itself `identity` (its answers to ATI
/// and the like); empty when there is nothing.
std::string FirmwareAdvice(const std::string& identity);

}  // namespace orven
