// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "adapters/line/modem/at_channel.h"
#include "adapters/line/modem/voice_format.h"
#include "adapters/line/service/line_audio.h"
#include "platform/clock.h"
#include "platform/event_loop.h"

namespace orven {

/// The sound of an answered call on a modem, which either transmits or receives: it transmits while there
/// is something to play, and receives for the rest of the time, as that is how a caller who has hung up is
/// heard. Whoever records meanwhile gets silence. One thread.
class VoicePath {
 public:
  struct Listener {
    /// The caller has hung up, by what is heard.
    std::function<void(const char*)> hung_up;
    /// The modem is not off-hook after all. Nothing is done until Begin or StartOver.
    std::function<void()> refused;
    /// The modem does not do what it must any more.
    std::function<void()> failed;
  };

  VoicePath(AtChannel& channel, ModemLink& link, EventLoop& loop, const Clock& clock, LineAudio& audio,
            const VoiceFormat& format, Listener listener);
  ~VoicePath();

  /// The modem is off-hook and has its sample format.
  void Begin();

  /// Ends transmitting or receiving; `done` runs when the modem takes commands again, or has been given
  /// up. Nothing is done with the sound after that until Begin.
  void End(std::function<void()> done);

  /// As Begin, for a caller who has heard nothing of what was played so far.
  void StartOver();

  /// From the modem.
  void Audio(std::span<const std::uint8_t> bytes);
  void AudioEnded();
  void Underrun();
  /// Received sound was lost: what follows may begin in the middle of a sample.
  void Overrun();

  bool Receives() const { return state_ == State::Receiving; }

 private:
  class Transmitter;
  class Receiver;
  enum class State : std::uint8_t {
    Off,
    Beginning,  ///< the modem has been asked to transmit or to receive
    Transmitting,
    Draining,  ///< all has been written and is still being played
    Purging,   ///< playing was stopped
    Receiving,
    EndOfReceive,  ///< it has been asked to end
    Settling,      ///< it may still say something that belongs to the end
  };

  void Choose();
  void Transmit();
  void Receive();
  void Ask(AtChannel::Direction direction, int tries_left);
  void Tick();
  void TickTransmitting();
  void TickReceiving();
  void Drain();
  void Purge(int tries);
  void StopReceiving(int tries);
  void Rest();
  void GoOn();
  void Refused();
  void Fail();
  void KeepTimeForRecorder();

  AtChannel& channel_;
  ModemLink& link_;
  EventLoop& loop_;
  const Clock& clock_;
  LineAudio& audio_;
  Listener listener_;
  std::unique_ptr<Transmitter> transmitter_;
  std::unique_ptr<Receiver> receiver_;
  State state_ = State::Off;
  std::function<void()> ended_;                ///< told when the modem rests; empty: it goes on
  std::chrono::milliseconds latest_audio_{0};  ///< when something was received
  bool heard_ = false;                         ///< since receiving began
  std::chrono::milliseconds silent_since_{0};  ///< up to when a recorder has what is recorded
  std::unique_ptr<Timer> tick_;
  Lifeline lifeline_;
};

}  // namespace orven
