// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/srtp.h"

#include <unistd.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/rtp.h"
#include "base/conversions.h"

namespace orven {
namespace {

constexpr std::string_view kTag80Name = "AES_CM_128_HMAC_SHA1_80";
constexpr std::string_view kTag32Name = "AES_CM_128_HMAC_SHA1_32";
constexpr std::string_view kInline = "inline:";

/// 30 bytes, four letters for each three.
constexpr std::size_t kKeyLetters = 40;

/// Takes the text up to the next blank; empty when nothing is left.
std::string_view NextWord(std::string_view& text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  const std::size_t end = std::min(text.find_first_of(" \t", begin), text.size());
  const std::string_view word = text.substr(begin, end - begin);
  text.remove_prefix(end);
  return word;
}

std::optional<std::uint32_t> TagOf(std::string_view word) {
  return word.size() > 9 ? std::nullopt : WholeNumber<std::uint32_t>(word);
}

std::optional<SrtpSuite> SuiteOf(std::string_view word) {
  if (word == kTag80Name) return SrtpSuite::kTag80;
  if (word == kTag32Name) return SrtpSuite::kTag32;
  return std::nullopt;
}

/// The library reads any other letter as a zero.
bool IsBase64(std::string_view letters) {
  return std::all_of(letters.begin(), letters.end(), [](char letter) {
    return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') ||
           (letter >= '0' && letter <= '9') || letter == '+' || letter == '/';
  });
}

/// "inline:" key, perhaps "|" lifetime. The lifetime is ignored: a call is far shorter than 2^31 packets. A
/// key identifier ("|1:4") would have to be in each packet.
std::optional<SrtpKey> KeyOf(std::string_view word) {
  if (!word.starts_with(kInline) || word.find(';') != word.npos) return std::nullopt;
  word.remove_prefix(kInline.size());
  const std::string_view letters = word.substr(0, word.find('|'));
  if (letters.size() != kKeyLetters || !IsBase64(letters) || word.find(':') != word.npos) return std::nullopt;
  SrtpKey key{};
  std::size_t size = key.size();
  if (base64_decode(letters.data(), letters.size(), key.data(), &size) != 0 || size != key.size()) {
    return std::nullopt;
  }
  return key;
}

/// A parameter that begins with "-" may be ignored (RFC 4568, section 6.3.8).
bool IsHarmless(std::string_view parameter) {
  return parameter.starts_with('-') || parameter.starts_with("WSH=");
}

/// Position of the synchronisation source: RFC 3550, sections 5.1 and 6.4.
constexpr std::size_t kRtpSsrcAt = 8;
constexpr std::size_t kRtcpSsrcAt = 4;

LibrePtr<srtp> NewContext(SrtpSuite suite, const SrtpKey& key) {
  const auto name = suite == SrtpSuite::kTag80 ? SRTP_AES_CM_128_HMAC_SHA1_80 : SRTP_AES_CM_128_HMAC_SHA1_32;
  return Made(srtp_alloc, name, key.data(), key.size(), 0);
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

std::optional<CryptoAttribute> ReadCryptoAttribute(std::string_view text) {
  const auto tag = TagOf(NextWord(text));
  const auto suite = SuiteOf(NextWord(text));
  const auto key = KeyOf(NextWord(text));
  if (!tag || !suite || !key) return std::nullopt;
  for (std::string_view word = NextWord(text); !word.empty(); word = NextWord(text)) {
    if (!IsHarmless(word)) return std::nullopt;
  }
  return CryptoAttribute{*tag, *suite, *key};
}

std::string WriteCryptoAttribute(const CryptoAttribute& attribute) {
  std::array<char, kKeyLetters + 1> letters{};
  std::size_t size = letters.size();
  if (base64_encode(attribute.key.data(), attribute.key.size(), letters.data(), &size) != 0) size = 0;
  const std::string_view suite = attribute.suite == SrtpSuite::kTag80 ? kTag80Name : kTag32Name;
  return std::to_string(attribute.tag) + " " + std::string(suite) + " " + std::string(kInline) +
         std::string(letters.data(), size);
}

SrtpKey NewSrtpKey() {
  SrtpKey key{};
  if (::getentropy(key.data(), key.size()) != 0) throw std::runtime_error("no random numbers for a key");
  return key;
}

SrtpSender::SrtpSender(SrtpSuite suite, const SrtpKey& key)
    : suite_(suite), key_(key), context_(NewContext(suite, key)) {}

std::span<const std::uint8_t> SrtpSender::Protect(std::span<const std::uint8_t> packet) {
  Fill(buffer_, packet);
  if (srtp_encrypt(context_.get(), buffer_.get()) != 0) return {};
  return ContentOf(*buffer_);
}

std::optional<std::span<const std::uint8_t>> SrtpReceiver::Unprotect(std::span<const std::uint8_t> packet) {
  const bool is_sound = kind_ == Kind::kRtp;
  if (is_sound ? !LooksLikeRtp(packet) : !LooksLikeRtcp(packet)) return std::nullopt;
  const std::uint32_t ssrc = Read32(packet.subspan(is_sound ? kRtpSsrcAt : kRtcpSsrcAt));
  const auto known = std::find_if(senders_.begin(), senders_.end(),
                                  [ssrc](const Sender& sender) { return sender.ssrc == ssrc; });
  if (known != senders_.end()) {
    if (!Decrypt(known->context.get(), packet)) return std::nullopt;
    senders_.splice(senders_.begin(), senders_, known);
    return ContentOf(*buffer_);
  }
  // The library's context stores each source, authentic or not, and has room for only eight.
  LibrePtr<srtp> context = NewContext(suite_, key_);
  if (senders_.size() >= kMostSenders || !Decrypt(context.get(), packet)) return std::nullopt;
  senders_.push_front({ssrc, std::move(context)});
  return ContentOf(*buffer_);
}

bool SrtpReceiver::Decrypt(srtp* context, std::span<const std::uint8_t> packet) {
  Fill(buffer_, packet);
  const auto decrypt = kind_ == Kind::kRtp ? srtp_decrypt : srtcp_decrypt;
  return decrypt(context, buffer_.get()) == 0;
}

}  // namespace orven
