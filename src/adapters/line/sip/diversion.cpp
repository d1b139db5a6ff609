// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/diversion.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "adapters/line/sip/name_address.h"
#include "base/text.h"
#include "base/unicode.h"

namespace orven {
namespace {

using Phrase = std::pair<std::string_view, std::string_view>;

/// The reasons of RFC 5806, section 4, that are not plain words when their hyphens are blanks.
constexpr std::array kReasons{Phrase{"unknown", ""}, Phrase{"user-busy", "busy"},
                              Phrase{"unconditional", "always"}, Phrase{"deflection", "deflected"}};

/// The causes of RFC 4458, section 2, which are the status codes of the first destination.
constexpr std::array kCauses{Phrase{"302", "always"},      Phrase{"404", "unavailable"},
                             Phrase{"408", "no answer"},   Phrase{"480", "deflected"},
                             Phrase{"486", "busy"},        Phrase{"487", "deflected"},
                             Phrase{"503", "unavailable"}, Phrase{"600", "busy"}};

std::string_view WordsFor(std::string_view code, std::span<const Phrase> known, std::string_view otherwise) {
  const auto found = std::ranges::find(known, code, &Phrase::first);
  return found != known.end() ? found->second : otherwise;
}

std::string WhoOf(const NameAddress& address) {
  return address.user.empty() ? address.name : address.user;
}

Diversion ReadDiversion(const NameAddress& by) {
  const std::string privacy = ParameterIn(by.parameters, "privacy");
  const std::string reason = Utf8FromUnknown(ParameterIn(by.parameters, "reason"));
  std::string plain = reason;
  std::ranges::replace(plain, '-', ' ');
  const bool withheld = privacy == "full" || privacy == "uri";
  return {withheld ? "" : WhoOf(by), std::string(WordsFor(reason, kReasons, plain))};
}

/// The cause in the Reason that an entry got when the call left it: "Reason=SIP%3Bcause%3D302&…".
std::string CauseOf(const NameAddress& left) {
  for (const std::string& header : Split(left.uri_headers, '&')) {
    if (!Lower(header).starts_with("reason=")) continue;
    return ParameterIn(PercentDecoded(header).value_or(""), "cause");
  }
  return {};
}

/// The latest step to another destination: its entry tells the cause (RFC 4458), or that the destination is
/// another one ("mp"), or the entry before it why the call left. Other steps only look for the same person.
std::optional<Diversion> ReadHistory(const std::vector<std::string_view>& values) {
  std::vector<NameAddress> entries;
  for (const std::string_view value : values) entries.push_back(ReadNameAddress(value));
  for (std::size_t i = entries.size(); i-- > 1;) {
    const NameAddress &left = entries[i - 1], &to = entries[i];
    std::string cause = ParameterIn(to.uri_parameters, "cause");
    if (cause.empty()) cause = CauseOf(left);
    if (cause.empty() && ParameterIn(to.parameters, "mp").empty()) continue;
    const bool withheld = Lower(left.uri_headers).find("privacy=history") != std::string::npos;
    return Diversion{withheld ? "" : WhoOf(left), std::string(WordsFor(cause, kCauses, ""))};
  }
  return std::nullopt;
}

}  // namespace

std::optional<Diversion> DiversionIn(const std::vector<std::string_view>& diversions,
                                     const std::vector<std::string_view>& history) {
  for (const std::string_view value : diversions) {
    const NameAddress by = ReadNameAddress(value);
    if (!by.scheme.empty()) return ReadDiversion(by);
  }
  return ReadHistory(history);
}

std::optional<Diversion> DiversionIn(const sip_msg& invite) {
  return DiversionIn(AddressesIn(invite, "Diversion"), AddressesIn(invite, "History-Info"));
}

}  // namespace orven
