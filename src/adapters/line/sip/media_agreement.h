// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/sip/codec.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/srtp.h"

namespace orven {

/// What both sides agreed about the call's audio.
struct MediaAgreement {
  sa peer{};                                       ///< where the peer wants our packets, and sends from
  std::array<std::optional<Codec>, 128> codecs{};  ///< by payload type
  Codec send_codec = Codec::kMuLaw;
  std::uint8_t send_payload_type = 0;
  std::optional<std::uint8_t> event_payload_type;  ///< telephone-event (RFC 4733)
  bool send = true;                                ///< false: on hold, or the peer only sends
  bool receive = true;                             ///< false: the peer sends none
  std::optional<SrtpKeys> keys;                    ///< encrypted with these; absent: plain
};

/// The call's half of the offer/answer exchange (RFC 3264), again for each re-INVITE. SIP thread.
///
/// Our answer names only what we want to get: the best codec that is offered, and beside one of G.711 the
/// other. Best is what comes first in the line's settings; without those G.711, in the order of the offer so
/// that nobody has to convert it, then G.722, then Opus.
///
/// It carries the SRTP keys (RFC 4568): RTP/SAVP demands encryption, RTP/AVP with "a=crypto" offers it. An
/// encrypted call never becomes plain again. Our key stays as long as the suite does.
class MediaNegotiation {
 public:
  /// `local` is our address and port in the descriptions. What we offer ourselves is encrypted when `srtp`
  /// demands it. `codecs` are those that we use, the best first; empty: all. Throws std::bad_alloc, and
  /// std::runtime_error when no key can be made.
  MediaNegotiation(const sa& local, SrtpUse srtp, const std::vector<Codec>& codecs = {});

  /// Reads the offer or the answer `text` from `sender`, whose address counts when the description has none
  /// that we can reach (a name, or one of another family). Nothing when it is malformed, has no codec of
  /// ours, or does not fit our use of SRTP; then the previous agreement still holds.
  std::optional<MediaAgreement> Read(std::string_view text, bool is_offer, const sa& sender);

  /// Our offer, or our answer to the offer read last. nullptr when memory ran out.
  LibrePtr<mbuf> Write(bool as_offer);

 private:
  void AddFormats();
  int Decode(const std::string& text, bool is_offer);
  std::optional<MediaAgreement> Understand(const std::string& text, bool is_offer, const sa& sender);
  int Rank(const sdp_format& format) const;
  void Choose();
  std::optional<MediaAgreement> Agreed() const;
  bool AgreeOnKeys(bool is_offer, MediaAgreement& agreement);
  std::optional<CryptoAttribute> PeersChoice(bool is_offer) const;
  void TellKeys(std::vector<CryptoAttribute> own);

  LibrePtr<sdp_session> session_;
  sdp_media* audio_ = nullptr;  ///< belongs to session_
  const bool customary_;        ///< the line has no ranking of its own
  std::vector<Codec> ranking_;  ///< our codecs, the best first
  SrtpUse srtp_;
  std::vector<CryptoAttribute> own_;  ///< in our next description
  std::string agreed_;                ///< the latest description that was agreed to
};

}  // namespace orven
