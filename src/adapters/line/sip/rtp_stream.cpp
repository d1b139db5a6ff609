// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/rtp_stream.h"

#include <algorithm>
#include <array>
#include <utility>

#include "adapters/line/sip/rtp.h"

namespace orven {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kBlockTime{20};
constexpr int kBlocksPerSecond = 50;

/// Blocks that are sent and heard together when no person could tell: the caller gets silence, and whoever
/// measures what is heard reads it by its moments.
constexpr std::int64_t kGroup = 5;

/// More datagrams in one turn are a flood. The system keeps about 270 until they are read: with turns of 20
/// ms none of the peer's is lost until 13,000 a second come, with turns of 100 ms until 2,700.
constexpr std::size_t kFlood = 32;

/// After a longer stall (a suspended computer) the missed blocks are skipped.
constexpr std::int64_t kMostLateBlocks = 100;

/// Without a packet for longer (1 s) the sender was silent, and none is under way.
constexpr std::int64_t kLate = kSampleRate;

/// The peer counts the wraps of the sequence numbers to decrypt (RFC 3711, section 3.3.1). Beginning in the
/// first half leaves it 11 minutes to receive a packet before the first wrap.
constexpr std::uint16_t kFirstSequenceMask = 0x7FFF;

}  // namespace

std::unique_ptr<RtpStream> RtpStream::Bind(const sa& address, LineAudio& audio, const SipLineTimers& timers,
                                           Events events) {
  std::unique_ptr<RtpStream> stream(new RtpStream(audio, timers, std::move(events)));
  RtpStream* self = stream.get();
  auto ports = BindRtpPorts(
      address,
      {.received = [self](const sa& source, auto datagram,
                          Time arrived) { self->TakePacket(source, datagram, arrived); },
       .refused = [self](const sa& destination) { self->TakeRefusal(destination); }},
      {.received = [self](const sa& source, auto datagram, Time) { self->TakeRtcp(source, datagram); },
       .refused = [](const sa&) {}});
  if (!ports) return nullptr;
  stream->ports_ = std::move(*ports);
  return stream;
}

RtpStream::RtpStream(LineAudio& audio, const SipLineTimers& timers, Events events)
    : audio_(audio),
      timers_(timers),
      events_(std::move(events)),
      ticker_([this] { Tick(); }),
      dtmf_detector_([this](char digit) { events_.digit(DigitSource::kInBand, digit, Clock::now()); }),
      ssrc_(rand_u32()),
      timestamp_(rand_u32()),
      sequence_(rand_u16() & kFirstSequenceMask) {}

void RtpStream::Start(const std::optional<MediaAgreement>& agreement) {
  if (agreement) Agree(*agreement);
  started_ = true;
  start_ = alive_ = Clock::now();
  placement_.emplace(start_);
  audio_.OnStopRecord([this](AudioSink& sink) { kept_.Finish(Clock::now(), sink); });
  blocks_ = 0;
  ticker_.StartPeriodic(pace_ = kBlockTime);
}

void RtpStream::SourceReady() {
  if (!started_ || !silent_) return;
  start_ = Clock::now() - (blocks_ + 1) * kBlockTime;
  ticker_.StartPeriodic(pace_ = kBlockTime);
  Tick();
}

void RtpStream::Update(const MediaAgreement& agreement) {
  // A refresh says nothing new: the peer hears on where it is, even behind a router that hides its address.
  if (!agreement_ || !sa_cmp(&agreement.peer, &agreement_->peer, SA_ALL)) source_.reset();
  Agree(agreement);
  source_open_ = true;
  refused_since_.reset();
  alive_ = Clock::now();
}

/// An unchanged key keeps its packet counters; a new key gets new ones.
void RtpStream::Agree(const MediaAgreement& agreement) {
  agreement_ = agreement;
  const auto& keys = agreement.keys;
  if (!keys) {
    srtp_sender_.reset();
    rtp_receiver_.reset();
    rtcp_receiver_.reset();
    return;
  }
  if (!srtp_sender_ || !srtp_sender_->Uses(keys->suite, keys->send))
    srtp_sender_.emplace(keys->suite, keys->send);
  if (rtp_receiver_ && rtp_receiver_->Uses(keys->suite, keys->receive)) return;
  rtp_receiver_.emplace(SrtpReceiver::Kind::kRtp, keys->suite, keys->receive);
  rtcp_receiver_.emplace(SrtpReceiver::Kind::kRtcp, keys->suite, keys->receive);
}

