// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// A name-addr or addr-spec (RFC 3261, section 25.1) with its parameters, as in From or Diversion. Read here
/// because telephones send malformed names, which the library's parser refuses.
struct NameAddress {
  std::string name;            ///< valid UTF-8, without quotes; may be empty
  std::string scheme;          ///< in lower case; empty: the value is no address
  std::string user;            ///< valid UTF-8; of a tel URI the number without separators
  std::string host;            ///< in lower case
  std::string uri_parameters;  ///< ";cause=302"; as sent
  std::string uri_headers;     ///< "Reason=SIP%3Bcause%3D302"; as sent
  std::string parameters;      ///< behind the address: ";reason=no-answer"; as sent
};

/// Reads one value of a header.
NameAddress ReadNameAddress(std::string_view value);

/// The values of all headers `name` of `message` in order, which lives longer. Each header may list several,
/// separated by commas.
std::vector<std::string_view> AddressesIn(const sip_msg& message, const char* name);

/// The value of a parameter (";name=value", perhaps in quotes) in lower case; "" without a value or
/// parameter.
std::string ParameterIn(std::string_view parameters, std::string_view name);

}  // namespace orven
