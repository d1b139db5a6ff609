// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any session descriptions that a peer sends as offers and answers in one call.
#include <optional>
#include <string>

#include "adapters/line/sip/media_agreement.h"
#include "adapters/line/sip/srtp.h"
#include "fuzz/fuzz.h"

namespace orven::fuzz {
namespace {

sa Local() {
  sa local{};
  Require(sa_set_str(&local, "127.0.0.1", 4000) == 0);
  return local;
}

void ReadCrypto(const std::string& text) {
  const auto attribute = ReadCryptoAttribute(text);
  if (!attribute) return;
  const auto again = ReadCryptoAttribute(WriteCryptoAttribute(*attribute));
  Require(again && again->tag == attribute->tag && again->suite == attribute->suite &&
          again->key == attribute->key);
}

void RequireUsable(const MediaAgreement& agreement, SrtpUse use) {
  const auto& [peer, codecs, codec, type, event, send, receive, keys] = agreement;
  Require(sa_port(&peer) != 0 && sa_af(&peer) == AF_INET &&
          (sa_isset(&peer, SA_ADDR) || (!send && !receive)));
  Require(type < codecs.size() && codecs[type] == codec);
  Require(!event || (*event < codecs.size() && !codecs[*event]));
  Require(keys ? use != SrtpUse::kNever : use != SrtpUse::kRequired);
}

std::string Written(MediaNegotiation& negotiation, bool as_offer) {
  const auto text = negotiation.Write(as_offer);
  Require(text != nullptr);
  return {reinterpret_cast<const char*>(text->buf), text->end};
}

}  // namespace

/// The letter before a description means: "o" an offer, "a" an answer, "w" an answer to our offer, which is
/// written first. An encrypted call must stay encrypted, and keep its key as long as the suite is the same.
void Sdp(Bytes input) {
  const auto use = static_cast<SrtpUse>(Choices(input).Below(3));
  MediaNegotiation negotiation(Local(), use);
  std::optional<MediaAgreement> agreed;
  std::string rest = TextOf(input.empty() ? input : input.subspan(1));
  ReadCrypto(rest);
  while (!rest.empty()) {
    const std::string piece = rest.substr(0, rest.find('\0'));
    rest.erase(0, piece.size() + 1);
    if (piece.empty()) continue;
    if (const auto crypto = piece.find("a=crypto:"); crypto != piece.npos)
      ReadCrypto(piece.substr(crypto + 9, piece.find('\r', crypto) - crypto - 9));
    const bool encrypted = agreed && agreed->keys;
    if (piece[0] == 'w') {  // a peer must be able to accept our offer
      const SrtpUse wanted = encrypted ? SrtpUse::kRequired : use;
      const auto agreement =
          MediaNegotiation(Local(), wanted).Read(Written(negotiation, true), true, Local());
      Require(agreement.has_value());
      RequireUsable(*agreement, wanted);
    }
    const auto agreement = negotiation.Read(piece.substr(1), piece[0] == 'o', Local());
    if (!agreement && !agreed) return;
    if (!agreement) continue;
    RequireUsable(*agreement, encrypted ? SrtpUse::kRequired : use);
    if (encrypted && agreement->keys->suite == agreed->keys->suite)
      Require(agreement->keys->send == agreed->keys->send);
    agreed = agreement;
    if (piece[0] == 'o') (void)Written(negotiation, false);
  }
}

}  // namespace orven::fuzz
