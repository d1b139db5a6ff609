// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/media_agreement.h"

#include <new>
#include <string_view>

namespace orven {
namespace {

/// Static payload types (RFC 3551, section 6) and the customary one for key presses.
constexpr std::string_view kMuLawId = "0";
constexpr std::string_view kALawId = "8";
constexpr std::string_view kEventId = "101";
constexpr int kMuLawType = 0;
constexpr int kALawType = 8;

void Check(int error) {
  if (error != 0) throw std::bad_alloc();
}

void AddFormat(sdp_media* media, std::string_view id, const char* name, const char* parameters) {
  Check(sdp_format_add(nullptr, media, false, id.data(), name, 8000, 1, nullptr, nullptr, nullptr, false,
                       parameters != nullptr ? "%s" : nullptr, parameters));
}

/// The library leaves the name out of static types that the peer offered without a=rtpmap.
std::optional<Codec> CodecOf(const sdp_format& format) {
  if (format.pt == kMuLawType) return Codec::kMuLaw;
  if (format.pt == kALawType) return Codec::kALaw;
  if (format.name == nullptr) return std::nullopt;
  if (str_casecmp(format.name, "PCMU") == 0) return Codec::kMuLaw;
  if (str_casecmp(format.name, "PCMA") == 0) return Codec::kALaw;
  return std::nullopt;
}

}  // namespace

MediaNegotiation::MediaNegotiation(const sa& local) : family_(sa_af(&local)) {
  sdp_session* session = nullptr;
  Check(sdp_session_alloc(&session, &local));
  session_.reset(session);
  Check(sdp_media_add(&audio_, session, "audio", sa_port(&local), "RTP/AVP"));
  Check(sdp_media_set_alt_protos(audio_, 1, "RTP/AVPF"));
  AddFormat(audio_, kMuLawId, "PCMU", nullptr);
  AddFormat(audio_, kALawId, "PCMA", nullptr);
  AddFormat(audio_, kEventId, "telephone-event", "0-15");
  Check(sdp_media_set_lattr(audio_, true, "ptime", "%u", 20U));
}

std::optional<MediaAgreement> MediaNegotiation::Read(mbuf* body, bool is_offer) {
  const std::size_t position = body->pos;
  const int error = sdp_decode(session_.get(), body, is_offer);
  body->pos = position;
  if (error != 0) return std::nullopt;
  auto agreement = Agreed();
  if (!agreement || sa_isset(&agreement->peer, SA_ADDR)) return agreement;
  // No address: either one that is no number, or 0.0.0.0, the old way to put a call on hold (RFC 2543,
  // section B.5).
  const std::string_view text(reinterpret_cast<const char*>(mbuf_buf(body)), mbuf_get_left(body));
  if (text.find("IN IP4 0.0.0.0") == std::string_view::npos) return std::nullopt;
  agreement->send = agreement->receive = false;
  return agreement;
}

std::optional<MediaAgreement> MediaNegotiation::Agreed() const {
  MediaAgreement agreement;
  agreement.peer = *sdp_media_raddr(audio_);
  if (sa_port(&agreement.peer) == 0 || sa_af(&agreement.peer) != family_) return std::nullopt;
  bool any_codec = false;
  for (const le* element = list_head(sdp_media_format_lst(audio_, true)); element != nullptr;
       element = element->next) {
    const auto& format = *static_cast<const sdp_format*>(element->data);
    if (!format.sup || format.pt < 0 || format.pt > 127) continue;
    const auto type = static_cast<std::uint8_t>(format.pt);
    if (const auto codec = CodecOf(format)) {
      if (!any_codec) {
        agreement.send_codec = *codec;
        agreement.send_payload_type = type;
      }
      any_codec = true;
      agreement.codecs[type] = codec;
    } else {
      agreement.event_payload_type = type;
    }
  }
  if (!any_codec) return std::nullopt;
  const auto direction = static_cast<unsigned>(sdp_media_dir(audio_));
  agreement.send = (direction & SDP_SENDONLY) != 0;
  agreement.receive = (direction & SDP_RECVONLY) != 0;
  return agreement;
}

LibrePtr<mbuf> MediaNegotiation::Write(bool as_offer) {
  mbuf* text = nullptr;
  (void)sdp_encode(&text, session_.get(), as_offer);
  return LibrePtr<mbuf>(text);
}

}  // namespace orven
