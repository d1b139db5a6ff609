// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The caller, as valid UTF-8; empty texts when unknown or withheld.
struct CallerIdentity {
  std::string name;
  std::string number;
};

/// The headers of an INVITE that identify the caller; raw values in order.
struct IdentityHeaders {
  std::vector<std::string_view> asserted;      ///< P-Asserted-Identity (RFC 3325)
  std::vector<std::string_view> remote_party;  ///< Remote-Party-ID, its older form
  std::string_view from;
  std::string_view privacy;  ///< Privacy (RFC 3323), empty when absent
};

/// The headers of `invite`, which lives longer. Only the account's server may assert who calls; without
/// `from_server` From counts alone, since anybody could write the rest.
IdentityHeaders IdentityIn(const sip_msg& invite, bool from_server);

/// The asserted identity if there is one, then that of Remote-Party-ID, then From; both texts are empty when
/// it is anonymous (RFC 3323, section 4.1.1.3) or the caller wants it withheld. Parts that the first asserted
/// identity lacks are taken from the next ones. Decodes quoted pairs, percent escapes and ISO 8859-1.
CallerIdentity Identify(const IdentityHeaders& headers);

}  // namespace orven
