// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "modem_emulator/command_line.h"
#include "modem_emulator/host_port.h"
#include "modem_emulator/interpreter.h"
#include "modem_emulator/line_tones.h"
#include "modem_emulator/modem_profile.h"
#include "modem_emulator/voice_streams.h"
#include "platform/clock.h"
#include "platform/event_loop.h"

namespace orven {

/// The faults of a modem.
struct ModemFaults {
  bool ignores_silence_detection = false;  ///< +VSD is accepted, and nothing is ever reported
  bool no_hang_up_code = false;            ///< a hang-up is heard only as a tone or silence
  bool refuses_off_hook_in_ring = false;   ///< +VLS=1 while the bell rings: ERROR
  bool answer_does_not_take = false;       ///< the first +VLS=1 says OK, but the line keeps ringing
  bool stale_ok = false;                   ///< a second OK after each end of audio
  bool ring_inside_a_reply = false;        ///< RING between the lines of longer answers
  bool tripled_keys = false;               ///< one key press is reported three times, without brackets
  int stops_needed = 1;                    ///< number of <DLE>! until receiving ends
};

/// A voice modem with a telephone line, in the time of `loop` and `clock`, so on virtual time too.
/// Single-threaded. The host's side (host_side.cpp) is bytes, the line's side (line_side.cpp) are the methods
/// below; audio_side.cpp passes audio between them.
class ModemEmulator final : private emulator::Hardware {
 public:
  using ToHost = std::function<void(std::span<const std::uint8_t>)>;
  using Time = std::chrono::milliseconds;
  using Tell = std::function<void(const std::string&)>;

  ModemEmulator(const ModemProfile& profile, const ModemFaults& faults, EventLoop& loop, const Clock& clock,
                ToHost to_host);

  /// `tell` is called at each event: "off-hook", "on-hook", "playing", "receiving", "idle" (the end of these
  /// two), "complaint: …".
  void SetTell(Tell tell) { tell_ = std::move(tell); }

  /// Bytes from the host; the answer comes 20 to 100 ms later, in pieces of any size.
  void FromHost(std::span<const std::uint8_t> bytes);

  /// How many bytes the modem takes now; flow control must hold back the rest. Excess bytes are lost, with a
  /// complaint.
  std::size_t Room() const;

  // The telephone network's side.
  /// The bell rings for two seconds.
  void Ring();
  /// Reports a line such as "NMBR = 5551234" (only while caller id is on).
  void CallerIdLine(const std::string& line);
  /// The caller presses a key for `duration`, after those pressed before.
  void Press(char key, Time duration = Time(120));
  /// The caller says `samples` from now on (8000 a second), then is silent.
  void Say(std::vector<std::int16_t> samples);
  /// The caller hangs up: this chip's event for it, then the busy tone until we hang up.
  void HangUp() { HangUp(emulator::NetworkTone::Busy); }
  /// The same with the dial tone or silence.
  void HangUpToDialTone() { HangUp(emulator::NetworkTone::Dial); }
  void HangUpToSilence() { HangUp(emulator::NetworkTone::Silence); }
  /// Reports any event, for example 'H': the handset of a parallel telephone was lifted.
  void Event(char code);
  /// The modem hangs until Wake.
  void Wedge() { Wedge(true); }
  void Wake() { Wedge(false); }
  /// Resets everything, as after a power failure; ends a call.
  void PowerCycle();

  /// Bits a second that the serial port needs for the present sample format.
  int NeededPortRate() const;

  bool OffHook() const override { return off_hook_; }
  /// Whether the caller is still speaking.
  bool Speaking() const { return caller_.Speaking(); }
  /// When the first report of the latest key was sent.
  Time KeyReportedAt() const { return key_reported_at_; }

  /// What the caller has heard since the call was answered, 8000 samples a second: transmitted audio at the
  /// time at which it was played, and silence in between.
  const std::vector<std::int16_t>& Heard() const { return heard_; }
  /// The caller's audio in the same time.
  const std::vector<std::int16_t>& Spoken() const { return spoken_; }
  /// The transmitted bytes, unshielded, in the modem's format.
  const std::vector<std::uint8_t>& PlayedBytes() const { return played_; }
  /// The audio bytes sent to the host since the call was answered, before shielding.
  const std::vector<std::uint8_t>& SentBytes() const { return sent_; }
  /// The commands received, without AT.
  const std::vector<std::string>& Commands() const { return commands_; }
  /// The host's errors, one sentence each: unshielded 0x10, commands outside voice mode, bytes in the middle
  /// of an answer, an underrun, a full buffer.
  const std::vector<std::string>& Complaints() const { return complaints_; }

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
  void EndOfAudio(const std::string& result);

  // The line's side.
  void HangUp(emulator::NetworkTone tone);
  void Wedge(bool wedged);
  bool GoOffHook() override;
  void GoOnHook() override;
  void RingReport();
  void PressNow(char key, Time duration);
  void EventInCall(char code, Time delay);

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
  bool answering_ = false;  ///< the answer to a command has not been sent yet
  bool dle_ = false;        ///< the latest byte was a <DLE>, in commands or while receiving
  bool wedged_ = false;
  Time active_at_{0};  ///< the latest traffic with the host

  bool off_hook_ = false;
  bool missed_one_ = false;  ///< the answer that does not take has happened
  int call_ = 0;             ///< counts hook changes, so that delayed events stay in their call
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

  Tell tell_;
  emulator::CallerAudio caller_;
  Time key_reported_at_{0};
  std::vector<std::int16_t> heard_;
  std::vector<std::int16_t> spoken_;
  std::vector<std::uint8_t> played_;
  std::vector<std::uint8_t> sent_;
  std::vector<std::string> commands_;
  std::vector<std::string> complaints_;

  Lifeline lifeline_;
};

}  // namespace orven
