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

/// What goes wrong with this modem.
struct ModemFaults {
  bool ignores_silence_detection = false;  ///< +VSD is accepted, and nothing is ever reported
  bool no_hang_up_code = false;            ///< the caller's end is heard as a tone or silence only
  bool refuses_off_hook_in_ring = false;   ///< +VLS=1 while the bell rings: ERROR
  bool answer_does_not_take = false;       ///< the first +VLS=1 says OK, and it rings on
  bool stale_ok = false;                   ///< an OK that belongs to nothing after each end of sound
  bool ring_inside_a_reply = false;        ///< RING between the lines of every longer answer
  bool tripled_keys = false;               ///< one key press is reported three times, without brackets
  int stops_needed = 1;                    ///< so many <DLE>! until receiving ends
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

  /// `tell` hears at once what happens: "off-hook", "on-hook", "playing", "receiving", "idle" (neither any
  /// more), "complaint: …".
  void SetTell(Tell tell) { tell_ = std::move(tell); }

  /// Bytes from the host; the answer comes 20 to 100 ms later, in pieces of any size.
  void FromHost(std::span<const std::uint8_t> bytes);

  /// How many bytes the modem takes now: flow control holds back what is more. What comes all the same is
  /// lost and complained of.
  std::size_t Room() const;

  // The telephone network's side.
  /// The bell rings for two seconds.
  void Ring();
  /// One line such as "NMBR = 5551234", as the modem would write it (only while caller id is on).
  void CallerIdLine(const std::string& line);
  /// The caller presses a key for `duration`, after those pressed before.
  void Press(char key, Time duration = Time(120));
  /// The caller says this from now on (8000 a second); silence afterwards.
  void Say(std::vector<std::int16_t> samples);
  /// The caller hangs up: the code that this chip has for it, then the busy tone until we hang up.
  void HangUp() { HangUp(emulator::NetworkTone::Busy); }
  /// The same with the dial tone, and with silence.
  void HangUpToDialTone() { HangUp(emulator::NetworkTone::Dial); }
  void HangUpToSilence() { HangUp(emulator::NetworkTone::Silence); }
  /// Any other sign, for example 'H': the handset of the telephone beside the modem is lifted.
  void Event(char code);
  /// Answers nothing any more until Wake.
  void Wedge() { Wedge(true); }
  void Wake() { Wedge(false); }
  /// As after power came back: everything as at the beginning, no call.
  void PowerCycle();

  /// Bits a second that the serial port needs for the present sample format.
  int NeededPortRate() const;

  bool OffHook() const override { return off_hook_; }
  /// Whether the caller has something left to say.
  bool Speaking() const { return caller_.Speaking(); }
  /// The time at which the first report of the latest key went out.
  Time KeyReportedAt() const { return key_reported_at_; }

  /// What the line has heard since it was answered last, in 8000 samples a second of 16 bits: what was
  /// transmitted, at the time at which it was played, with silence where nothing was.
  const std::vector<std::int16_t>& Heard() const { return heard_; }
  /// What came over the line from the caller in the same time.
  const std::vector<std::int16_t>& Spoken() const { return spoken_; }
  /// The transmitted sample bytes alone, unshielded, in the modem's format: for comparisons bit by bit.
  const std::vector<std::uint8_t>& PlayedBytes() const { return played_; }
  /// The sample bytes that were sent to the host while it received, since it was answered last.
  const std::vector<std::uint8_t>& SentBytes() const { return sent_; }
  /// Commands as they came in, without AT: for tests that want to know what was asked.
  const std::vector<std::string>& Commands() const { return commands_; }
  /// What the host did that a real modem would take amiss: unshielded 0x10, commands outside voice mode,
  /// bytes in the middle of an answer, an underrun, a full buffer. One sentence each.
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
