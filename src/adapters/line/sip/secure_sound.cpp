// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/secure_sound.h"

#include <algorithm>
#include <new>
#include <utility>

#include "adapters/line/sip/rtp_packet.h"

namespace orven {
namespace {

/// Where the sender's number stands: RFC 3550, sections 5.1 and 6.4.
constexpr std::size_t kSoundSsrcAt = 8;
constexpr std::size_t kControlSsrcAt = 4;

LibrePtr<srtp> NewContext(SrtpSuite suite, const SrtpKey& key) {
  srtp* context = nullptr;
  const auto name = suite == SrtpSuite::kTag80 ? SRTP_AES_CM_128_HMAC_SHA1_80 : SRTP_AES_CM_128_HMAC_SHA1_32;
  if (srtp_alloc(&context, name, key.data(), key.size(), 0) != 0) throw std::bad_alloc();
  return LibrePtr<srtp>(context);
}

/// Replaces the buffer's content and points at its beginning.
void Fill(LibrePtr<mbuf>& buffer, std::span<const std::uint8_t> packet) {
  if (buffer == nullptr) buffer.reset(mbuf_alloc(256));
  if (buffer == nullptr) throw std::bad_alloc();
  mbuf_rewind(buffer.get());
  if (mbuf_write_mem(buffer.get(), packet.data(), packet.size()) != 0) throw std::bad_alloc();
  mbuf_set_pos(buffer.get(), 0);
}

std::span<const std::uint8_t> ContentOf(const mbuf& buffer) {
  return {buffer.buf, buffer.end};
}

std::uint32_t Read32(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes.first(4)) value = value << 8 | byte;
  return value;
}

}  // namespace

SoundSealer::SoundSealer(SrtpSuite suite, const SrtpKey& key)
    : suite_(suite), key_(key), context_(NewContext(suite, key)) {}

std::span<const std::uint8_t> SoundSealer::Seal(std::span<const std::uint8_t> packet) {
  Fill(buffer_, packet);
  if (srtp_encrypt(context_.get(), buffer_.get()) != 0) return {};
  return ContentOf(*buffer_);
}

std::optional<std::span<const std::uint8_t>> SoundOpener::Open(std::span<const std::uint8_t> packet) {
  const bool is_sound = kind_ == Kind::kSound;
  if (is_sound ? !LooksLikeRtp(packet) : !LooksLikeRtcp(packet)) return std::nullopt;
  const std::uint32_t ssrc = Read32(packet.subspan(is_sound ? kSoundSsrcAt : kControlSsrcAt));
  const auto known = std::find_if(senders_.begin(), senders_.end(),
                                  [ssrc](const Sender& sender) { return sender.ssrc == ssrc; });
  if (known != senders_.end()) {
    if (!Decrypt(known->context.get(), packet)) return std::nullopt;
    senders_.splice(senders_.begin(), senders_, known);
    return ContentOf(*buffer_);
  }
  // The library remembers each number that it is shown, right or wrong, and has room for few.
  LibrePtr<srtp> context = NewContext(suite_, key_);
  if (senders_.size() >= kMostSenders || !Decrypt(context.get(), packet)) return std::nullopt;
  senders_.push_front({ssrc, std::move(context)});
  return ContentOf(*buffer_);
}

bool SoundOpener::Decrypt(srtp* context, std::span<const std::uint8_t> packet) {
  Fill(buffer_, packet);
  const auto decrypt = kind_ == Kind::kSound ? srtp_decrypt : srtcp_decrypt;
  return decrypt(context, buffer_.get()) == 0;
}

}  // namespace orven
