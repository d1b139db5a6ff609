// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/reliable_ringing.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace orven {
namespace {

/// T1 (RFC 3261, section 17.1.1.1): the pauses begin with it and double (RFC 3262, section 3).
constexpr std::chrono::milliseconds kFirstPause{500};

/// Numbers begin anywhere from 1 to 2^31 - 1 (RFC 3262, section 3).
std::uint32_t FirstNumber() {
  return rand_u32() % 0x7FFF'FFFF + 1;
}

}  // namespace

bool ReliableRinging::IsRequiredBy(const sip_msg& invite) {
  return sip_msg_hdr_has_value(&invite, SIP_HDR_REQUIRE, "100rel");
}

ReliableRinging::ReliableRinging(const sip_msg& invite, std::chrono::milliseconds patience, Events events)
    : events_(std::move(events)),
      number_(FirstNumber()),
      sequence_(invite.cseq.num),
      end_(Clock::now() + patience),
      pause_(kFirstPause),
      timer_([this] { Fire(); }) {
  Wait();
}

std::string ReliableRinging::Headers() const {
  return "Require: 100rel\r\nRSeq: " + std::to_string(number_) + "\r\n";
}

void ReliableRinging::Wait() {
  timer_.StartOnce(std::min(pause_, std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now())));
}

void ReliableRinging::Fire() {
  if (Clock::now() >= end_) return events_.unheard();
  events_.repeat();
  pause_ *= 2;
  Wait();
}

/// RAck names the 180 and its INVITE: "988789 1 INVITE".
bool ReliableRinging::Confirm(const sip_msg& prack) {
  const sip_hdr* const header = sip_msg_hdr(&prack, SIP_HDR_RACK);
  std::istringstream words(header != nullptr ? std::string(View(header->val)) : "");
  std::uint32_t number = 0, sequence = 0;
  std::string method;
  words >> number >> sequence >> method;
  if (number != number_ || sequence != sequence_ || method != "INVITE") return false;
  timer_.Stop();
  return !std::exchange(confirmed_, true);
}

}  // namespace orven
