// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_firmware.h"

#include <cctype>
#include <cstdio>
#include <optional>
#include <tuple>

namespace orven {
namespace {

using Version = std::tuple<int, int, int>;

/// From here on this one does not miss rings and caller ids any more, as those who use it report.
constexpr Version kMended{1, 2, 23};

/// The first number of three parts.
std::optional<Version> VersionIn(const std::string& text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto is_digit = [&text](std::size_t i) {
      return std::isdigit(static_cast<unsigned char>(text[i])) != 0;
    };
    if (!is_digit(at) || (at > 0 && is_digit(at - 1))) continue;
    int major = 0;
    int minor = 0;
    int patch = 0;
    if (std::sscanf(text.c_str() + at, "%3d.%3d.%3d", &major, &minor, &patch) == 3)
      return Version(major, minor, patch);
  }
  return std::nullopt;
}

}  // namespace

std::string FirmwareAdvice(const std::string& identity) {
  if (identity.find("5637") == std::string::npos) return "";
  const auto version = VersionIn(identity);
  if (!version || *version >= kMended) return "";
  return "Its firmware misses rings and caller ids; from 1.2.23 on it does not";
}

}  // namespace orven
