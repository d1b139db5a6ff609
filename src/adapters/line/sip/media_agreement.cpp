// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/media_agreement.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>
#include <utility>

#include "adapters/line/sip/session_description.h"

namespace orven {
namespace {

/// A codec in descriptions (RFC 3551, section 6; RFC 7587), in the order of kCodecs.
struct Format {
  int type;  ///< the payload type, which for a dynamic one the peer may change
  std::uint8_t channels = 1;
  const char* parameters = nullptr;
};

/// Opus is named with two channels whatever it carries. We want and send its narrowest band only.
constexpr std::array kFormats{
    Format{0}, Format{8}, Format{9},
    Format{107, 2, "maxplaybackrate=8000;sprop-maxcapturerate=8000;useinbandfec=1"}};
static_assert(kFormats.size() == kCodecs.size());
constexpr int kFirstDynamicType = 96;

/// Key presses (RFC 4733) with the customary payload type, and with the clock of Opus. Many telephones know
/// only the first, whatever the codec.
constexpr const char* kEvents = "telephone-event";
constexpr const char* kKeys = "0-15";
constexpr int kEventType = 101;
constexpr int kOpusEventType = 102;

void Check(int error) {
  if (error != 0) throw std::bad_alloc();
}

void AddFormat(sdp_media* media, int type, const char* name, int clock, std::uint8_t channels,
               const char* parameters) {
  Check(sdp_format_add(nullptr, media, false, std::to_string(type).c_str(), name,
                       static_cast<std::uint32_t>(clock), channels, nullptr, nullptr, nullptr, false,
                       parameters != nullptr ? "%s" : nullptr, parameters));
}

/// The library gives no name to static types that the peer offered without a=rtpmap.
std::optional<Codec> CodecOf(const sdp_format& format) {
  for (const auto& [codec, name] : kCodecs) {
    const int type = kFormats[static_cast<std::size_t>(codec)].type;
    const bool is_static = format.pt == type && type < kFirstDynamicType;
    if (is_static || (format.name != nullptr && str_casecmp(format.name, name) == 0)) return codec;
  }
  return std::nullopt;
}

bool IsG711(Codec codec) {
  return codec == Codec::kMuLaw || codec == Codec::kALaw;
}

/// The formats of our side or of the peer's that both sides support.
std::vector<sdp_format*> CommonFormats(const sdp_media* media, bool own) {
  std::vector<sdp_format*> formats;
  for (const le* one = list_head(sdp_media_format_lst(media, own)); one != nullptr; one = one->next) {
    auto* const format = static_cast<sdp_format*>(one->data);
    if (format->sup && format->pt >= 0 && format->pt <= 127) formats.push_back(format);
  }
  return formats;
}

/// "RTP/SAVP" and "RTP/SAVPF" demand encryption, "RTP/AVP" and "RTP/AVPF" do not.
bool DemandsEncryption(const sdp_media* media) {
  return std::string_view(sdp_media_proto(media)).starts_with("RTP/SAVP");
}

}  // namespace

MediaNegotiation::MediaNegotiation(const sa& local, SrtpUse srtp, const std::vector<Codec>& codecs)
    : session_(Made(sdp_session_alloc, &local)), customary_(codecs.empty()), ranking_(codecs), srtp_(srtp) {
  for (const auto& [codec, name] : kCodecs) {
    if (customary_) ranking_.push_back(codec);
  }
  const bool demand = srtp == SrtpUse::kRequired;
  Check(sdp_media_add(&audio_, session_.get(), "audio", sa_port(&local), demand ? "RTP/SAVP" : "RTP/AVP"));
  // A peer that describes the same audio twice, plain and encrypted, gets the first listed here.
  if (srtp == SrtpUse::kNever) {
    Check(sdp_media_set_alt_protos(audio_, 2, "RTP/AVP", "RTP/AVPF"));
  } else {
    Check(sdp_media_set_alt_protos(audio_, 4, "RTP/AVP", "RTP/AVPF", "RTP/SAVP", "RTP/SAVPF"));
  }
  AddFormats();
  Check(sdp_media_set_lattr(audio_, true, "ptime", "%u", 20U));
  if (demand) TellKeys({{1, SrtpSuite::kTag80, NewSrtpKey()}, {2, SrtpSuite::kTag32, NewSrtpKey()}});
}

void MediaNegotiation::AddFormats() {
  for (const Codec codec : ranking_) {
    const auto& [type, channels, parameters] = kFormats[static_cast<std::size_t>(codec)];
    const char* const name = kCodecs[static_cast<std::size_t>(codec)].second;
    AddFormat(audio_, type, name, ClockRate(codec), channels, parameters);
  }
  AddFormat(audio_, kEventType, kEvents, ClockRate(Codec::kMuLaw), 1, kKeys);
  if (std::ranges::find(ranking_, Codec::kOpus) != ranking_.end())
    AddFormat(audio_, kOpusEventType, kEvents, ClockRate(Codec::kOpus), 1, kKeys);
}

std::optional<MediaAgreement> MediaNegotiation::Read(std::string_view text, bool is_offer, const sa& sender) {
  const std::string mended = MendDescription(text);
  auto agreement = Understand(mended, is_offer, sender);
  if (agreement) {
    agreed_ = mended;
  } else if (!agreed_.empty()) {
    // A refused description changes nothing; without this our next offer would have no audio. An answer is
    // read as an offer here, because only that restores the profile.
    if (Decode(agreed_, true) == 0) Choose();
  }
  return agreement;
}

int MediaNegotiation::Decode(const std::string& text, bool is_offer) {
  const LibrePtr<mbuf> body(mbuf_alloc(text.size()));
  if (body == nullptr) throw std::bad_alloc();
  Check(mbuf_write_mem(body.get(), reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
  mbuf_set_pos(body.get(), 0);
  return sdp_decode(session_.get(), body.get(), is_offer);
}

std::optional<MediaAgreement> MediaNegotiation::Understand(const std::string& text, bool is_offer,
                                                           const sa& sender) {
  if (Decode(text, is_offer) != 0) return std::nullopt;
  if (is_offer) Choose();
  auto agreement = Agreed();
  if (!agreement) return std::nullopt;
  const bool told = sa_isset(&agreement->peer, SA_ADDR);
  // The old way to put a call on hold (RFC 2543, section B.5; RFC 6157, section 4.1).
  const auto none = {"\nc=IN IP4 0.0.0.0\r", "\nc=IN IP6 ::\r"};
  if (!told && std::ranges::any_of(none, [&](const char* one) { return text.find(one) != text.npos; })) {
    agreement->send = agreement->receive = false;
  }
  // A description cannot say of which network a link-local address is.
  const bool local = told && sa_af(&agreement->peer) == AF_INET6 && sa_is_linklocal(&agreement->peer);
  if (local && sa_af(&sender) == AF_INET6) agreement->peer.u.in6.sin6_scope_id = sender.u.in6.sin6_scope_id;
  if (!told || sa_af(&agreement->peer) != sa_af(&sender)) {
    const std::uint16_t port = sa_port(&agreement->peer);
    agreement->peer = sender;
    sa_set_port(&agreement->peer, port);
  }
  if (!AgreeOnKeys(is_offer, *agreement)) return std::nullopt;
  // An answer must not demand what was not offered (RFC 3264, section 6); the library does not check.
  const bool demands = !is_offer && text.find(" RTP/SAVP") != std::string::npos;
  return demands && !agreement->keys ? std::nullopt : agreement;
}

/// Key presses come last. Without a ranking of the line's own, G.711 is all the same.
int MediaNegotiation::Rank(const sdp_format& format) const {
  const auto codec = CodecOf(format);
  if (!codec) return static_cast<int>(kFormats.size());
  if (customary_ && IsG711(*codec)) return 0;
  return static_cast<int>(std::ranges::find(ranking_, *codec) - ranking_.begin());
}

/// Of what is offered, leaves what our answer is to name, the best first.
void MediaNegotiation::Choose() {
  // The library's own sort takes seconds for the thousands of formats that a hostile offer may have.
  for (const bool own : {true, false}) {
    auto* const all = const_cast<list*>(sdp_media_format_lst(audio_, own));
    std::vector<sdp_format*> sorted;
    for (const le* one = list_head(all); one != nullptr; one = one->next)
      sorted.push_back(static_cast<sdp_format*>(one->data));
    std::ranges::stable_sort(sorted, {}, [this](const sdp_format* format) { return Rank(*format); });
    for (sdp_format* format : sorted) {
      list_unlink(&format->le);
      list_append(all, &format->le, format);
    }
  }
  const auto offered = CommonFormats(audio_, false);
  const auto best = offered.empty() ? std::nullopt : CodecOf(*offered.front());
  if (!best) return;
  const auto fits = [best](const sdp_format* format) {
    const auto codec = CodecOf(*format);
    if (codec) return *codec == *best || (IsG711(*codec) && IsG711(*best));
    return format->srate == static_cast<std::uint32_t>(ClockRate(*best));
  };
  const bool odd_clock = std::ranges::none_of(
      offered, [&](const sdp_format* format) { return !CodecOf(*format) && fits(format); });
  for (const bool own : {true, false}) {
    for (sdp_format* format : CommonFormats(audio_, own)) {
      format->sup = fits(format) || (odd_clock && !CodecOf(*format));
    }
  }
}

std::optional<MediaAgreement> MediaNegotiation::Agreed() const {
  MediaAgreement agreement;
  agreement.peer = *sdp_media_raddr(audio_);
  if (sa_port(&agreement.peer) == 0) return std::nullopt;
  bool any_codec = false;
  for (const sdp_format* format : CommonFormats(audio_, false)) {
    const auto type = static_cast<std::uint8_t>(format->pt);
    if (const auto codec = CodecOf(*format)) {
      if (!any_codec) {
        agreement.send_codec = *codec;
        agreement.send_payload_type = type;
      }
      any_codec = true;
      agreement.codecs[type] = codec;
    } else if (!agreement.event_payload_type ||
               format->srate == static_cast<std::uint32_t>(ClockRate(agreement.send_codec))) {
      agreement.event_payload_type = type;
    }
  }
  if (!any_codec) return std::nullopt;
  const auto direction = static_cast<unsigned>(sdp_media_dir(audio_));
  agreement.send = (direction & SDP_SENDONLY) != 0;
  agreement.receive = (direction & SDP_RECVONLY) != 0;
  return agreement;
}

/// False when the peer must encrypt but does not, or demands encryption that this line does not allow.
bool MediaNegotiation::AgreeOnKeys(bool is_offer, MediaAgreement& agreement) {
  const auto theirs = srtp_ == SrtpUse::kNever ? std::nullopt : PeersChoice(is_offer);
  if (!theirs) return srtp_ != SrtpUse::kRequired && !DemandsEncryption(audio_);
  const auto own = std::find_if(own_.begin(), own_.end(), [&theirs](const CryptoAttribute& attribute) {
    return attribute.suite == theirs->suite;
  });
  const SrtpKey key = own != own_.end() ? own->key : NewSrtpKey();
  agreement.keys = SrtpKeys{theirs->suite, key, theirs->key};
  TellKeys({{theirs->tag, theirs->suite, key}});
  srtp_ = SrtpUse::kRequired;
  return true;
}

/// The first attribute of an offer that we support; in an answer, the one of ours that it chose.
std::optional<CryptoAttribute> MediaNegotiation::PeersChoice(bool is_offer) const {
  struct Search {
    const std::vector<CryptoAttribute>& own;
    bool is_offer;
    std::optional<CryptoAttribute> found;
  } search{own_, is_offer, {}};
  (void)sdp_media_rattr_apply(
      audio_, "crypto",
      [](const char*, const char* value, void* arg) {
        auto& wanted = *static_cast<Search*>(arg);
        const auto read = ReadCryptoAttribute(value != nullptr ? value : "");
        const auto is_ours = [&read](const CryptoAttribute& one) {
          return one.tag == read->tag && one.suite == read->suite;
        };
        if (read && (wanted.is_offer || std::any_of(wanted.own.begin(), wanted.own.end(), is_ours))) {
          wanted.found = read;
        }
        return wanted.found.has_value();
      },
      &search);
  return search.found;
}

void MediaNegotiation::TellKeys(std::vector<CryptoAttribute> own) {
  own_ = std::move(own);
  bool first = true;
  for (const CryptoAttribute& attribute : own_) {
    const std::string text = WriteCryptoAttribute(attribute);
    Check(sdp_media_set_lattr(audio_, std::exchange(first, false), "crypto", "%s", text.c_str()));
  }
}

LibrePtr<mbuf> MediaNegotiation::Write(bool as_offer) {
  mbuf* text = nullptr;
  (void)sdp_encode(&text, session_.get(), as_offer);
  if (text != nullptr) RestoreProtocols({reinterpret_cast<char*>(text->buf), text->end});
  return LibrePtr<mbuf>(text);
}

}  // namespace orven
