// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/digest_login.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace orven {
namespace {

/// How many times in a row a server may call an answer too old.
constexpr int kMostAnswers = 3;

/// The server's and those of three proxies: one that names a new realm each time must not be answered for
/// ever.
constexpr std::size_t kMostRealms = 4;

struct Algorithm {
  const EVP_MD* digest;
  bool session;  ///< the password's digest holds for one nonce only
};

/// Nothing for an unknown name. An empty one is MD5.
std::optional<Algorithm> AlgorithmOf(std::string_view name) {
  struct Known {
    const char* name;
    const EVP_MD* (*digest)();
  };
  static constexpr std::array kKnown{Known{"MD5", EVP_md5}, Known{"SHA-256", EVP_sha256},
                                     Known{"SHA-512-256", EVP_sha512_256}};
  if (name.empty()) return Algorithm{EVP_md5(), false};
  const pl text{name.data(), name.size()};
  for (const Known& known : kKnown) {
    if (pl_strcasecmp(&text, known.name) == 0) return Algorithm{known.digest(), false};
    if (pl_strcasecmp(&text, (std::string(known.name) + "-sess").c_str()) == 0) {
      return Algorithm{known.digest(), true};
    }
  }
  return std::nullopt;
}

/// In hexadecimal digits; empty, which no server accepts, when the system forbids the algorithm.
std::string Digest(const EVP_MD* digest, const std::string& text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
  unsigned size = 0;
  (void)EVP_Digest(text.data(), text.size(), bytes.data(), &size, digest, nullptr);
  std::array<char, 2 * EVP_MAX_MD_SIZE + 1> hex{};
  (void)re_snprintf(hex.data(), hex.size(), "%w", bytes.data(), static_cast<std::size_t>(size));
  return hex.data();
}

/// A list like "auth,auth-int".
bool Offers(std::string_view list, std::string_view wanted) {
  while (!list.empty()) {
    const auto end = std::min(list.find(','), list.size());
    const auto first = std::min(list.find_first_not_of(' '), end);
    const auto one = list.substr(first, end - first);
    const pl text{one.data(), std::min(one.find(' '), one.size())};
    if (pl_strcasecmp(&text, std::string(wanted).c_str()) == 0) return true;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

}  // namespace

std::optional<DigestLogin::Challenge> DigestLogin::Understand(const sip_hdr& header) {
  httpauth_digest_chall read{};
  if (httpauth_digest_challenge_decode(&read, &header.val) != 0 || !AlgorithmOf(View(read.algorithm)) ||
      (pl_isset(&read.qop) && !Offers(View(read.qop), "auth"))) {
    return std::nullopt;
  }
  const auto text = [](const pl& value) { return std::string(View(value)); };
  return Challenge{header.id,
                   text(read.realm),
                   text(read.nonce),
                   text(read.opaque),
                   text(read.algorithm),
                   pl_isset(&read.qop),
                   pl_strcasecmp(&read.stale, "true") == 0,
                   0,
                   0};
}

DigestLogin::Challenge* DigestLogin::Find(std::vector<Challenge>& among, const Challenge& like) {
  const auto found = std::ranges::find_if(
      among, [&like](const Challenge& one) { return one.header == like.header && one.realm == like.realm; });
  return found != among.end() ? &*found : nullptr;
}

DigestLogin::Verdict DigestLogin::Take(const sip_msg& response) {
  std::vector<Challenge> asked;
  for (const auto id : {SIP_HDR_WWW_AUTHENTICATE, SIP_HDR_PROXY_AUTHENTICATE}) {
    (void)sip_msg_hdr_apply(
        &response, true, id,
        [](const sip_hdr* header, const sip_msg*, void* list) {
          auto& challenges = *static_cast<std::vector<Challenge>*>(list);
          const auto challenge = Understand(*header);
          if (challenge && Find(challenges, *challenge) == nullptr) challenges.push_back(*challenge);
          return false;
        },
        &asked);
  }
  Verdict verdict = Verdict::kNoWayKnown;
  for (const Challenge& one : asked) {
    verdict = Take(one);
    if (verdict == Verdict::kRefused) break;
  }
  return verdict;
}

DigestLogin::Verdict DigestLogin::Take(const Challenge& asked) {
  Challenge* const known = Find(challenges_, asked);
  if (known == nullptr) {
    if (challenges_.size() == kMostRealms) return Verdict::kRefused;
    challenges_.push_back(asked);
    return Verdict::kAnswer;
  }
  // An answer with a nonce that was used before may have been too old even if the server does not say so; one
  // with a new nonce was wrong.
  const bool was_new = known->count <= 1 || asked.nonce == known->nonce;
  const int unproven = known->unproven;
  if ((was_new && !asked.stale) || unproven >= kMostAnswers) return Verdict::kRefused;
  *known = asked;
  known->unproven = unproven;
  return Verdict::kAnswer;
}

void DigestLogin::Accepted() {
  for (Challenge& one : challenges_) one.unproven = 0;
}

std::string DigestLogin::Headers(std::string_view method, std::string_view uri) {
  std::string lines;
  for (Challenge& one : challenges_) lines += Header(one, method, uri);
  return lines;
}

std::string DigestLogin::Header(Challenge& challenge, std::string_view method, std::string_view uri) const {
  ++challenge.count;
  ++challenge.unproven;
  const Algorithm algorithm = *AlgorithmOf(challenge.algorithm);
  const auto digest = [&algorithm](const std::string& text) { return Digest(algorithm.digest, text); };
  std::array<char, 32> count{};
  (void)re_snprintf(count.data(), count.size(), "%08x", challenge.count);
  const std::string own = RandomName();
  std::string secret = digest(user_ + ':' + challenge.realm + ':' + password_);
  if (algorithm.session) secret = digest(secret + ':' + challenge.nonce + ':' + own);
  const std::string once =
      challenge.qop ? challenge.nonce + ':' + count.data() + ':' + own + ":auth:" : challenge.nonce + ':';
  const std::string answer =
      digest(secret + ':' + once + digest(std::string(method) + ':' + std::string(uri)));
  std::string line = challenge.header == SIP_HDR_PROXY_AUTHENTICATE ? "Proxy-Authorization" : "Authorization";
  line += ": Digest username=\"" + user_ + "\", realm=\"" + challenge.realm + "\", nonce=\"" +
          challenge.nonce + "\", uri=\"" + std::string(uri) + "\", response=\"" + answer + '"';
  if (!challenge.algorithm.empty()) line += ", algorithm=" + challenge.algorithm;
  if (!challenge.opaque.empty()) line += ", opaque=\"" + challenge.opaque + '"';
  if (challenge.qop || algorithm.session) line += ", cnonce=\"" + own + '"';
  if (challenge.qop) line += std::string(", qop=auth, nc=") + count.data();
  return line + "\r\n";
}

}  // namespace orven
