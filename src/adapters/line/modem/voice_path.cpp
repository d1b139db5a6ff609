// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/voice_path.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "adapters/line/modem/modem_reader.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// Enough for a busy desktop computer, little enough to be purged unnoticed.
constexpr milliseconds kAhead{250};
/// When only this much is left, playback has ended: the pause between two files is shorter.
constexpr milliseconds kLast{60};
/// A line that keeps ringing after the answer is noticed within the longest pause between rings.
constexpr std::size_t kKeptSamples = std::size_t{8} * kSampleRate;

constexpr int kSamplesPerMillisecond = kSampleRate / 1000;

/// One block (20 ms) is played and received in it.
constexpr milliseconds kTick{kBlockSamples * 1000 / kSampleRate};

/// A receiving modem sends audio without pauses.
constexpr milliseconds kLongestStall{3'000};

/// After a pause of this length audio may have been lost.
constexpr milliseconds kPauseInAudio{300};

/// Two seconds of 16-bit audio: when the port has not taken this much, its modem has stopped.
constexpr std::size_t kMostUnsent = std::size_t{2} * 2 * kSampleRate;

/// For the end of playback and the answer to it, in addition to what is still to be played.
constexpr milliseconds kDrainPatience{2'000};

/// Until the next way of stopping is tried: the modem answers after 100 ms, and finishes its block.
constexpr milliseconds kStopPatience{500};

/// Some modems say a second OK within this time after the end of audio.
constexpr milliseconds kStrayTime{120};

constexpr int kTries = 3;

constexpr std::array<std::uint8_t, 2> kEndOfAudio{kDle, kEtx};

/// The ways in which modems stop playback at once, tried in this order. The zero completes a <DLE> whose
/// second byte was discarded: without it the next byte would be taken as audio.
const std::array<std::vector<std::uint8_t>, kTries> kPurges{
    std::vector<std::uint8_t>{0, kDle, kCan},
    {0, kDle, kCan, kDle, kEtx},
    {0, kDle, kCan, kDle, kCan, kDle, kCan, kDle, kEtx}};

/// The ways in which modems stop receiving, tried in this order.
const std::array<std::vector<std::uint8_t>, kTries> kStops{
    std::vector<std::uint8_t>{kDle, '!'}, {kDle, kEsc}, {kDle, '!', kDle, '!', kDle, '!'}};

}  // namespace

/// Playback to the caller, paced by the clock: a modem's buffer holds a second or less, and cannot be taken
/// back quickly. Keeps the first seconds of the call, to repeat them for a caller who has not heard them. Not
/// thread-safe.
class VoicePath::Transmitter {
 public:
  using Time = std::chrono::milliseconds;  ///< of a monotonic clock

  Transmitter(VoiceFormat format, LineAudio& audio) : format_(std::move(format)), audio_(audio) {}

  /// The modem takes audio from now on.
  void Begin(Time now);

  /// Appends to `bytes` what is due, shielded. False when everything will have been played in a moment and
  /// nothing more is to come.
  bool Due(Time now, std::vector<std::uint8_t>& bytes);

  /// The modem's buffer has run empty: it needs more from now on.
  void Underrun(Time now) { AdvanceTo(now); }

  /// Duration of the written audio that has not been played yet.
  std::chrono::milliseconds Ahead(Time now) const;

  /// Whether there is something to play.
  bool Wanted() const { return again_ < kept_.size() || audio_.Plays(); }

  /// The caller has heard nothing so far: everything is played again, first.
  void StartOver() { again_ = 0; }
  /// The kept audio is not played again.
  void Cut() { again_ = kept_.size(); }

 private:
  bool NextBlock(std::span<std::int16_t> block);
  void AdvanceTo(Time now);

  const VoiceFormat format_;
  LineAudio& audio_;
  std::optional<SampleEncoder> encoder_;
  Time began_{0};
  std::int64_t sent_ = 0;           ///< samples, since began_
  std::vector<std::int16_t> kept_;  ///< of the call's first seconds
  std::size_t again_ = 0;           ///< position in kept_ from which it is played again
};

void VoicePath::Transmitter::Begin(Time now) {
  encoder_.emplace(format_);
  began_ = now;
  sent_ = 0;
}

std::chrono::milliseconds VoicePath::Transmitter::Ahead(Time now) const {
  return milliseconds(sent_ / kSamplesPerMillisecond) - (now - began_);
}

void VoicePath::Transmitter::AdvanceTo(Time now) {
  if (Ahead(now) <= milliseconds(0)) return;
  began_ = now;
  sent_ = 0;
}

bool VoicePath::Transmitter::Due(Time now, std::vector<std::uint8_t>& bytes) {
  // Lost time is not caught up: the modem was stopped meanwhile.
  if (Ahead(now) < milliseconds(0)) {
    began_ = now;
    sent_ = 0;
  }
  std::array<std::int16_t, kBlockSamples> block{};
  std::vector<std::uint8_t> plain;
  while (Ahead(now) < kAhead && NextBlock(block)) {
    encoder_->Encode(block, plain);
    sent_ += kBlockSamples;
  }
  AppendShielded(plain, bytes);
  return Ahead(now) > kLast;
}

bool VoicePath::Transmitter::NextBlock(std::span<std::int16_t> block) {
  if (again_ < kept_.size()) {
    std::copy_n(kept_.begin() + static_cast<std::ptrdiff_t>(again_), block.size(), block.begin());
    again_ += block.size();
    return true;
  }
  if (!audio_.Fetch(block)) return false;
  if (kept_.size() < kKeptSamples) {
    kept_.insert(kept_.end(), block.begin(), block.end());
    again_ = kept_.size();
  }
  return true;
}

VoicePath::VoicePath(AtChannel& channel, const ModemPorts& ports, const VoiceFormat& format,
                     Listener listener)
    : channel_(channel),
      ports_(ports),
      format_(format),
      listener_(std::move(listener)),
      transmitter_(std::make_unique<Transmitter>(format, ports.audio)),
      hang_up_([this](const char* what) { listener_.hung_up(what); }),
      tick_(ports.loop.MakeTimer([this] { Tick(); })) {}

VoicePath::~VoicePath() = default;

void VoicePath::Begin() {
  silent_since_ = ports_.clock.Uptime();
  (void)ports_.audio.TakeCut();
  tick_->Start(kTick);
  Choose();
}

void VoicePath::StartOver() {
  transmitter_->StartOver();
  Begin();
}

void VoicePath::End(std::function<void()> done) {
  ended_ = std::move(done);
  switch (state_) {
    case State::Off: return GoOn();
    // Audio that was fetched completely is played to its end.
    case State::Transmitting: return ports_.audio.TakeCut() || ports_.audio.Plays() ? Purge() : Drain();
    case State::Draining: return ports_.audio.TakeCut() ? Purge() : void();
    case State::Receiving: return StopReceiving();
    default: return;  // it ends by itself
  }
}

void VoicePath::Choose() {
  Ask(transmitter_->Wanted(), kTries);
}

void VoicePath::Ask(bool transmit, int tries_left) {
  state_ = State::Beginning;
  channel_.AskForAudio(transmit ? "AT+VTX" : "AT+VRX", !transmit,
                       [this, transmit, tries_left](const ModemReply& reply) {
                         if (reply.kind == ModemReply::Kind::Connect)
                           return transmit ? Transmit() : Receive();
                         if (ended_) return GoOn();
                         if (reply.kind == ModemReply::Kind::Error) return Refused();
                         if (tries_left > 1) return Ask(transmit, tries_left - 1);
                         Fail();
                       });
}

void VoicePath::Transmit() {
  state_ = State::Transmitting;
  transmitter_->Begin(ports_.clock.Uptime());
  if (ended_) return Purge();
  TickTransmitting();
}

void VoicePath::Receive() {
  state_ = State::Receiving;
  decoder_.emplace(format_);
  latest_audio_ = ports_.clock.Uptime();
  heard_ = false;
  if (ended_) StopReceiving();
}

void VoicePath::Tick() {
  if (state_ == State::Transmitting) return TickTransmitting();
  if (state_ == State::Receiving) return TickReceiving();
  if (state_ == State::Draining && ports_.audio.TakeCut()) return Purge();
  KeepTimeForRecorder();
}

void VoicePath::TickTransmitting() {
  KeepTimeForRecorder();
  if (ports_.audio.TakeCut()) {
    transmitter_->Cut();
    return Purge();
  }
  std::vector<std::uint8_t> bytes;
  const bool more = transmitter_->Due(ports_.clock.Uptime(), bytes);
  if (!bytes.empty()) channel_.Write(bytes);
  if (ports_.link.Unsent() > kMostUnsent) return Fail();
  if (!more) Drain();
}

void VoicePath::TickReceiving() {
  silent_since_ = ports_.clock.Uptime();
  (void)ports_.audio.TakeCut();
  if (ports_.clock.Uptime() - latest_audio_ > kLongestStall) return Fail();
  if (transmitter_->Wanted()) StopReceiving();
}

/// A recording continues, with silence, while the modem cannot receive.
void VoicePath::KeepTimeForRecorder() {
  constexpr std::array<std::int16_t, kBlockSamples> kSilence{};
  for (; silent_since_ + kTick <= ports_.clock.Uptime(); silent_since_ += kTick) {
    if (ports_.audio.Records()) ports_.audio.Deliver(kSilence);
  }
}

void VoicePath::Drain() {
  state_ = State::Draining;
  channel_.Write(kEndOfAudio);
  channel_.AwaitOk(
      [this](const ModemReply& reply) {
        if (reply.Ok() || state_ != State::Draining) return Rest();
        Purge();
      },
      transmitter_->Ahead(ports_.clock.Uptime()) + kDrainPatience);
}

void VoicePath::Purge() {
  Stop(State::Purging, kPurges);
}

void VoicePath::StopReceiving() {
  Stop(State::EndOfReceive, kStops);
}

void VoicePath::Stop(State state, std::span<const std::vector<std::uint8_t>> ways) {
  state_ = state;
  if (state == State::Purging) {
    ports_.link.DiscardUnsent();
    channel_.Forget();
  }
  channel_.Write(ways.front());
  channel_.AwaitOk(
      [this, state, ways](const ModemReply& reply) {
        if (reply.kind != ModemReply::Kind::Nothing) return Rest();
        if (ways.size() > 1) return Stop(state, ways.subspan(1));
        channel_.ExpectLines();
        Fail();
      },
      kStopPatience);
}

void VoicePath::Rest() {
  if (!channel_.StraysSeen()) return GoOn();
  state_ = State::Settling;
  ports_.loop.After(kStrayTime, lifeline_.Bind([this] { GoOn(); }));
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

void VoicePath::Audio(std::span<const std::uint8_t> bytes) {
  if (state_ != State::Receiving && state_ != State::EndOfReceive) return;
  const bool paused = heard_ && ports_.clock.Uptime() - latest_audio_ > kPauseInAudio;
  heard_ = true;
  latest_audio_ = ports_.clock.Uptime();
  decoder_->Decode(bytes, received_);
  std::span<const std::int16_t> left(received_);
  for (; left.size() >= kBlockSamples; left = left.subspan(kBlockSamples)) {
    const auto block = left.first(kBlockSamples);
    ports_.audio.Deliver(block);
    hang_up_.Listen(block);
  }
  received_.erase(received_.begin(), received_.end() - static_cast<std::ptrdiff_t>(left.size()));
  if (paused) Overrun();
}

void VoicePath::Underrun() {
  transmitter_->Underrun(ports_.clock.Uptime());
}

void VoicePath::Overrun() {
  if (state_ == State::Receiving) StopReceiving();
}

void VoicePath::AudioEnded() {
  // The modem has stopped by itself, and says OK after it.
  if (state_ != State::Receiving) return;
  state_ = State::EndOfReceive;
  channel_.AwaitOk([this](const ModemReply&) { Rest(); }, kStopPatience);
}

}  // namespace orven
