// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever comes to the port of a call's sound, when it comes: through all that makes sound and keys of it.
// Links: orven_line_sip
#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string_view>
#include <vector>

#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/jitter_buffer.h"
#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/srtp.h"
#include "fuzz/input.h"
#include "platform/audio_device.h"

namespace {

using namespace orven;
using namespace orven::fuzz;

constexpr std::string_view kKeys = "0123456789*#ABCD";
constexpr std::uint8_t kEventType = 101;

/// What a call has of its peer's sound, without its sockets.
class Receiver {
 public:
  void Take(Bytes datagram) {
    const auto packet = ReadRtpPacket(datagram);
    Require(!packet || LooksLikeRtp(datagram));
    if (!packet) return;
    Require(packet->payload.empty() ||
            (packet->payload.data() >= datagram.data() + kRtpHeaderBytes &&
             packet->payload.data() + packet->payload.size() <= datagram.data() + datagram.size()));
    RequireSameHeader(packet->header, datagram);
    if (packet->header.payload_type == kEventType) return TakeEvent(*packet);
    const Codec codec = packet->header.payload_type == 8 ? Codec::kALaw : Codec::kMuLaw;
    auto samples = Decode(codec, packet->payload);
    Require(samples.size() == packet->payload.size());
    playout_.Push(packet->header.ssrc, packet->header.timestamp, samples);
    order_.Push(packet->header.ssrc, packet->header.timestamp, std::move(samples));
    Require(order_.BufferedSamples() <= std::max(ReorderBuffer::kMostSamples, datagram.size()));
  }

  /// So many blocks of 20 ms go by.
  void Wait(std::size_t blocks) {
    for (std::size_t block = 0; block < blocks; ++block) {
      now_ += std::chrono::milliseconds(20);
      std::array<std::int16_t, kBlockSamples> sound;
      playout_.Pull(sound);
      inband_.Listen(sound);
      while (order_.Front() != nullptr && order_.BufferedSamples() > kBlockSamples) PopInOrder();
    }
  }

  void TakeInfo(char key) { Press(DigitSource::kInfo, key); }

  /// The call's end.
  void Finish() {
    while (order_.Front() != nullptr) PopInOrder();
    Require(order_.BufferedSamples() == 0);
    Require(pressed_ <= reports_);
  }

 private:
  static void RequireSameHeader(const RtpHeader& header, Bytes datagram) {
    std::array<std::uint8_t, kRtpHeaderBytes> again;
    WriteRtpHeader(header, again.data());
    Require(std::equal(again.begin() + 1, again.end(), datagram.begin() + 1));
  }

  void PopInOrder() {
    const SoundFrame frame = order_.Pop();
    Require(!frame.samples.empty() && frame.start >= end_of_popped_);
    end_of_popped_ = frame.start + 1;  // packets may overlap, but not come back
  }

  void TakeEvent(const RtpPacket& packet) {
    const auto event = events_.Take(packet, now_);
    if (event.kind == TelephoneEvents::Kind::kPressed) Press(DigitSource::kTelephoneEvent, event.digit);
    if (event.kind == TelephoneEvents::Kind::kHeld) digits_.Held(DigitSource::kTelephoneEvent, now_);
  }

  void Press(DigitSource source, char key) {
    Require(kKeys.find(key) != std::string_view::npos);
    ++reports_;
    if (digits_.Report(source, key, now_)) ++pressed_;
  }

  Playout playout_;
  ReorderBuffer order_;
  std::int64_t end_of_popped_ = 0;
  TelephoneEvents events_;
  DigitMerger digits_;
  InbandDigits inband_{[this](char key) { Press(DigitSource::kInBand, key); }};
  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
  int reports_ = 0;
  int pressed_ = 0;
};

/// The peer's encrypted sound among rubbish and forgeries: only what the peer sent is opened, as it was,
/// once.
class SecureReceiver {
 public:
  explicit SecureReceiver(SrtpSuite suite)
      : sealer_(suite, key_),
        opener_(SoundOpener::Kind::kSound, suite, key_),
        control_(SoundOpener::Kind::kControl, suite, key_) {}

  std::optional<Bytes> Take(Bytes datagram, std::uint8_t what) {
    if (what % 4 == 0) {
      Require(!control_.Open(datagram));
      Require(!opener_.Open(datagram));
      return std::nullopt;
    }
    RtpHeader header{.payload_type = static_cast<std::uint8_t>(what % 128),
                     .marker = false,
                     .sequence = ++sequence_,
                     .timestamp = 160U * sequence_,
                     .ssrc = 7};
    plain_.assign(kRtpHeaderBytes, 0);
    WriteRtpHeader(header, plain_.data());
    plain_.insert(plain_.end(), datagram.begin(), datagram.end());
    const auto sealed = sealer_.Seal(plain_);
    Require(sealed.size() > plain_.size());
    std::vector<std::uint8_t> sent(sealed.begin(), sealed.end());
    if (what % 4 == 1) {
      sent[what * 7U % sent.size()] ^= static_cast<std::uint8_t>(1U << what % 8U);
      Require(!opener_.Open(sent));
      return std::nullopt;
    }
    const auto opened = opener_.Open(sent);
    Require(opened && std::equal(opened->begin(), opened->end(), plain_.begin(), plain_.end()));
    opened_.assign(opened->begin(), opened->end());
    Require(!opener_.Open(sent));
    return opened_;
  }

 private:
  const SrtpKey key_ = NewSrtpKey();  ///< a fixed one would let the fuzzer learn how to forge
  SoundSealer sealer_;
  SoundOpener opener_;
  SoundOpener control_;
  std::uint16_t sequence_ = 0;
  std::vector<std::uint8_t> plain_;
  std::vector<std::uint8_t> opened_;
};

}  // namespace

/// The first byte chooses plain or encrypted sound; then, again and again: how many blocks go by, and a
/// datagram with its length before it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Choices choices(Bytes(data, size));
  const std::uint8_t mode = choices.Byte();
  std::optional<SecureReceiver> secure;
  if (mode % 2 == 1) secure.emplace(mode % 4 == 1 ? SrtpSuite::kTag80 : SrtpSuite::kTag32);
  Receiver receiver;
  while (choices.Any()) {
    const std::uint8_t pause = choices.Byte();
    receiver.Wait(pause % 8 == 7 ? pause : pause % 8);
    if (pause >= 0xF8) receiver.TakeInfo(kKeys[choices.Below(kKeys.size())]);
    Bytes datagram = choices.Piece();
    const auto opened = secure ? secure->Take(datagram, pause) : datagram;
    if (opened) receiver.Take(*opened);
  }
  receiver.Wait(8);
  receiver.Finish();
  return 0;
}
