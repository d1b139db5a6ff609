// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever session descriptions a peer offers or answers, one after the other in one call.
// Links: orven_line_sip
#include <optional>
#include <string>
#include <string_view>

#include "adapters/line/sip/media_agreement.h"
#include "adapters/line/sip/srtp.h"
#include "fuzz/input.h"

namespace {

using namespace orven;
using namespace orven::fuzz;

sa Local() {
  sa local{};
  Require(sa_set_str(&local, "127.0.0.1", 4000) == 0);
  return local;
}

/// What the call's sound relies on.
void RequireUsable(const MediaAgreement& agreement, SrtpUse use) {
  Require(sa_port(&agreement.peer) != 0 && sa_af(&agreement.peer) == AF_INET);
  Require(agreement.send_payload_type < agreement.codecs.size());
  Require(agreement.codecs[agreement.send_payload_type] == agreement.send_codec);
  if (agreement.event_payload_type) {
    Require(*agreement.event_payload_type < agreement.codecs.size() &&
            !agreement.codecs[*agreement.event_payload_type]);
  }
  Require(agreement.keys || use != SrtpUse::kRequired);
  Require(!agreement.keys || use != SrtpUse::kNever);
  Require(sa_isset(&agreement.peer, SA_ADDR) || (!agreement.send && !agreement.receive));
}

void ReadCrypto(std::string_view text) {
  const auto attribute = ReadCryptoAttribute(text);
  if (!attribute) return;
  const auto again = ReadCryptoAttribute(WriteCryptoAttribute(*attribute));
  Require(again && again->tag == attribute->tag && again->suite == attribute->suite &&
          again->key == attribute->key);
}

/// One call: it never becomes plain again, and keeps its key as long as the way of encrypting.
class Negotiated {
 public:
  explicit Negotiated(SrtpUse use) : use_(use), negotiation_(Local(), use) {}

  /// False when the call ends with it.
  bool Take(std::string_view description, bool is_offer) {
    const auto agreement = negotiation_.Read(description, is_offer, Local());
    if (!agreement) return agreed_;
    agreed_ = true;
    RequireUsable(*agreement, use_);
    const auto& keys = agreement->keys;
    Require(keys || !keys_);
    if (keys && keys_ && keys->suite == keys_->suite) Require(keys->send == keys_->send);
    if (keys) keys_ = keys;
    if (is_offer) RequireText(false);
    return true;
  }

  /// Whoever gets our offer can agree with it.
  void Offer() {
    const auto offer = RequireText(true);
    MediaNegotiation peer(Local(), keys_ ? SrtpUse::kRequired : use_);
    const std::string_view text(reinterpret_cast<const char*>(offer->buf), offer->end);
    const auto agreement = peer.Read(text, true, Local());
    Require(agreement && (agreement->keys || !keys_));
    RequireUsable(*agreement, use_);
  }

 private:
  LibrePtr<mbuf> RequireText(bool as_offer) {
    auto text = negotiation_.Write(as_offer);
    Require(text != nullptr && text->end < 4096);
    mbuf_set_pos(text.get(), 0);
    const std::string_view view(reinterpret_cast<const char*>(text->buf), text->end);
    Require(view.starts_with("v=0\r\n") && view.find("m=audio 4000 RTP/") != view.npos);
    return text;
  }

  const SrtpUse use_;
  MediaNegotiation negotiation_;
  bool agreed_ = false;
  std::optional<SoundKeys> keys_;
};

}  // namespace

/// The first byte chooses what is encrypted; then come descriptions with zero bytes between, each behind "o"
/// for an offer, "a" for an answer or "w" for an offer of ours that is answered by it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Negotiated call(static_cast<SrtpUse>(data[0] % 3));
  std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  ReadCrypto(rest);
  while (!rest.empty()) {
    const std::string_view piece = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
    if (piece.empty()) continue;
    if (const auto crypto = piece.find("a=crypto:"); crypto != piece.npos) {
      const std::string_view value = piece.substr(crypto + 9);
      ReadCrypto(value.substr(0, value.find('\r')));
    }
    if (piece[0] == 'w') call.Offer();
    if (!call.Take(piece.substr(1), piece[0] == 'o')) return 0;
  }
  return 0;
}
