// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/line/modem/at_channel.h"
#include "adapters/line/modem/caller_id.h"
#include "adapters/line/modem/modem_preparation.h"
#include "adapters/line/modem/voice_path.h"
#include "adapters/line/service/line_audio.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {
/// Makes one key press of what a modem reports of it: a digit between '/' and '~' again and again, or
/// several times without them, or once.
class KeyPresses {
 public:
  using Time = std::chrono::milliseconds;  ///< of any clock that only goes forward

  /// `code` of a <DLE> sign, whatever it is. The key, '0'-'9', '*', '#', 'A'-'D', of a new press.
  std::optional<char> Event(char code, Time now);

 private:
  bool bracket_ = false;
  bool told_ = false;  ///< within the bracket
  char digit_ = 0;
  Time latest_{0};
};

/// Counts the rings of one call, and says when the caller has given up: no line tells.
class RingPattern {
 public:
  using Time = std::chrono::milliseconds;  ///< of any clock that only goes forward

  /// The modem has said that it rings. The count, from 1; nothing when this is still the same ring.
  std::optional<int> Ring(Time now);

  /// How long after the latest ring nobody calls any more.
  std::chrono::milliseconds Patience() const;

  bool Ringing() const { return count_ > 0; }
  void Reset() { *this = RingPattern(); }

 private:
  int count_ = 0;
  Time latest_{0};    ///< the latest report
  Time counted_{0};   ///< the latest ring
  Time interval_{0};  ///< between rings; 0: not known yet
};

/// What a call on a modem needs of its surroundings.
struct ModemCallPorts {
  AtChannel& channel;
  ModemLink& link;
  EventLoop& loop;
  const Clock& clock;
  LineAudio& audio;
  LineDriverEvents& events;
};

/// One call on a modem's line, from its first ring until the line is on-hook again. One thread.
class ModemCall {
 public:
  struct Listener {
    /// Idle has been raised; told once. The call may be destroyed, but not within.
    std::function<void()> over;
    /// The modem has stopped answering; the call ends all the same.
    std::function<void()> failed;
    /// A sentence for the log.
    std::function<void(const std::string&)> report;
  };

  ModemCall(CallNumber number, const PreparedModem& modem, ModemCallPorts ports, Listener listener);

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

  /// From the program; `request` 0: nobody waits for it.
  void Answer(std::int32_t request);
  void Drop(std::int32_t request);
  void MonitorDigits(bool on) { monitor_digits_ = on; }

  /// The modem is gone, or has to be let go: the call ends now, with what was recorded.
  void Lost();

  CallNumber Number() const { return number_; }
  /// Whether it has rung: a caller id alone is no call.
  bool Offered() const { return rings_.Ringing(); }
  /// Whether the modem is off-hook, or may go off-hook in a moment.
  bool OffHook() const { return off_hook_asked_ && state_ != State::Over; }

 private:
  enum class State : std::uint8_t { Ringing, Answering, Connected, HangingUp, Over };

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
  ModemCallPorts ports_;
  Listener listener_;
  State state_ = State::Ringing;
  RingPattern rings_;
  CallerIdLines caller_;
  KeyPresses keys_;
  std::unique_ptr<VoicePath> voice_;
  std::int32_t answer_request_ = 0;
  std::int32_t drop_request_ = 0;
  bool monitor_digits_ = false;
  bool answering_again_ = false;  ///< it has rung on after the answer
  int refusals_left_ = 3;
  bool off_hook_asked_ = false;
  bool dropping_ = false;  ///< our side wants to hang up
  bool failed_ = false;    ///< the modem has to be asked anew after the call
  std::optional<std::chrono::milliseconds> hang_up_event_at_;  ///< the latest one while transmitting
  std::chrono::milliseconds connected_at_{0};
  std::uint64_t caller_lines_ = 0;  ///< tells the latest line of a caller id from earlier ones
  std::uint64_t ring_waits_ = 0;    ///< the same for rings
  Lifeline lifeline_;
};

}  // namespace orven
