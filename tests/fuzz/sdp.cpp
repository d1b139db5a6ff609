// SPDX-License-Identifier: GPL-3.0-or-later
// Any session descriptions that a peer offers or answers in one call.
#include <optional>
#include <string_view>

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

void ReadCrypto(std::string_view text) {
  const auto attribute = ReadCryptoAttribute(text);
  if (!attribute) return;
  const auto again = ReadCryptoAttribute(WriteCryptoAttribute(*attribute));
  Require(again && again->tag == attribute->tag && again->suite == attribute->suite &&
          again->key == attribute->key);
}

/// One call: once encrypted it stays encrypted, and keeps its key while the suite stays.
class Negotiated {
 public:
  explicit Negotiated(SrtpUse use) : use_(use), negotiation_(Local(), use) {}

  /// False when the description ends the call.
  bool Take(std::string_view description, bool is_offer) {
    const auto agreement = negotiation_.Read(description, is_offer, Local());
    if (!agreement) return agreed_;
    agreed_ = true;
    RequireUsable(*agreement, use_);
    const auto& keys = agreement->keys;
    Require(!keys_ || (keys && (keys->suite != keys_->suite || keys->send == keys_->send)));
    keys_ = keys;
    if (is_offer) Written(false);
    return true;
  }

  /// A peer can agree to our offer.
  void Offer() {
    const auto offer = Written(true);
    MediaNegotiation peer(Local(), keys_ ? SrtpUse::kRequired : use_);
    const auto agreement = peer.Read({reinterpret_cast<const char*>(offer->buf), offer->end}, true, Local());
    Require(agreement && (agreement->keys || !keys_));
    RequireUsable(*agreement, use_);
  }

 private:
  static void RequireUsable(const MediaAgreement& agreement, SrtpUse use) {
    const auto& [peer, codecs, codec, type, event, send, receive, keys] = agreement;
    Require(sa_port(&peer) != 0 && sa_af(&peer) == AF_INET &&
            (sa_isset(&peer, SA_ADDR) || (!send && !receive)));
    Require(type < codecs.size() && codecs[type] == codec);
    Require(!event || (*event < codecs.size() && !codecs[*event]));
    Require(keys ? use != SrtpUse::kNever : use != SrtpUse::kRequired);
  }

  LibrePtr<mbuf> Written(bool as_offer) {
    auto text = negotiation_.Write(as_offer);
    Require(text != nullptr && text->end < 4096);
    const std::string_view view(reinterpret_cast<const char*>(text->buf), text->end);
    Require(view.starts_with("v=0\r\n") && view.find("m=audio 4000 RTP/") != view.npos);
    return text;
  }

  const SrtpUse use_;
  MediaNegotiation negotiation_;
  bool agreed_ = false;
  std::optional<SrtpKeys> keys_;
};

}  // namespace

/// Before each description: "o" for an offer, "a" for an answer, "w" for our offer that it answers.
void Sdp(Bytes input) {
  Choices choices(input);
  Negotiated call(static_cast<SrtpUse>(choices.Byte() % 3));
  std::string_view rest(reinterpret_cast<const char*>(input.data()), input.size());
  rest.remove_prefix(std::min<std::size_t>(1, rest.size()));
  ReadCrypto(rest);
  while (!rest.empty()) {
    const std::string_view piece = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
    if (piece.empty()) continue;
    if (const auto crypto = piece.find("a=crypto:"); crypto != piece.npos)
      ReadCrypto(piece.substr(crypto + 9, piece.find('\r', crypto) - crypto - 9));
    if (piece[0] == 'w') call.Offer();
    if (!call.Take(piece.substr(1), piece[0] == 'o')) return;
  }
}

}  // namespace orven::fuzz
