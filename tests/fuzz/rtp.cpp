// SPDX-License-Identifier: GPL-3.0-or-later
// Sends any datagrams to a call's RTP port at any time. Exercises decoding, ordering, playout, keys, and SRTP
// among forged packets.
#include <array>
#include <chrono>
#include <vector>

#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/jitter_buffer.h"
#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/srtp.h"
#include "adapters/line/sip/timeline.h"
#include "fuzz/fuzz.h"
#include "platform/audio_device.h"

namespace orven::fuzz {
namespace {

constexpr std::uint8_t kEventType = 101;

/// The receiving side of a call, without sockets.
struct Receiver {
  void Take(Bytes datagram) {
    const auto packet = ReadRtpPacket(datagram);
    if (!packet) return;
    const auto& [header, payload] = *packet;
    std::array<std::uint8_t, RTP_HEADER_SIZE> again;
    WriteRtpHeader(header, again.data());
    Require(LooksLikeRtp(datagram) && std::equal(again.begin() + 1, again.end(), datagram.begin() + 1));
    Require(payload.size() <= datagram.size() - RTP_HEADER_SIZE);
    if (header.pt == kEventType) {
      const auto event = events.Take(*packet, now);
      return event.kind == TelephoneEvents::Kind::kPressed ? Press(event.digit) : void();
    }
    const auto codec =
        header.pt == 13 ? std::nullopt : std::optional(header.pt == 8 ? Codec::kALaw : Codec::kMuLaw);
    const auto placed = placement.Place(header, codec, payload, now);
    if (!placed) return;
    Require(placed->payload.size() == payload.size() && placed->place <= placement.End());
    if (placed->samples > 0) jitter_buffer.Push(*placed);
    Require(jitter_buffer.BufferedSamples() <= std::max(JitterBuffer::kMostSamples, std::ssize(datagram)));
    if (!kept.Begun()) kept.Begin(placement, now);
    kept.Take(*placed);
    kept.PassOn(written);
  }

  void Wait(std::size_t blocks) {
    for (; blocks > 0; --blocks) {
      now += std::chrono::milliseconds(20);
      std::array<std::int16_t, kBlockSamples> block;
      jitter_buffer.Pull(block);
      dtmf_detector.Listen(block);
    }
  }

  /// A recording is never longer than its time and what packets that were held back can add.
  void End() {
    if (kept.Begun()) kept.Finish(now, written);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - start).count();
    Require(written.samples <= (2 * seconds + 8) * kSampleRate);
  }

  static void Press(char key) {
    Require(std::string_view("0123456789*#ABCD").find(key) != std::string_view::npos);
  }

  struct Counter : AudioSink {
    void Write(std::span<const std::int16_t> more) override { samples += std::ssize(more); }
    std::int64_t samples = 0;
  };

  JitterBuffer jitter_buffer;
  TelephoneEvents events;
  DtmfDetector dtmf_detector{Press};
  const std::chrono::steady_clock::time_point start{std::chrono::hours(1)};
  std::chrono::steady_clock::time_point now = start;
  Placement placement{start};
  TimeLine kept;
  Counter written;
};

}  // namespace

/// With SRTP, an encrypted payload must be accepted exactly once. A payload that was changed on the way or
/// sent unencrypted must be rejected.
void Rtp(Bytes input) {
  Choices choices(input);
  const std::uint8_t mode = choices.Byte();
  const auto suite = mode % 4 == 1 ? SrtpSuite::kTag80 : SrtpSuite::kTag32;
  const SrtpKey key = NewSrtpKey();  // with a fixed key the fuzzer would learn to forge packets
  SrtpSender sender(suite, key);
  SrtpReceiver srtp_receiver(SrtpReceiver::Kind::kRtp, suite, key);
  Receiver receiver;
  for (std::uint16_t sequence = 1; choices.Any(); ++sequence) {
    const std::uint8_t pause = choices.Byte();
    receiver.Wait(pause % 8 == 7 ? pause : pause % 8);
    const Bytes datagram = choices.Piece();
    if (mode % 2 == 0) {
      receiver.Take(datagram);
      continue;
    }
    std::vector<std::uint8_t> plain(RTP_HEADER_SIZE);
    const auto type = static_cast<std::uint8_t>(pause % 128);
    WriteRtpHeader({0, false, false, 0, false, type, sequence, 160U * sequence, 7, {}, {}}, plain.data());
    plain.insert(plain.end(), datagram.begin(), datagram.end());
    const Bytes sealed = pause % 4 == 0 ? datagram : sender.Protect(plain);
    std::vector<std::uint8_t> sent(sealed.begin(), sealed.end());
    if (pause % 4 == 1) sent[pause * 7U % sent.size()] ^= static_cast<std::uint8_t>(1U << pause % 8U);
    const auto opened = srtp_receiver.Unprotect(sent);
    Require(opened.has_value() == (pause % 4 > 1));
    if (!opened) continue;
    Require(std::ranges::equal(*opened, plain) && !srtp_receiver.Unprotect(sent));
    receiver.Take(plain);
  }
  receiver.End();
}

}  // namespace orven::fuzz
