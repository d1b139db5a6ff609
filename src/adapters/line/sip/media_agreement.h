// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/srtp.h"

namespace orven {

/// What both sides agreed about the call's sound.
struct MediaAgreement {
  sa peer{};                                       ///< where the peer wants our packets, and sends from
  std::array<std::optional<Codec>, 128> codecs{};  ///< by payload type
  Codec send_codec = Codec::kMuLaw;
  std::uint8_t send_payload_type = 0;
  std::optional<std::uint8_t> event_payload_type;  ///< telephone-event (RFC 4733)
  bool send = true;                                ///< false: on hold, or the peer takes no sound
  bool receive = true;                             ///< false: the peer sends none
  std::optional<SrtpKeys> keys;                    ///< encrypted with these; absent: plain
};

/// The call's half of the offer/answer exchange (RFC 3264), again for each re-INVITE. SIP thread.
///
/// The keys of encrypted sound travel in it (RFC 4568): demanded by RTP/SAVP, or offered beside plain
/// sound by RTP/AVP with "a=crypto". A call that is encrypted once never becomes plain again. Our key
/// stays the same as long as the suite does.
class MediaNegotiation {
 public:
  /// `local` is the address and port to be told. What we offer by ourselves is encrypted when `srtp`
  /// demands it. Throws std::bad_alloc, and std::runtime_error when no key can be made.
  MediaNegotiation(const sa& local, SrtpUse srtp);

  /// Reads the offer or the answer `text`, which came from `sender`: there we look for a peer that tells
  /// no address that we can reach (a name, or one of another family). Nothing when it is malformed, has
  /// no sound in a codec of ours, or is not as encrypted as it has to be; then what was agreed before
  /// still holds.
  std::optional<MediaAgreement> Read(std::string_view text, bool is_offer, const sa& sender);

  /// Our offer, or our answer to the offer read last. nullptr when memory ran out.
  LibrePtr<mbuf> Write(bool as_offer);

 private:
  int Decode(const std::string& text, bool is_offer);
  std::optional<MediaAgreement> Understand(const std::string& text, bool is_offer, const sa& sender);
  std::optional<MediaAgreement> Agreed() const;
  bool AgreeOnKeys(bool is_offer, MediaAgreement& agreement);
  std::optional<CryptoAttribute> PeersChoice(bool is_offer) const;
  void TellKeys(std::vector<CryptoAttribute> own);

  LibrePtr<sdp_session> session_;
  sdp_media* audio_ = nullptr;  ///< belongs to session_
  SrtpUse srtp_;
  std::vector<CryptoAttribute> own_;  ///< what our next description offers or answers
  std::string agreed_;                ///< the description that was agreed to last
};

}  // namespace orven
