// SPDX-License-Identifier: GPL-3.0-or-later
// Any datagrams to a call's RTP port, at any time: decoding, order, playout, keys, and SRTP among forgeries.
#include <array>
#include <chrono>
#include <optional>
#include <vector>

#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/jitter_buffer.h"
#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/srtp.h"
#include "fuzz/fuzz.h"
#include "platform/audio_device.h"

namespace orven::fuzz {
namespace {

constexpr std::string_view kKeys = "0123456789*#ABCD";
constexpr std::uint8_t kEventType = 101;

/// A call's receiving side without its sockets.
class Receiver {
 public:
  void Take(Bytes datagram) {
    const auto packet = ReadRtpPacket(datagram);
    if (!packet) return;
    std::array<std::uint8_t, kRtpHeaderBytes> again;
    WriteRtpHeader(packet->header, again.data());
    Require(LooksLikeRtp(datagram) && std::equal(again.begin() + 1, again.end(), datagram.begin() + 1));
    Require(packet->payload.size() <= datagram.size() - kRtpHeaderBytes);
    if (packet->header.payload_type == kEventType) return TakeEvent(*packet);
    const auto samples =
        Decode(packet->header.payload_type == 8 ? Codec::kALaw : Codec::kMuLaw, packet->payload);
    Require(samples.size() == packet->payload.size());
    jitter_buffer_.Push(packet->header.ssrc, packet->header.timestamp, samples);
    order_.Push(packet->header.ssrc, packet->header.timestamp, samples);
    Require(order_.BufferedSamples() <= std::max(ReorderBuffer::kMostSamples, datagram.size()));
  }

  void Wait(std::size_t blocks) {
    for (; blocks > 0; --blocks) {
      now_ += std::chrono::milliseconds(20);
      std::array<std::int16_t, kBlockSamples> block;
      jitter_buffer_.Pull(block);
      dtmf_detector_.Listen(block);
      while (order_.BufferedSamples() > kBlockSamples) PopInOrder();
    }
  }

  void End() {
    while (order_.Front() != nullptr) PopInOrder();
    Require(order_.BufferedSamples() == 0);
  }

  void Press(DigitSource source, char key) {
    Require(kKeys.find(key) != std::string_view::npos);
    digits_.Report(source, key, now_);
  }

 private:
  /// Packets may overlap; their beginnings are in order.
  void PopInOrder() {
    const AudioFrame frame = order_.Pop();
    Require(!frame.samples.empty() && frame.start >= popped_);
    popped_ = frame.start + 1;
  }

  void TakeEvent(const RtpPacket& packet) {
    const auto event = events_.Take(packet, now_);
    if (event.kind == TelephoneEvents::Kind::kPressed) Press(DigitSource::kTelephoneEvent, event.digit);
    if (event.kind == TelephoneEvents::Kind::kHeld) digits_.Held(DigitSource::kTelephoneEvent, now_);
  }

  JitterBuffer jitter_buffer_;
  ReorderBuffer order_;
  std::int64_t popped_ = 0;
  TelephoneEvents events_;
  DigitMerger digits_;
  DtmfDetector dtmf_detector_{[this](char key) { Press(DigitSource::kInBand, key); }};
  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
};

/// Only packets of the key's owner are decrypted, to what was sent, and once.
class SecureReceiver {
 public:
  explicit SecureReceiver(SrtpSuite suite)
      : sender_(suite, key_), receiver_(SrtpReceiver::Kind::kRtp, suite, key_) {}

  /// The decrypted packet with this payload. `what` chooses whether it is sent plain or changed on its way:
  /// nothing.
  std::optional<Bytes> Take(Bytes payload, std::uint8_t what) {
    plain_.assign(kRtpHeaderBytes, 0);
    WriteRtpHeader({static_cast<std::uint8_t>(what % 128), false, ++sequence_, 160, 7}, plain_.data());
    plain_.insert(plain_.end(), payload.begin(), payload.end());
    const Bytes protect = what % 4 == 0 ? payload : sender_.Protect(plain_);
    std::vector<std::uint8_t> sent(protect.begin(), protect.end());
    if (what % 4 == 1) sent[what * 7U % sent.size()] ^= static_cast<std::uint8_t>(1U << what % 8U);
    const auto opened = receiver_.Unprotect(sent);
    Require(opened.has_value() == (what % 4 > 1));
    if (!opened) return std::nullopt;
    Require(std::ranges::equal(*opened, plain_) && !receiver_.Unprotect(sent));
    return plain_;
  }

 private:
  const SrtpKey key_ = NewSrtpKey();  ///< with a fixed one the fuzzer would learn to forge
  SrtpSender sender_;
  SrtpReceiver receiver_;
  std::uint16_t sequence_ = 0;
  std::vector<std::uint8_t> plain_;
};

}  // namespace

void Rtp(Bytes input) {
  Choices choices(input);
  const std::uint8_t mode = choices.Byte();
  std::optional<SecureReceiver> secure;
  if (mode % 2 == 1) secure.emplace(mode % 4 == 1 ? SrtpSuite::kTag80 : SrtpSuite::kTag32);
  Receiver receiver;
  while (choices.Any()) {
    const std::uint8_t pause = choices.Byte();
    receiver.Wait(pause % 8 == 7 ? pause : pause % 8);
    if (pause >= 0xF8) receiver.Press(DigitSource::kInfo, kKeys[choices.Below(kKeys.size())]);
    const Bytes datagram = choices.Piece();
    if (const auto opened = secure ? secure->Take(datagram, pause) : datagram) receiver.Take(*opened);
  }
  receiver.End();
}

}  // namespace orven::fuzz
