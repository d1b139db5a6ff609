// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "adapters/line/sip/g711.h"
#include "adapters/line/sip/libre.h"

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
};

/// The call's half of the offer/answer exchange (RFC 3264), again for each re-INVITE. SIP thread.
class MediaNegotiation {
 public:
  /// `local` is the address and port to be told.
  explicit MediaNegotiation(const sa& local);

  /// Reads the offer or the answer at the position of `body`, which it leaves there. Nothing when it
  /// is malformed, has no sound in a codec of ours, or an address of another family.
  std::optional<MediaAgreement> Read(mbuf* body, bool is_offer);

  /// Our offer, or our answer to the offer read last. nullptr when memory ran out.
  LibrePtr<mbuf> Write(bool as_offer);

 private:
  std::optional<MediaAgreement> Agreed() const;

  LibrePtr<sdp_session> session_;
  sdp_media* audio_ = nullptr;  ///< belongs to session_
  int family_;
};

}  // namespace orven
