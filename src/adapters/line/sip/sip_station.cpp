// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/sip_station.h"

#include <new>
#include <utility>

#include "adapters/line/sip/sip_requests.h"

namespace orven {
namespace {

constexpr const char* kSoftware = "ORVEN";
constexpr std::uint32_t kBuckets = 32;

SipStation& Self(void* station) {
  return *static_cast<SipStation*>(station);
}

}  // namespace

SipStation::SipStation(dnsc& names, Events events) : events_(std::move(events)) {
  sip* stack = nullptr;
  const auto closed = [](void* self) {
    if (auto& told = Self(self).events_.closed) told();
  };
  if (sip_alloc(&stack, &names, kBuckets, kBuckets, kBuckets, kSoftware, closed, this) != 0) {
    throw std::bad_alloc();
  }
  stack_.reset(stack);
}

SipStation::~SipStation() {
  events_ = {};
  sipsess_close_all(sessions_.get());
  sip_close(stack_.get(), true);
  sessions_.reset();
}

int SipStation::Begin() {
  // The order matters: what is unsound is out before the sessions see it, what they leave comes last.
  int error = sip_listen(
      nullptr, stack_.get(), true,
      [](const sip_msg* request, void* self) {
        if (auto& heard = Self(self).events_.heard) heard(*request);
        return TakeProbe(*request) || !IsSoundRequest(Self(self).Stack(), *request);
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

int SipStation::Listen(const sa& address) {
  address_ = address;
  const int error = sip_transp_add(stack_.get(), SIP_TRANSP_UDP, &address);
  if (error == 0) ProbeSocket(*stack_, address);
  return error != 0 ? error : sip_transp_add(stack_.get(), SIP_TRANSP_TCP, &address);
}

int SipStation::ListenSecurely(const sa& address, tls& context) {
  address_ = address;
  return sip_transp_add(stack_.get(), SIP_TRANSP_TLS, &address, &context);
}

void SipStation::Close() {
  sip_close(stack_.get(), false);
}

}  // namespace orven
