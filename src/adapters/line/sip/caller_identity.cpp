// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/caller_identity.h"

#include <algorithm>
#include <initializer_list>

#include "adapters/line/sip/name_address.h"
#include "base/text.h"

namespace orven {
namespace {

bool IsAnonymous(const NameAddress& address) {
  return Lower(address.user) == "anonymous" || address.host == "anonymous.invalid" ||
         Lower(address.name) == "anonymous";
}

/// "id" withholds the asserted identity (RFC 3325, section 9.3), "user" and "header" what the telephone sends
/// (RFC 3323, section 4.2).
bool IsWithheld(std::string_view privacy) {
  std::string values = ";" + Lower(privacy) + ";";
  std::erase(values, ' ');
  return std::ranges::any_of(std::initializer_list<const char*>{";id;", ";user;", ";header;"},
                             [&values](const char* one) { return values.find(one) != std::string::npos; });
}

/// Nothing unless `address`, of a Remote-Party-ID, is the caller's. Removes what he withholds.
void Censor(NameAddress& address) {
  const std::string party = ParameterIn(address.parameters, "party");
  const std::string privacy = ParameterIn(address.parameters, "privacy");
  if (!party.empty() && party != "calling") address = {};
  if (privacy == "full" || privacy == "name") address.name.clear();
  if (privacy == "full" || privacy == "uri") address.user.clear();
}

/// The addresses among `values`.
std::vector<NameAddress> AddressesOf(const std::vector<std::string_view>& values,
                                     void (*censor)(NameAddress&)) {
  std::vector<NameAddress> addresses;
  for (const std::string_view value : values) {
    addresses.push_back(ReadNameAddress(value));
    if (censor != nullptr) censor(addresses.back());
  }
  std::erase_if(addresses, [](const NameAddress& address) { return address.scheme.empty(); });
  return addresses;
}

}  // namespace

IdentityHeaders IdentityIn(const sip_msg& invite, bool from_server) {
  const sip_hdr* const privacy = sip_msg_hdr(&invite, SIP_HDR_PRIVACY);
  IdentityHeaders headers{{}, {}, View(invite.from.val), privacy != nullptr ? View(privacy->val) : ""};
  if (!from_server) return headers;
  headers.asserted = AddressesIn(invite, "P-Asserted-Identity");
  headers.remote_party = AddressesIn(invite, "Remote-Party-ID");
  return headers;
}

CallerIdentity Identify(const IdentityHeaders& headers) {
  if (IsWithheld(headers.privacy)) return {};
  auto addresses = AddressesOf(headers.asserted, nullptr);
  if (addresses.empty()) addresses = AddressesOf(headers.remote_party, Censor);
  if (addresses.empty()) addresses.push_back(ReadNameAddress(headers.from));
  if (std::any_of(addresses.begin(), addresses.end(), IsAnonymous)) return {};
  CallerIdentity caller;
  for (const NameAddress& address : addresses) {
    if (caller.number.empty()) caller.number = address.user;
    if (caller.name.empty()) caller.name = address.name;
  }
  return caller;
}

}  // namespace orven
