// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_call.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

#include "adapters/line/sip/caller_identity.h"
#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/diversion.h"
#include "adapters/line/sip/session_description.h"
#include "adapters/line/sip/sip_endpoint.h"

namespace orven {
namespace {

using Kind = LineEvent::Kind;
using std::chrono::steady_clock;

constexpr const char* kDescriptionHeader = "Content-Type: application/sdp\r\n";

SipCall& Self(void* call) {
  return *static_cast<SipCall*>(call);
}

}  // namespace

std::unique_ptr<SipCall> SipCall::Accept(const SipCallPorts& ports, CallNumber number,
                                         const sip_msg& invite) {
  std::unique_ptr<SipCall> call(new SipCall(ports, number, invite));
  if (!call->Prepare(invite) || !call->Begin(invite)) return nullptr;
  call->Announce(invite);
  return call;
}

SipCall::SipCall(const SipCallPorts& ports, CallNumber number, const sip_msg& invite)
    : ports_(ports),
      number_(number),
      stream_(RtpStream::Bind(
          invite.dst, ports.audio, ports.settings.timers,
          {.heard = [this] { Connect(); },
           .digit = [this](DigitSource source, char digit, auto at) { DigitHeard(source, digit, at); },
           .held = [this](DigitSource source, auto at) { digits_.Held(source, at); },
           .over = [this] { End(true); }})),
      session_timer_(invite, ports.settings.timers.shortest_session,
                     {.refresh = [this] { Refresh(); }, .expired = [this] { End(true); }}),
      ring_timer_([this] { Ring(); }),
      ack_timer_([this] { End(true); }) {}

SipCall::~SipCall() = default;

bool SipCall::Prepare(const sip_msg& invite) {
  if (RefuseBriefSession(invite)) return false;
  if (stream_ == nullptr) {
    (void)sip_reply(ports_.stack, &invite, 500, "No Port For Sound");
    return false;
  }
  sa local = invite.dst;
  sa_set_port(&local, stream_->Port());
  negotiation_.emplace(local, ports_.settings.Srtp(), ports_.settings.codecs);
  if (mbuf_get_left(invite.mb) == 0) return true;
  const auto offer = DescriptionIn(invite);
  if (!offer) {
    (void)sip_replyf(ports_.stack, &invite, 415, "Unsupported Media Type",
                     "Accept: application/sdp, multipart/mixed\r\nContent-Length: 0\r\n\r\n");
    return false;
  }
  agreement_ = negotiation_->Read(*offer, true, invite.src);
  if (!agreement_) (void)sip_reply(ports_.stack, &invite, 488, "Not Acceptable Here");
  return agreement_.has_value();
}

bool SipCall::Begin(const sip_msg& invite) {
  if (ReliableRinging::IsRequiredBy(invite)) {
    reliable_.emplace(
        invite, ports_.settings.timers.no_ack,
        ReliableRinging::Events{.repeat = [this] { RepeatRinging(); }, .unheard = [this] { EndUnheard(); }});
  }
  const std::string headers = RingingHeaders();
  sipsess* session = nullptr;
  const std::string type = SessionType();
  const int error = sipsess_accept(
      &session, ports_.sessions, &invite, 180, "Ringing", ports_.contact.c_str(), type.c_str(), nullptr,
      nullptr, nullptr, false,
      [](mbuf** answer, const sip_msg* request, void* self) {
        return Self(self).TakeOffer(answer, *request);
      },
      [](const sip_msg* ack, void* self) { return Self(self).TakeAnswer(*ack); },
      [](const sip_msg*, void* self) { Self(self).Connect(); },
      [](struct sip*, const sip_msg* request, void* self) { Self(self).TakeInfo(*request); }, nullptr,
      [](int, const sip_msg*, void* self) { Self(self).SessionClosed(); }, this, "%s", headers.c_str());
  session_.reset(error == 0 ? session : nullptr);
  if (error != 0) {
    // The library has sent no answer. EBADMSG and EINVAL mean an unusable Contact.
    const bool malformed = error == EBADMSG || error == EINVAL;
    (void)sip_reply(ports_.stack, &invite, malformed ? 400 : 500,
                    malformed ? "Bad Contact" : "Server Internal Error");
  }
  return error == 0;
}

void SipCall::Announce(const sip_msg& invite) {
  const CallerIdentity caller = Identify(IdentityIn(invite, ports_.from_server));
  Tell({.kind = Kind::InCommingCall});
  Tell({.kind = Kind::CallerID, .name = caller.name, .text = caller.number});
  if (auto diversion = DiversionIn(invite)) {
    Tell({.kind = Kind::Diverted, .name = std::move(diversion->from), .text = std::move(diversion->reason)});
  }
  Ring();
  ring_timer_.StartPeriodic(std::chrono::seconds(std::max(1, ports_.settings.ring_seconds)));
}

void SipCall::Tell(LineEvent event) {
  event.call = number_;
  ports_.events(std::move(event));
}

void SipCall::Done(std::int32_t request, std::int32_t result) {
  ports_.events({.kind = Kind::Proc, .number = request, .result = result});
}

void SipCall::Ring() {
  Tell({.kind = Kind::Ring, .number = ++rings_});
}

/// The type of our descriptions and, as the library has no other place for header lines in its answers to a
/// re-INVITE and in our own, those of the session timer.
std::string SipCall::SessionType() const {
  const std::string timer = session_timer_.Headers();
  return "application/sdp" + (timer.empty() ? "" : "\r\n" + timer.substr(0, timer.size() - 2));
}

std::string SipCall::RingingHeaders() const {
  return kAbilities + (reliable_ ? reliable_->Headers() : "");
}

void SipCall::RepeatRinging() {
  (void)sipsess_progress(session_.get(), 180, "Ringing", nullptr, "%s", RingingHeaders().c_str());
}

/// RFC 3262, section 3: a caller who does not confirm the 180 gets a 5xx.
void SipCall::EndUnheard() {
  (void)sipsess_reject(session_.get(), 504, "Server Time-out", nullptr);
  End(true);
}

/// The only place where the state changes; it never goes back.
void SipCall::Enter(State next) {
  if (next <= state_) return;
  state_ = next;
  if (next != State::kRinging) {
    ring_timer_.Stop();
    if (reliable_) reliable_->Stop();
  }
  if (next != State::kAnswered) ack_timer_.Stop();
  if (next >= State::kEnding) session_timer_.Stop();
}

void SipCall::Answer(std::int32_t request) {
  if (state_ == State::kGone) return Done(request, kTelephonyNoCall);
  if (state_ != State::kRinging) return Done(request, kTelephonyAlreadyAnswered);
  if (!SendAnswer()) {
    Done(request, kTelephonyDeviceFailed);
    return End(false);
  }
  Enter(State::kAnswered);
  Done(request, kTelephonyOk);
  ack_timer_.StartOnce(ports_.settings.timers.no_ack);
  session_timer_.Restart();
  stream_->Start(agreement_);
}

bool SipCall::SendAnswer() {
  const LibrePtr<mbuf> body = negotiation_->Write(!agreement_.has_value());
  return body != nullptr && sipsess_answer(session_.get(), 200, "OK", body.get(), "%s", kAbilities) == 0;
}

/// On the ACK, or on audio from the caller, which proves as well that our answer has arrived.
void SipCall::Connect() {
  if (state_ != State::kAnswered) return;
  Enter(State::kConnected);
  Tell({.kind = Kind::Connected});
}

void SipCall::Drop(std::int32_t request) {
  Done(request, kTelephonyOk);
  End(false);
}

/// The library has confirmed a BYE or CANCEL.
void SipCall::SessionClosed() {
  if (!stream_->AwaitsMore()) return End(true);
  session_.reset();
  Enter(State::kEnding);
}

void SipCall::End(bool by_peer) {
  if (state_ == State::kGone) return;
  const bool was_answered = state_ != State::kRinging;
  EndSession();
  Enter(State::kGone);
  if (by_peer && was_answered) Tell({.kind = Kind::Disconnected});
  Tell({.kind = Kind::Idle});
}

/// 486 refuses the call at this telephone only; 603 would stop the user's other ones from ringing. An
/// answered session sends BYE when it is released, after the ACK if that is still to come.
void SipCall::EndSession() {
  stream_->Stop();
  if (state_ == State::kRinging && session_ != nullptr) {
    (void)sipsess_reject(session_.get(), 486, "Busy Here", nullptr);
  }
  session_.reset();
}

bool SipCall::TakeDescription(const sip_msg& message, bool is_offer) {
  const auto text = DescriptionIn(message);
  const auto agreement = text ? negotiation_->Read(*text, is_offer, message.src) : std::nullopt;
  if (!agreement) return false;
  agreement_ = agreement;
  stream_->Update(*agreement);
  return true;
}

/// A re-INVITE that offers what is agreed. The header lines in its type say that the caller may confirm next;
/// both sides doing so does no harm.
void SipCall::Refresh() {
  const LibrePtr<mbuf> offer = negotiation_->Write(true);
  if (offer != nullptr) (void)sipsess_modify(session_.get(), offer.get());
}

/// A re-INVITE. Without an agreement it is refused (488) and the call goes on as before. No exception may
/// reach the library.
int SipCall::TakeOffer(mbuf** answer, const sip_msg& request) try {
  const bool has_offer = mbuf_get_left(request.mb) > 0;
  if (has_offer && !TakeDescription(request, true)) return ENOTSUP;
  session_timer_.Restart();
  *answer = negotiation_->Write(!has_offer).release();
  return *answer != nullptr ? 0 : ENOMEM;
} catch (const std::exception&) {
  return ENOMEM;
}

/// The answer to our offer comes with the ACK, or with the answer to our re-INVITE.
int SipCall::TakeAnswer(const sip_msg& message) try {
  if (!message.req) session_timer_.Restart();
  return TakeDescription(message, false) ? 0 : EPROTO;
} catch (const std::exception&) {
  return ENOMEM;
}

bool SipCall::Take(const sip_msg& request) try {
  const bool is_prack = pl_strcmp(&request.met, "PRACK") == 0;
  if (session_ == nullptr || (!is_prack && pl_strcmp(&request.met, "UPDATE") != 0)) return false;
  sip_dialog* const dialog = sipsess_dialog(session_.get());
  if (!sip_dialog_cmp(dialog, &request)) return false;
  if (!sip_dialog_rseq_valid(dialog, &request)) {
    (void)sip_treply(nullptr, ports_.stack, &request, 500, "Server Internal Error");
  } else {
    is_prack ? TakePrack(request) : TakeUpdate(request);
  }
  return true;
} catch (const std::exception&) {
  return true;  // without memory: the caller will repeat it
}

void SipCall::TakePrack(const sip_msg& request) {
  const bool confirms = reliable_ && reliable_->Confirm(request);
  (void)sip_treply(nullptr, ports_.stack, &request, confirms ? 200 : 481,
                   confirms ? "OK" : "Call/Transaction Does Not Exist");
}

/// RFC 3311. An offer is read like that of a re-INVITE, but must not overtake the offers of the INVITE.
void SipCall::TakeUpdate(const sip_msg& request) {
  if (RefuseBriefSession(request)) return;
  const bool has_offer = mbuf_get_left(request.mb) > 0;
  if (has_offer && (state_ == State::kRinging || !agreement_)) {
    (void)sip_treplyf(nullptr, nullptr, ports_.stack, &request, false, 500, "Server Internal Error",
                      "Retry-After: 5\r\nContent-Length: 0\r\n\r\n");
    return;
  }
  mbuf* written = nullptr;
  if (has_offer && TakeOffer(&written, request) != 0) {
    (void)sip_treply(nullptr, ports_.stack, &request, 488, "Not Acceptable Here");
    return;
  }
  const LibrePtr<mbuf> answer(written);
  if (state_ != State::kRinging) session_timer_.Restart();
  (void)sip_dialog_update(sipsess_dialog(session_.get()), &request);
  ConfirmUpdate(request, answer.get());
}

void SipCall::ConfirmUpdate(const sip_msg& request, mbuf* answer) {
  sip_contact contact{};
  sip_contact_set(&contact, ports_.contact.c_str(), &request.dst, request.tp);
  const std::string headers = session_timer_.Headers() + (answer != nullptr ? kDescriptionHeader : "");
  const std::size_t size = answer != nullptr ? mbuf_get_left(answer) : 0;
  (void)sip_treplyf(nullptr, nullptr, ports_.stack, &request, false, 200, "OK",
                    "%H%sContent-Length: %zu\r\n\r\n%b", sip_contact_print, &contact, headers.c_str(), size,
                    answer != nullptr ? mbuf_buf(answer) : nullptr, size);
}

bool SipCall::RefuseBriefSession(const sip_msg& request) {
  const auto shortest = ports_.settings.timers.shortest_session;
  if (!SessionTimer::IsTooBrief(request, shortest)) return false;
  (void)sip_replyf(ports_.stack, &request, 422, "Session Interval Too Small",
                   "Min-SE: %u\r\nContent-Length: 0\r\n\r\n", static_cast<unsigned>(shortest.count()));
  return true;
}

void SipCall::TakeInfo(const sip_msg& request) {
  const std::string_view body(reinterpret_cast<const char*>(mbuf_buf(request.mb)), mbuf_get_left(request.mb));
  const bool is_digit = msg_ctype_cmp(&request.ctyp, "application", "dtmf-relay") ||
                        msg_ctype_cmp(&request.ctyp, "application", "dtmf");
  const auto digit = is_digit ? DigitOfInfo(body) : std::nullopt;
  if (is_digit && !digit) {
    (void)sip_treply(nullptr, ports_.stack, &request, 400, "No Key In Body");
  } else if (!is_digit && !body.empty()) {
    (void)sip_treplyf(nullptr, nullptr, ports_.stack, &request, false, 415, "Unsupported Media Type",
                      "Accept: application/dtmf-relay, application/dtmf\r\nContent-Length: 0\r\n\r\n");
  } else {
    (void)sip_treply(nullptr, ports_.stack, &request, 200, "OK");
    if (digit) DigitHeard(DigitSource::kInfo, *digit, steady_clock::now());
  }
}

void SipCall::DigitHeard(DigitSource source, char digit, DigitMerger::Time at) {
  if (!digits_.Report(source, digit, at) || !key_rate_.Allows(at)) return;
  if (monitoring_ && state_ == State::kConnected) Tell({.kind = Kind::MonitorDigit, .digit = digit});
}

}  // namespace orven
