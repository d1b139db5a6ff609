// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// Who calls, as valid UTF-8; empty texts where the network does not tell or the caller hides.
struct CallerIdentity {
  std::string name;
  std::string number;
};

/// The parts of a call's first message that tell who calls; each is a header's raw value.
struct IdentityHeaders {
  std::vector<std::string_view> asserted;  ///< P-Asserted-Identity values in order (RFC 3325)
  std::string_view from;
  std::string_view privacy;  ///< Privacy (RFC 3323), empty when absent
};

/// The asserted identity when there is one, else From; both texts empty when it is an anonymous one
/// (RFC 3323, section 4.1.1.3) or the caller asks that it be withheld. A name that is missing in the
/// first asserted identity is taken from the next ones. Quoted pairs, percent escapes and ISO 8859-1
/// are decoded.
CallerIdentity Identify(const IdentityHeaders& headers);

}  // namespace orven
