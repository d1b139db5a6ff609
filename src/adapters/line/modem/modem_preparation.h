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
/// Port rates, bit/s: the fast one carries audio of 8000 samples a second in 16 bits (160 kbit/s and more
/// with start bits, stop bits and shielding), the usual one is enough for 8 bits.
inline constexpr int kFastRate = 230'400;
inline constexpr int kUsualRate = 115'200;

/// The result of preparing the modem at a port.
struct PreparedModem {
  enum class State : std::uint8_t {
    Ready,     ///< it waits for calls in data mode with caller id on
    Silent,    ///< nothing answers
    NoModem,   ///< something answers, but not as a modem does
    NoVoice,   ///< a modem without voice mode
    NoFormat,  ///< a voice modem without a sample format that we understand
  };
  State state = State::Silent;
  VoiceFormat format;
  bool detects_silence = false;  ///< it has +VSD
  bool has_gains = false;        ///< it has +VGR and +VGT
  bool always_echoes = false;    ///< ATE0 does nothing
  std::string identity;          ///< its answers to ATI and the like, for the log
};

/// Finds out what is at an open link and prepares it for calls. Stops what the modem was doing.
class ModemPreparation {
 public:
  using Done = std::function<void(const PreparedModem&)>;

  ModemPreparation(AtChannel& channel, ModemLink& link, EventLoop& loop, Done done)
      : channel_(channel), link_(link), loop_(loop), done_(std::move(done)) {}

  /// Calls `done` once, unless this object is destroyed before.
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
  std::vector<VoiceFormat> formats_;  ///< still to be tried, best first
  bool last_formats_ = false;         ///< the present format was asked for
  Lifeline lifeline_;
};

/// What the owner should know about the firmware of a modem with this `identity` (PreparedModem); empty when
/// there is nothing to say.
std::string FirmwareAdvice(const std::string& identity);

}  // namespace orven
