// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/voice_path.h"

#include <array>
#include <utility>
#include <vector>

#include "adapters/line/modem/shielding.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// One block (20 ms) is played and received in it.
constexpr milliseconds kTick{kBlockSamples * 1000 / kSampleRate};

/// A modem that receives sends without a pause.
constexpr milliseconds kLongestStall{3'000};

/// After a pause of this length sound may have been lost.
constexpr milliseconds kPauseInSound{300};

/// Sound that a port has not taken in two seconds, at 16 bits; its modem has stopped.
constexpr std::size_t kMostUnsent = std::size_t{2} * 2 * kSampleRate;

/// The end of what plays and the answer to it, beyond what is still to be played.
constexpr milliseconds kDrainPatience{2'000};

/// Until the next way of stopping is tried: the modem answers after 100 ms, and finishes its block.
constexpr milliseconds kStopPatience{500};

/// So long after the end of sound some modems say OK once more.
constexpr milliseconds kStrayTime{120};

constexpr int kTries = 3;

constexpr std::array<std::uint8_t, 2> kEndOfSound{kDle, kEtx};

/// The ways in which modems stop playing at once, one after the other. The zero is for a <DLE> whose second
/// byte was thrown away: it would make sound of what follows.
const std::array<std::vector<std::uint8_t>, kTries> kPurges{
    std::vector<std::uint8_t>{0, kDle, kCan},
    {0, kDle, kCan, kDle, kEtx},
    {0, kDle, kCan, kDle, kCan, kDle, kCan, kDle, kEtx}};

/// The ways in which modems stop receiving.
const std::array<std::vector<std::uint8_t>, kTries> kStops{
    std::vector<std::uint8_t>{kDle, '!'}, {kDle, kEsc}, {kDle, '!', kDle, '!', kDle, '!'}};

}  // namespace

VoicePath::VoicePath(ModemTalk& talk, ModemLink& link, EventLoop& loop, const Clock& clock, LineAudio& audio,
                     const VoiceFormat& format, Listener listener)
    : talk_(talk),
      link_(link),
      loop_(loop),
      clock_(clock),
      audio_(audio),
      listener_(std::move(listener)),
      transmitter_(format, audio),
      receiver_(format, audio, [this](const char* what) { listener_.hung_up(what); }),
      tick_(loop.MakeTimer([this] { Tick(); })) {}

void VoicePath::Begin() {
  silent_since_ = clock_.Uptime();
  (void)audio_.TakeCut();
  tick_->Start(kTick);
  Choose();
}

void VoicePath::StartOver() {
  transmitter_.StartOver();
  Begin();
}

void VoicePath::End(std::function<void()> done) {
  ended_ = std::move(done);
  switch (state_) {
    case State::Off: return GoOn();
    // What has come to its own end is heard to its end: it was fetched ahead of its time.
    case State::Transmitting: return audio_.TakeCut() || audio_.Plays() ? Purge(0) : Drain();
    case State::Draining: return audio_.TakeCut() ? Purge(0) : void();
    case State::Receiving: return StopReceiving(0);
    default: return;  // it comes to an end by itself
  }
}

void VoicePath::Choose() {
  Ask(transmitter_.Wanted() ? ModemTalk::Direction::Transmit : ModemTalk::Direction::Receive, kTries);
}

void VoicePath::Ask(ModemTalk::Direction direction, int tries_left) {
  state_ = State::Beginning;
  const bool transmit = direction == ModemTalk::Direction::Transmit;
  talk_.AskForSound(transmit ? "AT+VTX" : "AT+VRX", direction,
                    [this, direction, transmit, tries_left](const ModemReply& reply) {
                      if (reply.kind == ModemReply::Kind::Connect) return transmit ? Transmit() : Receive();
                      if (ended_) return GoOn();
                      if (reply.kind == ModemReply::Kind::Error) return Refused();
                      if (tries_left > 1) return Ask(direction, tries_left - 1);
                      Fail();
                    });
}

void VoicePath::Transmit() {
  state_ = State::Transmitting;
  transmitter_.Begin(clock_.Uptime());
  if (ended_) return Purge(0);
  TickTransmitting();
}

void VoicePath::Receive() {
  state_ = State::Receiving;
  receiver_.Begin();
  latest_sound_ = clock_.Uptime();
  heard_ = false;
  if (ended_) StopReceiving(0);
}

void VoicePath::Tick() {
  if (state_ == State::Transmitting) return TickTransmitting();
  if (state_ == State::Receiving) return TickReceiving();
  if (state_ == State::Draining && audio_.TakeCut()) return Purge(0);
  KeepTimeForRecorder();
}

void VoicePath::TickTransmitting() {
  KeepTimeForRecorder();
  if (audio_.TakeCut()) {
    transmitter_.Cut();
    return Purge(0);
  }
  std::vector<std::uint8_t> bytes;
  const bool more = transmitter_.Due(clock_.Uptime(), bytes);
  if (!bytes.empty()) talk_.Write(bytes);
  if (link_.Unsent() > kMostUnsent) return Fail();
  if (!more) Drain();
}

void VoicePath::TickReceiving() {
  silent_since_ = clock_.Uptime();
  (void)audio_.TakeCut();
  if (clock_.Uptime() - latest_sound_ > kLongestStall) return Fail();
  if (transmitter_.Wanted()) StopReceiving(0);
}

/// A recording goes on while the modem cannot listen.
void VoicePath::KeepTimeForRecorder() {
  constexpr std::array<std::int16_t, kBlockSamples> kSilence{};
  for (; silent_since_ + kTick <= clock_.Uptime(); silent_since_ += kTick) {
    if (audio_.Records()) audio_.Deliver(kSilence);
  }
}

void VoicePath::Drain() {
  state_ = State::Draining;
  talk_.Write(kEndOfSound);
  talk_.AwaitOk(
      [this](const ModemReply& reply) {
        if (reply.Ok() || state_ != State::Draining) return Rest();
        Purge(0);
      },
      transmitter_.Ahead(clock_.Uptime()) + kDrainPatience);
}

void VoicePath::Purge(int tries) {
  state_ = State::Purging;
  link_.DiscardUnsent();
  talk_.Forget();
  talk_.Write(kPurges[static_cast<std::size_t>(tries)]);
  talk_.AwaitOk(
      [this, tries](const ModemReply& reply) {
        if (reply.kind != ModemReply::Kind::Nothing) return Rest();
        if (tries + 1 < kTries) return Purge(tries + 1);
        Fail();
      },
      kStopPatience);
}

void VoicePath::StopReceiving(int tries) {
  state_ = State::EndOfReceive;
  talk_.Write(kStops[static_cast<std::size_t>(tries)]);
  talk_.AwaitOk(
      [this, tries](const ModemReply& reply) {
        if (reply.kind != ModemReply::Kind::Nothing) return Rest();
        if (tries + 1 < kTries) return StopReceiving(tries + 1);
        talk_.ExpectLines();
        Fail();
      },
      kStopPatience);
}

void VoicePath::Rest() {
  if (!talk_.StraysSeen()) return GoOn();
  state_ = State::Settling;
  loop_.After(kStrayTime, lifeline_.Bind([this] { GoOn(); }));
}

void VoicePath::GoOn() {
  if (!ended_) return Choose();
  state_ = State::Off;
  tick_->Stop();
  std::exchange(ended_, nullptr)();
}

void VoicePath::Refused() {
  state_ = State::Off;
  tick_->Stop();
  listener_.refused();
}

void VoicePath::Fail() {
  state_ = State::Off;
  tick_->Stop();
  if (ended_) return std::exchange(ended_, nullptr)();
  listener_.failed();
}

void VoicePath::Sound(std::span<const std::uint8_t> bytes) {
  if (state_ != State::Receiving && state_ != State::EndOfReceive) return;
  const bool paused = heard_ && clock_.Uptime() - latest_sound_ > kPauseInSound;
  heard_ = true;
  latest_sound_ = clock_.Uptime();
  receiver_.Sound(bytes);
  if (paused) Overrun();
}

void VoicePath::Overrun() {
  if (state_ == State::Receiving) StopReceiving(0);
}

void VoicePath::SoundEnded() {
  // Not asked for: the modem has stopped by itself, and says OK behind it.
  if (state_ != State::Receiving) return;
  state_ = State::EndOfReceive;
  talk_.AwaitOk([this](const ModemReply&) { Rest(); }, kStopPatience);
}

}  // namespace orven
