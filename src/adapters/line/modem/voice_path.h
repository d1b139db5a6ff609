// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/modem/at_channel.h"
#include "adapters/line/modem/hang_up_detector.h"
#include "adapters/line/modem/sample_codec.h"
#include "adapters/line/modem/voice_format.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {

/// What a modem's line works with. All of these outlive the line.
struct ModemPorts {
  ModemLink& link;
  EventLoop& loop;
  const Clock& clock;
  LineAudio& audio;
  LineSink events;
};

/// The audio of an answered call on a half-duplex modem: it transmits while there is something to play and
/// receives the rest of the time, to hear when the caller hangs up. During playback a recording gets silence.
/// One thread.
class VoicePath {
 public:
  struct Listener {
    /// The received audio shows that the caller has hung up; takes the reason, as a text for the log.
    std::function<void(const char*)> hung_up;
    /// The modem is not off-hook after all. The path rests until Begin or StartOver.
    std::function<void()> refused;
    /// The modem has stopped working.
    std::function<void()> failed;
  };

  VoicePath(AtChannel& channel, const ModemPorts& ports, const VoiceFormat& format, Listener listener);
  ~VoicePath();

  /// The modem is off-hook and has its sample format.
  void Begin();

  /// Ends transmitting or receiving; `done` runs when the modem takes commands again, or has failed. After
  /// that the path rests until Begin.
  void End(std::function<void()> done);

  /// Like Begin, but plays again what was played so far, as the caller has not heard it.
  void StartOver();

  /// From the modem.
  void Audio(std::span<const std::uint8_t> bytes);
  void AudioEnded();
  void Underrun();
  /// Received audio was lost: what follows may start in the middle of a sample.
  void Overrun();

  bool Receives() const { return state_ == State::Receiving; }

 private:
  class Transmitter;
  enum class State : std::uint8_t {
    Off,
    Beginning,  ///< the modem has been asked to transmit or to receive
    Transmitting,
    Draining,  ///< all is written and still being played
    Purging,   ///< playing was stopped
    Receiving,
    EndOfReceive,  ///< the modem has been asked to stop receiving
    Settling,      ///< a late OK may still come
  };

  void Choose();
  void Transmit();
  void Receive();
  void Ask(bool transmit, int tries_left);
  void Tick();
  void TickTransmitting();
  void TickReceiving();
  void Drain();
  void Purge();
  void StopReceiving();
  /// Tries the `ways` one after the other until the modem answers.
  void Stop(State state, std::span<const std::vector<std::uint8_t>> ways);
  void Rest();
  void GoOn();
  void Refused();
  void Fail();
  void KeepTimeForRecorder();

  AtChannel& channel_;
  const ModemPorts& ports_;
  const VoiceFormat format_;
  Listener listener_;
  std::unique_ptr<Transmitter> transmitter_;
  std::optional<SampleDecoder> decoder_;
  std::vector<std::int16_t> received_;  ///< less than a block
  HangUpDetector hang_up_;
  State state_ = State::Off;
  std::function<void()> ended_;                ///< called when the modem rests; empty: the path goes on
  std::chrono::milliseconds latest_audio_{0};  ///< when audio was last received
  bool heard_ = false;                         ///< audio has arrived since receiving began
  std::chrono::milliseconds silent_since_{0};  ///< up to when the recorder has received audio or silence
  std::unique_ptr<Timer> tick_;
  Lifeline lifeline_;
};

}  // namespace orven
