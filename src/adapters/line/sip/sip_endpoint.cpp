// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_endpoint.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/conversions.h"

namespace orven {
namespace {

constexpr const char* kSoftware = "ORVEN";
constexpr std::uint32_t kBuckets = 32;

SipEndpoint& Self(void* endpoint) {
  return *static_cast<SipEndpoint*>(endpoint);
}

/// The extensions that a caller may require.
constexpr std::array kExtensions{"100rel", "timer"};

/// What `request` requires and we do not support; empty: nothing.
std::string UnsupportedIn(const sip_msg& request) {
  std::string unsupported;
  sip_msg_hdr_apply(
      &request, true, SIP_HDR_REQUIRE,
      [](const sip_hdr* header, const sip_msg*, void* text) {
        auto& list = *static_cast<std::string*>(text);
        const auto is_it = [header](const char* one) { return pl_strcasecmp(&header->val, one) == 0; };
        if (std::ranges::none_of(kExtensions, is_it)) {
          list += (list.empty() ? "" : ", ") + std::string(View(header->val));
        }
        return false;
      },
      &unsupported);
  return unsupported;
}

/// A datagram may be longer than its body, not shorter (RFC 3261, section 18.3).
bool FitToContentLength(const sip_msg& request) {
  if (request.clen.p == nullptr) return true;
  const auto length = WholeNumber<std::int64_t>(View(request.clen)).value_or(-1);
  if (length < 0 || static_cast<std::size_t>(length) > mbuf_get_left(request.mb)) return false;
  request.mb->end = request.mb->pos + static_cast<std::size_t>(length);
  return true;
}

/// The method of our probes.
constexpr const char* kProbe = "WIDEN";

/// The largest datagram (RFC 768: 16 bits of length).
constexpr std::size_t kLargestDatagram = 65'536;

/// Makes the UDP socket of `stack` at `address` read requests of more than the library's 8 KB whole. The
/// library gives access to the socket only with a message that came through it, so this sends a probe for
/// TakeProbe. If it gets lost, the limit stays.
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

/// True when `request` was a probe.
bool TakeProbe(const sip_msg& request) {
  if (request.tp != SIP_TRANSP_UDP || pl_strcmp(&request.met, kProbe) != 0) return false;
  udp_rxsz_set(static_cast<udp_sock*>(request.sock), kLargestDatagram);
  return true;
}

/// What a request lacks that every request must have (RFC 3261, section 8.1.1); nullptr: nothing.
const char* FaultOf(const sip_msg& request) {
  if (!pl_isset(&request.callid) || !pl_isset(&request.cseq.met)) return "Missing Call-ID Or CSeq";
  if (pl_cmp(&request.cseq.met, &request.met) != 0) return "CSeq Method Mismatch";
  if (!pl_isset(&request.from.auri) || !pl_isset(&request.to.auri)) return "Missing From Or To";
  if (!pl_isset(&request.from.tag)) return "Missing From Tag";
  if (!FitToContentLength(request)) return "Bad Content-Length";
  const bool is_invite = pl_strcmp(&request.met, "INVITE") == 0;
  if (is_invite && sip_msg_hdr(&request, SIP_HDR_CONTACT) == nullptr) return "Missing Contact";
  return nullptr;
}

/// False when the request has been answered with a 4xx, or dropped because no answer is possible.
bool IsValidRequest(sip& stack, const sip_msg& request) {
  // Without these no answer is possible.
  if (!pl_isset(&request.via.sentby) || request.via.sentby.l == 0) return false;
  if (const char* const fault = FaultOf(request)) {
    (void)sip_reply(&stack, &request, 400, fault);
    return false;
  }
  const auto unsupported = pl_strcmp(&request.met, "INVITE") == 0 ? UnsupportedIn(request) : "";
  if (unsupported.empty()) return true;
  (void)sip_replyf(&stack, &request, 420, "Bad Extension", "Unsupported: %s\r\nContent-Length: 0\r\n\r\n",
                   unsupported.c_str());
  return false;
}

/// Answers a request that neither belongs to a call nor begins one: OPTIONS with what we support, one that
/// belongs to a call which is over with 481, others with 405.
void AnswerOtherRequest(sip& stack, const sip_msg& request) {
  const auto is = [&request](const char* method) { return pl_strcmp(&request.met, method) == 0; };
  if (is("OPTIONS")) {
    (void)sip_replyf(&stack, &request, 200, "OK", "%sAccept: application/sdp\r\nContent-Length: 0\r\n\r\n",
                     kAbilities);
  } else if (is("CANCEL") || is("PRACK") || is("UPDATE")) {
    (void)sip_reply(&stack, &request, 481, "Call/Transaction Does Not Exist");
  } else {
    (void)sip_replyf(&stack, &request, 405, "Method Not Allowed", "%sContent-Length: 0\r\n\r\n", kAbilities);
  }
}

}  // namespace

SipEndpoint::SipEndpoint(dnsc& names, Events events) : events_(std::move(events)) {
  const auto closed = [](void* self) {
    if (auto& told = Self(self).events_.closed) told();
  };
  stack_ = Made(sip_alloc, &names, kBuckets, kBuckets, kBuckets, kSoftware, closed, this);
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
        if (TakeProbe(*request) || !IsValidRequest(Self(self).Stack(), *request)) return true;
        auto& within = Self(self).events_.within;
        return within && within(Self(self), *request);
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
  if (error == 0 && sa_port(&address) != 0) ProbeSocket(*stack_, address);
  return error != 0 ? error : sip_transp_add(stack_.get(), SIP_TRANSP_TCP, &address);
}

int SipEndpoint::ListenSecurely(const sa& address, tls& context) {
  address_ = address;
  return sip_transp_add(stack_.get(), SIP_TRANSP_TLS, &address, &context);
}

void SipEndpoint::Close() {
  sip_close(stack_.get(), false);
}

}  // namespace orven
