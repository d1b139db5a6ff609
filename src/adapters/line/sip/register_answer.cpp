// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/register_answer.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace orven {
namespace {

using std::chrono::seconds;

/// Even if the server grants more: it may restart and lose its registrations.
constexpr seconds kLongestLife = std::chrono::hours(1);

/// The seconds at the beginning of `text`, as many as 32 bits hold (RFC 3261, section 20.19); nothing when
/// it does not begin with digits.
std::optional<seconds> SecondsOf(std::string_view text) {
  std::uint32_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error == std::errc::invalid_argument) return std::nullopt;
  return seconds(error == std::errc() ? count : std::numeric_limits<std::uint32_t>::max());
}

}  // namespace

std::optional<seconds> SecondsIn(const sip_msg& response, sip_hdrid id) {
  const sip_hdr* header = sip_msg_hdr(&response, id);
  return header != nullptr ? SecondsOf(View(header->val)) : std::nullopt;
}

seconds GrantedLife(const sip_msg& response, const std::string& contact, seconds asked) {
  struct Search {
    uri own{};
    bool found = false;
    std::optional<seconds> ours, others;
  } search;
  pl text{};
  pl_set_str(&text, contact.c_str());
  (void)uri_decode(&search.own, &text);
  sip_msg_hdr_apply(
      &response, true, SIP_HDR_CONTACT,
      [](const sip_hdr* header, const sip_msg*, void* arg) {
        auto& wanted = *static_cast<Search*>(arg);
        sip_addr told{};
        pl life{};
        if (sip_addr_decode(&told, &header->val) != 0 || pl_cmp(&told.uri.user, &wanted.own.user) != 0)
          return false;
        std::optional<seconds> granted;
        if (msg_param_decode(&told.params, "expires", &life) == 0) granted = SecondsOf(View(life));
        wanted.found = pl_cmp(&told.uri.host, &wanted.own.host) == 0 && told.uri.port == wanted.own.port;
        if (wanted.found) wanted.ours = granted;
        if (granted) wanted.others = std::min(wanted.others.value_or(*granted), *granted);
        return wanted.found;
      },
      &search);
  auto life = search.found ? search.ours : search.others;
  if (!life) life = SecondsIn(response, SIP_HDR_EXPIRES);
  return std::min(life.value_or(asked), kLongestLife);
}

std::optional<sa> SeenAddress(const sip_msg& response, const sa& own) {
  pl host{};
  pl port{};
  if (msg_param_decode(&response.via.params, "received", &host) != 0) host = {};
  if (msg_param_decode(&response.via.params, "rport", &port) != 0) port = {};
  sa seen = response.via.addr;
  if (pl_isset(&host) && sa_set(&seen, &host, sa_port(&response.via.addr)) != 0) return std::nullopt;
  if (pl_isset(&port)) sa_set_port(&seen, static_cast<std::uint16_t>(pl_u32(&port)));
  const bool told = pl_isset(&host) || pl_isset(&port);
  if (!told || !sa_isset(&seen, SA_ALL) || !sa_isset(&own, SA_ALL)) return std::nullopt;
  const int what = response.tp == SIP_TRANSP_TCP ? SA_ADDR : SA_ALL;
  return sa_cmp(&seen, &own, what) ? sa{} : seen;
}

}  // namespace orven