bool RtpStream::AwaitsMore() {
  if (!started_ || !agreement_ || hung_up_) return false;
  ports_.rtp->Drain();
  Keep();
  hung_up_ = Clock::now();
  agreement_->send = false;
  KeepPace();
  return IsUnderWay(*hung_up_);
}

/// Packets before the newest one have not come, or the one after it is due: packets came in time until now,
/// and the clock is beyond the newest one's end.
bool RtpStream::IsUnderWay(Time now) {
  if (now - *hung_up_ >= timers_.last_audio) return false;
  bool waits = false;
  audio_.Keep([&](AudioSink&) {
    const std::int64_t behind = placement_->Clock(*hung_up_) - placement_->End();
    waits = kept_.Waits() || (behind > 0 && behind < kLate);
  });
  return waits;
}

void RtpStream::Stop() {
  if (!started_) return;
  ports_.rtp->Drain();
  started_ = false;
  ticker_.Stop();
  Keep();
  const Time end = hung_up_.value_or(Clock::now());  // waiting for late audio is no pause of the caller
  audio_.Keep([this, end](AudioSink& sink) { kept_.Finish(end, sink); });
  audio_.OnStopRecord({});
}

void RtpStream::Tick() {
  flooded_ = ports_.rtp->Drain() > kFlood;
  Keep();
  const Time now = Clock::now();
  std::int64_t due = (now - start_) / kBlockTime;
  if (due - blocks_ > kMostLateBlocks) {
    start_ += (due - blocks_ - 1) * kBlockTime;
    due = blocks_ + 1;
  }
  for (std::int64_t group = std::max(blocks_, due - kGroup); blocks_ < due; ++blocks_) {
    // In a longer turn nothing was played before the newest block.
    SendBlock(blocks_ + 1 == due || pace_ == kBlockTime);
    HearBlock(now + std::max<std::int64_t>(blocks_ - group, 0) * kBlockTime);
  }
  ports_.rtp->Flush();
  KeepPace();
  CheckPeer(now);
}

void RtpStream::KeepPace() {
  const bool alone = !audio_.Plays() && !audio_.IsListenedTo() && !hung_up_ && !flooded_;
  const milliseconds pace = alone ? kGroup * kBlockTime : kBlockTime;
  if (pace != pace_) ticker_.StartPeriodic(pace_ = pace);
}

void RtpStream::SendBlock(bool may_play) {
  std::array<std::int16_t, kBlockSamples> block{};
  if (may_play) audio_.Fetch(block);
  silent_ = silent_ && std::ranges::all_of(block, [](auto sample) { return sample == 0; });
  const bool send = agreement_ && agreement_->send;
  const Codec codec = agreement_ ? agreement_->send_codec : Codec::kMuLaw;
  timestamp_ += static_cast<std::uint32_t>(ClockRate(codec) / kBlocksPerSecond);
  if (send) {
    rtp_header header{};
    header.m = !talking_;
    header.pt = agreement_->send_payload_type;
    header.seq = ++sequence_;
    header.ts = timestamp_;
    header.ssrc = ssrc_;
    const auto payload = encoder_.Encode(codec, block);
    packet_.resize(RTP_HEADER_SIZE + payload.size());
    WriteRtpHeader(header, packet_.data());
    std::ranges::copy(payload, packet_.begin() + RTP_HEADER_SIZE);
    Send(packet_);
  }
  talking_ = send;
}

/// A packet that cannot be encrypted is not sent.
void RtpStream::Send(std::span<const std::uint8_t> packet) {
  const auto sealed = srtp_sender_ ? srtp_sender_->Protect(packet) : packet;
  if (!sealed.empty()) ports_.rtp->Queue(source_ ? *source_ : agreement_->peer, sealed);
}

/// A recording begins with what comes after it was asked for.
void RtpStream::Keep() {
  audio_.Keep([this](AudioSink& sink) {
    if (!kept_.Begun()) kept_.Begin(*placement_, Clock::now());
    kept_.PassOn(sink);
  });
}

