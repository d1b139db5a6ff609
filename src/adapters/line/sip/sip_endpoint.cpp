// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_endpoint.h"

#include <charconv>
#include <new>
#include <string>
#include <utility>

namespace orven {
namespace {

constexpr const char* kSoftware = "ORVEN";
constexpr std::uint32_t kBuckets = 32;

SipEndpoint& Self(void* endpoint) {
  return *static_cast<SipEndpoint*>(endpoint);
}

std::string_view HeaderValue(const sip_msg& message, sip_hdrid id) {
  const sip_hdr* header = sip_msg_hdr(&message, id);
  return header != nullptr ? View(header->val) : std::string_view();
}

/// The values of a list header, for the answer that refuses them.
std::string Joined(const sip_msg& message, sip_hdrid id) {
  std::string joined;
  sip_msg_hdr_apply(
      &message, true, id,
      [](const sip_hdr* header, const sip_msg*, void* text) {
        auto& list = *static_cast<std::string*>(text);
        list += (list.empty() ? "" : ", ") + std::string(View(header->val));
        return false;
      },
      &joined);
  return joined;
}

bool Refuse(sip& stack, const sip_msg& request, std::uint16_t code, const char* reason) {
  (void)sip_reply(&stack, &request, code, reason);
  return false;
}

/// The value of Content-Length, or -1 when it is not a number.
long ToldLength(const sip_msg& request) {
  const std::string_view text = View(request.clen);
  long length = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  return error == std::errc() && end == text.data() + text.size() ? length : -1;
}

/// A datagram may be longer than its body, not shorter (RFC 3261, section 18.3).
bool FitToContentLength(const sip_msg& request) {
  if (request.clen.p == nullptr) return true;
  const long length = ToldLength(request);
  if (length < 0 || static_cast<std::size_t>(length) > mbuf_get_left(request.mb)) return false;
  request.mb->end = request.mb->pos + static_cast<std::size_t>(length);
  return true;
}

/// The method of our probes.
constexpr const char* kProbe = "WIDEN";

/// The largest datagram (RFC 768: 16 bits of length).
constexpr std::size_t kLargestDatagram = 65'536;

}  // namespace

SipEndpoint::SipEndpoint(dnsc& names, Events events) : events_(std::move(events)) {
  sip* stack = nullptr;
  const auto closed = [](void* self) {
    if (auto& told = Self(self).events_.closed) told();
  };
  if (sip_alloc(&stack, &names, kBuckets, kBuckets, kBuckets, kSoftware, closed, this) != 0) {
    throw std::bad_alloc();
  }
  stack_.reset(stack);
}

SipEndpoint::~SipEndpoint() {
  events_ = {};
  sipsess_close_all(sessions_.get());
  sip_close(stack_.get(), true);
  sessions_.reset();
}

int SipEndpoint::Begin() {
  // The order matters: invalid requests are refused before the sessions see them; what those do not take
  // comes last.
  int error = sip_listen(
      nullptr, stack_.get(), true,
      [](const sip_msg* request, void* self) {
        if (auto& heard = Self(self).events_.heard) heard(*request);
        return TakeProbe(*request) || !IsValidRequest(Self(self).Stack(), *request);
      },
      this);
  sipsess_sock* sessions = nullptr;
  if (error == 0) {
    const auto taken = [](const sip_msg* invite, void* self) {
      if (auto& invited = Self(self).events_.invite) invited(Self(self), *invite);
    };
    error = sipsess_listen(&sessions, stack_.get(), kBuckets, taken, this);
  }
  sessions_.reset(sessions);
  if (error == 0) {
    error = sip_listen(
        nullptr, stack_.get(), true,
        [](const sip_msg* request, void* self) {
          AnswerOtherRequest(Self(self).Stack(), *request);
          return true;
        },
        this);
  }
  if (error != 0) return error;
  return sip_listen(
      nullptr, stack_.get(), false, [](const sip_msg*, void*) { return true; }, this);
}

int SipEndpoint::Listen(const sa& address) {
  address_ = address;
  const int error = sip_transp_add(stack_.get(), SIP_TRANSP_UDP, &address);
  if (error == 0) ProbeSocket(*stack_, address);
  return error != 0 ? error : sip_transp_add(stack_.get(), SIP_TRANSP_TCP, &address);
}

int SipEndpoint::ListenSecurely(const sa& address, tls& context) {
  address_ = address;
  return sip_transp_add(stack_.get(), SIP_TRANSP_TLS, &address, &context);
}

void SipEndpoint::Close() {
  sip_close(stack_.get(), false);
}

void ProbeSocket(sip& stack, const sa& address) {
  const LibrePtr<mbuf> probe(mbuf_alloc(256));
  if (probe == nullptr ||
      mbuf_printf(probe.get(), "%s sip:%J SIP/2.0\r\nVia: SIP/2.0/UDP %J;branch=z9hG4bK%s\r\n\r\n", kProbe,
                  &address, &address, kProbe) != 0) {
    return;
  }
  mbuf_set_pos(probe.get(), 0);
  (void)sip_send(&stack, nullptr, SIP_TRANSP_UDP, &address, probe.get());
}

bool TakeProbe(const sip_msg& request) {
  if (request.tp != SIP_TRANSP_UDP || pl_strcmp(&request.met, kProbe) != 0) return false;
  udp_rxsz_set(static_cast<udp_sock*>(request.sock), kLargestDatagram);
  return true;
}

CallerIdentity CallerOf(const sip_msg& invite) {
  IdentityHeaders headers;
  headers.from = View(invite.from.val);
  headers.privacy = HeaderValue(invite, SIP_HDR_PRIVACY);
  sip_msg_hdr_apply(
      &invite, true, SIP_HDR_P_ASSERTED_IDENTITY,
      [](const sip_hdr* header, const sip_msg*, void* list) {
        static_cast<std::vector<std::string_view>*>(list)->push_back(View(header->val));
        return false;
      },
      &headers.asserted);
  return Identify(headers);
}

bool IsValidRequest(sip& stack, const sip_msg& request) {
  // Without these no answer is possible.
  if (!pl_isset(&request.via.sentby) || request.via.sentby.l == 0) return false;
  if (!pl_isset(&request.callid) || !pl_isset(&request.cseq.met)) {
    return Refuse(stack, request, 400, "Missing Call-ID Or CSeq");
  }
  if (pl_cmp(&request.cseq.met, &request.met) != 0)
    return Refuse(stack, request, 400, "CSeq Method Mismatch");
  if (!pl_isset(&request.from.auri) || !pl_isset(&request.to.auri)) {
    return Refuse(stack, request, 400, "Missing From Or To");
  }
  if (!pl_isset(&request.from.tag)) return Refuse(stack, request, 400, "Missing From Tag");
  if (!FitToContentLength(request)) return Refuse(stack, request, 400, "Bad Content-Length");
  const bool is_invite = pl_strcmp(&request.met, "INVITE") == 0;
  if (is_invite && sip_msg_hdr(&request, SIP_HDR_CONTACT) == nullptr) {
    return Refuse(stack, request, 400, "Missing Contact");
  }
  if (is_invite && sip_msg_hdr(&request, SIP_HDR_REQUIRE) != nullptr) {
    (void)sip_replyf(&stack, &request, 420, "Bad Extension", "Unsupported: %s\r\nContent-Length: 0\r\n\r\n",
                     Joined(request, SIP_HDR_REQUIRE).c_str());
    return false;
  }
  return true;
}

void AnswerOtherRequest(sip& stack, const sip_msg& request) {
  if (pl_strcmp(&request.met, "OPTIONS") == 0) {
    (void)sip_replyf(&stack, &request, 200, "OK", "%sAccept: application/sdp\r\nContent-Length: 0\r\n\r\n",
                     kAllowHeader);
  } else if (pl_strcmp(&request.met, "CANCEL") == 0) {
    (void)sip_reply(&stack, &request, 481, "Transaction Does Not Exist");
  } else {
    (void)sip_replyf(&stack, &request, 405, "Method Not Allowed", "%sContent-Length: 0\r\n\r\n",
                     kAllowHeader);
  }
}

}  // namespace orven
