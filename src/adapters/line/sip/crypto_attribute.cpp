// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/crypto_attribute.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "adapters/line/sip/libre.h"

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
  std::uint32_t tag = 0;
  const char* const end = word.data() + word.size();
  const auto [last, error] = std::from_chars(word.data(), end, tag);
  if (error != std::errc() || last != end || word.size() > 9) return std::nullopt;
  return tag;
}

std::optional<SrtpSuite> SuiteOf(std::string_view word) {
  if (word == kTag80Name) return SrtpSuite::kTag80;
  if (word == kTag32Name) return SrtpSuite::kTag32;
  return std::nullopt;
}

/// The library takes any other letter for a zero.
bool IsBase64(std::string_view letters) {
  return std::all_of(letters.begin(), letters.end(), [](char letter) {
    return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') ||
           (letter >= '0' && letter <= '9') || letter == '+' || letter == '/';
  });
}

/// "inline:" key, perhaps "|" lifetime. No call of ours lives as long as a key may (2^31 packets at
/// least by custom); a key identifier ("|1:4") would have to be in each packet.
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

/// A parameter that begins with "-" may be passed over (RFC 4568, section 6.3.8).
bool IsHarmless(std::string_view parameter) {
  return parameter.starts_with('-') || parameter.starts_with("WSH=");
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

}  // namespace orven
