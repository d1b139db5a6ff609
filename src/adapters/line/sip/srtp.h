// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "adapters/line/sip/libre.h"

namespace orven {

/// How audio is encrypted and authenticated (RFC 3711); the number is the bits of the authentication tag.
enum class SrtpSuite : std::uint8_t { kTag80, kTag32 };

/// Master key (16 bytes) and master salt (14 bytes), one after the other. Secret: never in a log.
using SrtpKey = std::array<std::uint8_t, 30>;

/// One "a=crypto" line of a session description (RFC 4568).
struct CryptoAttribute {
  std::uint32_t tag = 0;
  SrtpSuite suite = SrtpSuite::kTag80;
  SrtpKey key{};  ///< for what its author sends
};

/// Reads "1 AES_CM_128_HMAC_SHA1_80 inline:…" (the part after "a=crypto:"). Nothing when it is malformed or
/// not supported: another suite, several keys, a key identifier in each packet (MKI), or any session
/// parameter but the window hint, since the others change the packets.
std::optional<CryptoAttribute> ReadCryptoAttribute(std::string_view text);

/// The same text for one of our attributes.
std::string WriteCryptoAttribute(const CryptoAttribute& attribute);

/// A new random key from the system. Throws std::runtime_error when that fails.
SrtpKey NewSrtpKey();

/// Both directions' keys of one call, as agreed.
struct SrtpKeys {
  SrtpSuite suite = SrtpSuite::kTag80;
  SrtpKey send{};
  SrtpKey receive{};
};

/// Encrypts the RTP packets that we send with one key (RFC 3711). It counts the wraps of their sequence
/// numbers, so one object must serve for as long as the key is used: a second one would repeat the key
/// stream.
class SrtpSender {
 public:
  /// Throws std::bad_alloc when the key cannot be used.
  SrtpSender(SrtpSuite suite, const SrtpKey& key);

  bool Uses(SrtpSuite suite, const SrtpKey& key) const { return suite == suite_ && key == key_; }

  /// The encrypted form of a plain RTP packet, valid until the next call; empty when encryption fails, and
  /// then the packet must not be sent.
  std::span<const std::uint8_t> Protect(std::span<const std::uint8_t> packet);

 private:
  const SrtpSuite suite_;
  const SrtpKey key_;
  LibrePtr<srtp> context_;
  LibrePtr<mbuf> buffer_;
};

/// Authenticates and decrypts the peer's RTP or RTCP packets. A forged or repeated packet changes nothing
/// here: whoever lacks the key can neither use up the room for senders nor disturb the counters of the real
/// one.
class SrtpReceiver {
 public:
  enum class Kind : std::uint8_t { kRtp, kRtcp };

  SrtpReceiver(Kind kind, SrtpSuite suite, const SrtpKey& key) : kind_(kind), suite_(suite), key_(key) {}

  bool Uses(SrtpSuite suite, const SrtpKey& key) const { return suite == suite_ && key == key_; }

  /// The plain packet, valid until the next call; nothing when it is forged or repeated.
  std::optional<std::span<const std::uint8_t>> Unprotect(std::span<const std::uint8_t> packet);

 private:
  /// A synchronisation source that has proved that it has the key.
  struct Sender {
    std::uint32_t ssrc;
    LibrePtr<srtp> context;
  };

  /// A peer changes its source when it transfers or resumes a call, not more often.
  static constexpr std::size_t kMostSenders = 16;

  bool Decrypt(srtp* context, std::span<const std::uint8_t> packet);

  const Kind kind_;
  const SrtpSuite suite_;
  const SrtpKey key_;
  std::list<Sender> senders_;  ///< the latest first
  LibrePtr<mbuf> buffer_;
};

}  // namespace orven
