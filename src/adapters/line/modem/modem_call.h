// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/modem/at_channel.h"
#include "adapters/line/modem/caller_id.h"
#include "adapters/line/modem/modem_preparation.h"
#include "adapters/line/modem/voice_path.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {
/// Turns a modem's reports into key presses: one press is reported as a digit that repeats between '/' and
/// '~', or as several digits without them, or as one digit.
class KeyPresses {
 public:
  using Time = std::chrono::milliseconds;  ///< of a monotonic clock

  /// Takes the `code` of any <DLE> event. Returns the key of a new press: '0'-'9', '*', '#', 'A'-'D'.
  std::optional<char> Event(char code, Time now);

 private:
  bool bracket_ = false;
  bool told_ = false;  ///< the key of this bracket has been reported
  char digit_ = 0;
  Time latest_{0};
};

/// Counts the rings of one call, and detects from their absence that the caller has hung up, which no line
/// reports.
class RingPattern {
 public:
  using Time = std::chrono::milliseconds;  ///< of a monotonic clock

  /// Takes a ring report. Returns the number of the ring, from 1; nothing while it is still the same ring.
  std::optional<int> Ring(Time now);

  /// The time after the latest ring when the caller counts as having hung up.
  std::chrono::milliseconds Patience() const;

  bool Ringing() const { return count_ > 0; }
  void Reset() { *this = RingPattern(); }

 private:
  int count_ = 0;
  Time latest_{0};    ///< the latest report
  Time counted_{0};   ///< the latest ring
  Time interval_{0};  ///< between rings; 0: not known yet
};

/// One call on a modem's line, from its first ring until the line is on-hook again. One thread.
class ModemCall {
 public:
  struct Listener {
    /// Idle has been raised; called once. The call may be destroyed afterwards, not inside.
    std::function<void()> over;
    /// The modem has stopped answering; the call ends all the same.
    std::function<void()> failed;
    /// A sentence for the log.
    std::function<void(const std::string&)> report;
  };

  /// `channel` and `ports` outlive the call.
  ModemCall(CallNumber number, const PreparedModem& modem, AtChannel& channel, const ModemPorts& ports,
            Listener listener);

  /// From the modem.
  void Ring();
  void CallerIdLine(const std::string& line);
  void CallerIdPacket(const std::string& packet);
  void Event(char code);
  void NoCarrier();
  void Audio(std::span<const std::uint8_t> bytes) {
    if (voice_) voice_->Audio(bytes);
  }
  void AudioEnded() {
    if (voice_) voice_->AudioEnded();
  }

  /// From the program; `request` 0: no answer is wanted.
  void Answer(std::int32_t request);
  void Drop(std::int32_t request);
  void MonitorDigits(bool on) { monitor_digits_ = on; }

  /// The modem was unplugged or must be released: the call ends now, with what was recorded.
  void Lost();

  CallNumber Number() const { return number_; }
  /// Whether it has rung: a caller id alone is not a call.
  bool Offered() const { return rings_.Ringing(); }
  /// Whether the modem is off-hook, or may go off-hook in a moment.
  bool OffHook() const { return off_hook_asked_ && state_ != State::Over; }

 private:
  enum class State : std::uint8_t { Ringing, Answering, Connected, HangingUp, Over };

  void Tell(LineEvent event);
  void EndCallerIdAfterQuiet();
  void TellCaller();
  void WaitForNextRing(std::chrono::milliseconds patience);
  void TryToAnswer(int tries_left);
  void AnswerRefused();
  void GiveUpAnswer();
  void Connect();
  void SetUpVoice(AtChannel::Done done);
  void RingsOn();
  void RefusesAudio();
  void AnswerAgain(int tries_left);
  void CallerGone(const std::string& why);
  void HangUpEvent(char code);
  void HangUpTone(char code);
  void HangUp();
  void OnHook();
  void VoiceFailed();
  void Finish();
  void Done(std::int32_t& request, std::int32_t result);
  void After(std::chrono::milliseconds delay, EventLoop::Task task);
  std::chrono::milliseconds Now() const { return ports_.clock.Uptime(); }

  const CallNumber number_;
  const PreparedModem modem_;
  AtChannel& channel_;
  const ModemPorts& ports_;
  Listener listener_;
  State state_ = State::Ringing;
  RingPattern rings_;
  CallerIdLines caller_;
  KeyPresses keys_;
  std::unique_ptr<VoicePath> voice_;
  std::int32_t answer_request_ = 0;
  std::int32_t drop_request_ = 0;
  bool monitor_digits_ = false;
  bool answering_again_ = false;  ///< the line went on ringing after the answer
  int refusals_left_ = 3;
  bool off_hook_asked_ = false;
  bool dropping_ = false;  ///< our side wants to hang up
  bool failed_ = false;    ///< the modem must be prepared again after the call
  std::optional<std::chrono::milliseconds> hang_up_event_at_;  ///< the latest one while transmitting
  std::chrono::milliseconds connected_at_{0};
  std::uint64_t caller_lines_ = 0;  ///< number of the latest caller id line
  std::uint64_t ring_waits_ = 0;    ///< number of the latest wait for a ring
  Lifeline lifeline_;
};

}  // namespace orven
