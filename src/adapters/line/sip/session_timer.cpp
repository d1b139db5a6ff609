// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/session_timer.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace orven {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// The interval that `request` wants; 0 without one.
seconds IntervalIn(const sip_msg& request) {
  const sip_hdr* const header = sip_msg_hdr(&request, SIP_HDR_SESSION_EXPIRES);
  const std::string_view text = header != nullptr ? View(header->val) : "";
  std::uint32_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return seconds(value);
}

bool KnowsTimers(const sip_msg& request) {
  return sip_msg_hdr_has_value(&request, SIP_HDR_SUPPORTED, "timer") ||
         sip_msg_hdr_has_value(&request, SIP_HDR_REQUIRE, "timer");
}

bool WantsUsToConfirm(const sip_msg& invite) {
  const sip_hdr* const header = sip_msg_hdr(&invite, SIP_HDR_SESSION_EXPIRES);
  pl refresher{};
  return msg_param_decode(&header->val, "refresher", &refresher) == 0 &&
         pl_strcasecmp(&refresher, "uas") == 0;
}

/// The call ends this long after the latest confirmation (RFC 4028, section 10).
milliseconds LifeOf(milliseconds interval) {
  return interval - std::min<milliseconds>(seconds(32), interval / 3);
}

}  // namespace

bool SessionTimer::IsTooBrief(const sip_msg& request, seconds shortest) {
  const seconds interval = IntervalIn(request);
  return interval > seconds(0) && interval < shortest && KnowsTimers(request);
}

SessionTimer::SessionTimer(const sip_msg& invite, seconds shortest, Events events)
    : events_(std::move(events)), timer_([this] { Fire(); }) {
  const seconds interval = IntervalIn(invite);
  if (interval == seconds(0) || interval < shortest) return;
  interval_ = interval;
  ours_ = !KnowsTimers(invite) || WantsUsToConfirm(invite);
}

/// "Require" so that the caller knows that it is to confirm (RFC 4028, section 9); "Supported" because it is
/// to be in the requests with which we do (section 7.4).
std::string SessionTimer::Headers() const {
  if (interval_ == seconds(0)) return {};
  return "Session-Expires: " + std::to_string(interval_.count()) +
         (ours_ ? ";refresher=uas\r\nSupported: timer\r\n" : ";refresher=uac\r\nRequire: timer\r\n");
}

void SessionTimer::Restart() {
  if (interval_ == seconds(0)) return;
  confirming_ = false;
  timer_.StartOnce(ours_ ? milliseconds(interval_) / 2 : LifeOf(interval_));
}

void SessionTimer::Fire() {
  if (!ours_ || std::exchange(confirming_, true)) return events_.expired();
  timer_.StartOnce(LifeOf(interval_) - milliseconds(interval_) / 2);
  events_.refresh();
}

}  // namespace orven