void RtpStream::HearBlock(Time at) {
  std::array<std::int16_t, kBlockSamples> block;
  heard_now_.Pull(block);
  audio_.Hear(block, at);
  dtmf_detector_.Listen(block);
}

void RtpStream::CheckPeer(Time now) {
  if (!agreement_) return;
  if (hung_up_) return IsUnderWay(now) ? void() : events_.over();
  // On hold many telephones send nothing, regardless of the agreement, and do not receive either.
  const bool held = !agreement_->receive || !agreement_->send;
  const bool silent = now - alive_ >= (held ? timers_.lost_held : timers_.lost_media);
  const bool refused = !held && refused_since_ && now - *refused_since_ >= timers_.unreachable;
  if (silent || refused) events_.over();
}

/// The negotiated address may always send. Another one may if it is the first to send (a router gave the peer
/// another address), and only until the negotiated one sends.
bool RtpStream::IsPeer(const sa& source) {
  const bool negotiated = sa_cmp(&source, &agreement_->peer, SA_ALL);
  if (std::exchange(source_open_, false) || negotiated) source_ = source;
  return sa_cmp(&source, &*source_, SA_ALL);
}

/// The plain packet, or nothing when it is not the peer's.
std::optional<std::span<const std::uint8_t>> RtpStream::Opened(std::optional<SrtpReceiver>& receiver,
                                                               std::span<const std::uint8_t> datagram) {
  return receiver ? receiver->Unprotect(datagram) : datagram;
}

void RtpStream::TakePacket(const sa& source, std::span<const std::uint8_t> datagram, Time arrived) {
  if (!started_ || !agreement_) return;
  const auto opened = Opened(rtp_receiver_, datagram);
  const auto packet = opened ? ReadRtpPacket(*opened) : std::nullopt;
  if (!packet) return;
  const auto codec = agreement_->codecs[packet->header.pt];
  const bool is_event = agreement_->event_payload_type == packet->header.pt;
  const bool is_noise = packet->header.pt == kComfortNoiseType;
  if ((!codec && !is_event && !is_noise) || !IsPeer(source)) return;
  alive_ = std::max(alive_, arrived);
  refused_since_.reset();
  Place(*packet, codec, arrived);
  if (!heard_) {
    heard_ = true;
    ports_.rtp->LeaveToDrain();  // from now on reading in each turn is enough
    events_.heard();
  }
  if (is_event) TakeEvent(*packet, arrived);
}

void RtpStream::Place(const RtpPacket& packet, std::optional<Codec> codec, Time arrived) {
  const auto placed = placement_->Place(packet.header, codec, packet.payload, arrived);
  if (!placed) return;
  if (placed->samples > 0) heard_now_.Push(*placed);
  audio_.Keep([&](AudioSink&) {
    if (kept_.Begun()) kept_.Take(*placed);
  });
}

void RtpStream::TakeEvent(const RtpPacket& packet, Time arrived) {
  const auto event = telephone_events_.Take(packet, arrived);
  if (event.kind == TelephoneEvents::Kind::kPressed) {
    events_.digit(DigitSource::kTelephoneEvent, event.digit, arrived);
  } else if (event.kind == TelephoneEvents::Kind::kHeld) {
    events_.held(DigitSource::kTelephoneEvent, arrived);
  }
}

/// A peer that sends no RTP in silence still sends RTCP: it is not lost.
void RtpStream::TakeRtcp(const sa& source, std::span<const std::uint8_t> datagram) {
  if (!started_ || !agreement_ || !LooksLikeRtcp(datagram)) return;
  if (!sa_cmp(&source, source_ ? &*source_ : &agreement_->peer, SA_ADDR)) return;
  if (Opened(rtcp_receiver_, datagram)) alive_ = Clock::now();
}

void RtpStream::TakeRefusal(const sa& destination) {
  if (!started_ || !agreement_ || refused_since_) return;
  if (sa_cmp(&destination, source_ ? &*source_ : &agreement_->peer, SA_ALL)) refused_since_ = Clock::now();
}

}  // namespace orven
