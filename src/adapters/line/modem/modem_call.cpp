// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_call.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace orven {
namespace {

using std::chrono::milliseconds;
using Kind = LineEvent::Kind;

constexpr char kBegins = '/';
constexpr char kEnds = '~';

/// Modems repeat a held key about every 70 ms; a person needs longer to press it again.
constexpr std::chrono::milliseconds kRepeat{150};

/// After this time the end of a bracket has been lost.
constexpr std::chrono::milliseconds kLostEnd{1'000};

bool IsKey(char code) {
  return code != '\0' && std::string_view("0123456789*#ABCD").find(code) != std::string_view::npos;
}

/// The longest pause inside a double or distinctive ring (ITU-T E.180 supplement 2).
constexpr milliseconds kSameRing{1000};

/// No bell rings longer: later reports are the next ring.
constexpr milliseconds kLongestRing{4000};

/// Longer than the longest usual cadence, 6 s from ring to ring (ITU-T E.180 supplement 2).
constexpr milliseconds kShortestPatience{8000};

/// A caller id is complete after this quiet time; its lines follow each other at once.
constexpr milliseconds kCallerIdQuiet{700};

/// A caller id may come before the first ring. If no ring follows, it was about something else.
constexpr milliseconds kFirstRingPatience{10'000};

/// Some modems refuse to go off-hook while the bell rings (2 s): we retry until the pause is over.
constexpr milliseconds kAnswerPause{500};
constexpr int kAnswerTries = 12;

/// A ring reported this soon after the answer happened before it.
constexpr milliseconds kLateRing{500};

/// The exchange breaks the loop when it connects the call.
constexpr milliseconds kBreakOfConnecting{2'000};

/// The shortest time off-hook that the exchange notices.
constexpr milliseconds kShortestOffHook{600};

constexpr milliseconds kHangUpPatience{1'000};

/// While we transmit, a modem may mistake our own audio for a tone of the exchange: it has to report it
/// twice.
constexpr milliseconds kSameHangUp{3'000};

/// The meaning of a hang-up event, as a text for the log.
const char* WordsOf(char code) {
  switch (code) {
    case 'b': return "the busy tone";
    case 'K': return "the congestion tone";
    case 'd': return "the dial tone";
    default: return "the loop was broken";
  }
}

}  // namespace

std::optional<char> KeyPresses::Event(char code, Time now) {
  if (code == kBegins || code == kEnds) {
    bracket_ = code == kBegins;
    told_ = false;
    if (!bracket_) latest_ = now;
    return std::nullopt;
  }
  if (!IsKey(code)) return std::nullopt;
  const bool first_in_bracket = bracket_ && !told_;
  const bool repeated = code == digit_ && now - latest_ <= (bracket_ ? kLostEnd : kRepeat);
  digit_ = code;
  latest_ = now;
  told_ = true;
  if (repeated && !first_in_bracket) return std::nullopt;
  return code;
}

std::optional<int> RingPattern::Ring(Time now) {
  const bool same = count_ > 0 && now - latest_ < kSameRing && now - counted_ < kLongestRing;
  latest_ = now;
  if (same) return std::nullopt;
  if (count_ > 0) interval_ = now - counted_;
  counted_ = now;
  return ++count_;
}

milliseconds RingPattern::Patience() const {
  return std::max(kShortestPatience, interval_ * 3 / 2);
}

ModemCall::ModemCall(CallNumber number, const PreparedModem& modem, AtChannel& channel,
                     const ModemPorts& ports, Listener listener)
    : number_(number), modem_(modem), channel_(channel), ports_(ports), listener_(std::move(listener)) {
  WaitForNextRing(kFirstRingPatience);
}

void ModemCall::After(milliseconds delay, EventLoop::Task task) {
  ports_.loop.After(delay, lifeline_.Bind(std::move(task)));
}

void ModemCall::Tell(LineEvent event) {
  event.call = number_;
  ports_.events(std::move(event));
}

void ModemCall::Ring() {
  if (state_ == State::Connected) return RingsOn();
  if (state_ != State::Ringing && state_ != State::Answering) return;
  const bool first = !rings_.Ringing();
  const auto count = rings_.Ring(Now());
  WaitForNextRing(rings_.Patience());
  if (!count) return;
  if (first) Tell({.kind = Kind::InCommingCall});
  TellCaller();
  Tell({.kind = Kind::Ring, .number = *count});
}

void ModemCall::WaitForNextRing(milliseconds patience) {
  After(patience, [this, wait = ++ring_waits_] {
    if (state_ == State::Ringing && wait == ring_waits_) Finish();
  });
}

void ModemCall::CallerIdLine(const std::string& line) {
  if (state_ <= State::Answering && caller_.Take(line)) EndCallerIdAfterQuiet();
}

void ModemCall::CallerIdPacket(const std::string& packet) {
  if (state_ > State::Answering) return;
  caller_.TakePacket(packet);
  EndCallerIdAfterQuiet();
}

void ModemCall::EndCallerIdAfterQuiet() {
  After(kCallerIdQuiet, [this, lines = ++caller_lines_] {
    if (lines == caller_lines_) TellCaller();
  });
}

void ModemCall::TellCaller() {
  if (!Offered() || state_ == State::Over || !caller_.Any()) return;
  if (const auto caller = caller_.Finish())
    Tell({.kind = Kind::CallerID, .name = caller->name, .text = caller->number});
}

void ModemCall::Answer(std::int32_t request) {
  if (state_ != State::Ringing) {
    const auto result = state_ == State::Over ? kTelephonyNoCall : kTelephonyAlreadyAnswered;
    return Done(request, result);
  }
  TellCaller();
  answer_request_ = request;
  state_ = State::Answering;
  TryToAnswer(kAnswerTries);
}

void ModemCall::TryToAnswer(int tries_left) {
  channel_.Ask("AT+FCLASS=8");
  off_hook_asked_ = true;
  channel_.Ask("AT+VLS=1", [this, tries_left](const ModemReply& reply) {
    if (state_ != State::Answering) return;
    if (reply.Ok()) return Connect();
    if (reply.kind == ModemReply::Kind::Nothing) return GiveUpAnswer();
    if (tries_left <= 1) return AnswerRefused();
    After(kAnswerPause, [this, tries_left] {
      if (state_ == State::Answering) TryToAnswer(tries_left - 1);
    });
  });
}

void ModemCall::AnswerRefused() {
  Done(answer_request_, kTelephonyDeviceFailed);
  listener_.report("The modem did not answer the call");
  if (dropping_) return Finish();
  state_ = State::Ringing;
  WaitForNextRing(rings_.Patience());
}

/// The modem may still go off-hook later.
void ModemCall::GiveUpAnswer() {
  Done(answer_request_, kTelephonyDeviceFailed);
  listener_.report("The modem did not answer the call");
  state_ = State::HangingUp;
  failed_ = true;
  OnHook();
}

void ModemCall::Connect() {
  connected_at_ = Now();
  const bool rejected = dropping_;
  state_ = rejected ? State::HangingUp : State::Connected;
  Done(answer_request_, kTelephonyOk);
  if (rejected) return After(kShortestOffHook, [this] { OnHook(); });
  Tell({.kind = Kind::Connected});
  voice_ = std::make_unique<VoicePath>(
      channel_, ports_, modem_.format,
      VoicePath::Listener{
          [this](const char* what) { After(milliseconds(0), [this, what] { CallerGone(what); }); },
          [this] { RefusesAudio(); }, [this] { VoiceFailed(); }});
  SetUpVoice([this](const ModemReply&) {
    if (state_ == State::Connected && !answering_again_) voice_->Begin();
  });
}

/// Some modems forget these when they leave voice mode.
void ModemCall::SetUpVoice(AtChannel::Done done) {
  if (modem_.detects_silence) channel_.Ask("AT+VSD=128,0");  // our own detection decides
  if (modem_.has_gains) {
    for (const char* nominal : {"AT+VGR=128", "AT+VGT=128"}) channel_.Ask(nominal);
  }
  channel_.Ask("AT+VSM=" + modem_.format.setting, std::move(done));
}

/// The answer did not take effect: the caller has not heard anything yet.
void ModemCall::RingsOn() {
  if (answering_again_ || Now() - connected_at_ < kLateRing) return;
  answering_again_ = true;
  voice_->End([this] { AnswerAgain(kAnswerTries); });
}

/// A modem that is still on-hook refuses at once.
void ModemCall::RefusesAudio() {
  if (state_ != State::Connected || answering_again_) return;
  if (--refusals_left_ == 0) return VoiceFailed();
  answering_again_ = true;
  AnswerAgain(kAnswerTries);
}

void ModemCall::AnswerAgain(int tries_left) {
  if (state_ != State::Connected) return;
  channel_.Ask("AT+VLS=1", [this, tries_left](const ModemReply& reply) {
    if (state_ != State::Connected) return;
    if (reply.kind == ModemReply::Kind::Nothing) return VoiceFailed();
    if (!reply.Ok() && tries_left > 1) return After(kAnswerPause, [=, this] { AnswerAgain(tries_left - 1); });
    if (!reply.Ok()) return CallerGone("the modem cannot answer");
    connected_at_ = Now();
    SetUpVoice([this](const ModemReply&) {
      answering_again_ = false;
      if (state_ == State::Connected) voice_->StartOver();
    });
  });
}

void ModemCall::Event(char code) {
  if (state_ != State::Connected) return;
  if (code == 'u') return voice_->Underrun();
  if (code == 'o') return voice_->Overrun();
  if (const auto key = keys_.Event(code, Now())) {
    if (monitor_digits_) Tell({.kind = Kind::MonitorDigit, .digit = *key});
    return;
  }
  HangUpEvent(code);
}

void ModemCall::HangUpEvent(char code) {
  switch (code) {
    case 'b':
    case 'K':
    case 'd': return HangUpTone(code);
    case 'l':
      if (Now() - connected_at_ >= kBreakOfConnecting) CallerGone(WordsOf(code));
      return;
    case 'H':
    case 'P': return CallerGone("another telephone on the same line was picked up and has the call now");
    default: return;
  }
}

void ModemCall::HangUpTone(char code) {
  const auto before = std::exchange(hang_up_event_at_, Now());
  const bool twice = before && Now() - *before <= kSameHangUp;
  if (voice_->Receives() || twice) CallerGone(WordsOf(code));
}

void ModemCall::NoCarrier() {
  CallerGone("the modem has hung up");
}

void ModemCall::CallerGone(const std::string& why) {
  if (state_ != State::Connected) return;
  listener_.report("The call is over: " + why);
  Tell({.kind = Kind::Disconnected});
  HangUp();
}

void ModemCall::Drop(std::int32_t request) {
  if (state_ == State::HangingUp || state_ == State::Over || dropping_) {
    return Done(request, kTelephonyOk);
  }
  drop_request_ = request;
  dropping_ = true;
  if (state_ == State::Connected) return HangUp();
  if (state_ == State::Answering) return;
  // An analogue line has no other way to reject a call.
  state_ = State::Answering;
  TryToAnswer(kAnswerTries);
}

void ModemCall::HangUp() {
  state_ = State::HangingUp;
  voice_->End([this] { OnHook(); });
}

void ModemCall::OnHook() {
  channel_.Ask(
      "AT+VLS=0", [](const ModemReply&) {}, kHangUpPatience);
  channel_.Ask(
      "ATH", [](const ModemReply&) {}, kHangUpPatience);
  channel_.Ask(
      "AT+FCLASS=0",
      [this](const ModemReply& reply) {
        if (state_ == State::Over) return;
        Finish();
        if (failed_ || reply.kind == ModemReply::Kind::Nothing) listener_.failed();
      },
      kHangUpPatience);
}

void ModemCall::VoiceFailed() {
  if (state_ == State::Over) return;
  Lost();
  listener_.failed();
}

void ModemCall::Lost() {
  if (state_ == State::Over) return;
  if (state_ == State::Connected) Tell({.kind = Kind::Disconnected});
  Done(answer_request_, kTelephonyDeviceFailed);
  Finish();
}

void ModemCall::Finish() {
  TellCaller();
  Done(drop_request_, kTelephonyOk);
  state_ = State::Over;
  if (Offered()) Tell({.kind = Kind::Idle});
  listener_.over();
}

void ModemCall::Done(std::int32_t& request, std::int32_t result) {
  const auto number = std::exchange(request, 0);
  if (number != 0) ports_.events({.kind = Kind::Proc, .number = number, .result = result});
}

}  // namespace orven
