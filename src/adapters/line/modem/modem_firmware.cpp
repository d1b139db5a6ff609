// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_firmware.h"

#include <regex>
#include <tuple>

namespace orven {

std::string FirmwareAdvice(const std::string& identity) {
  // Reported by those who use this one: up to 1.2.22 it misses rings and caller ids.
  static const std::regex kVersion(R"((\d{1,3})\.(\d{1,3})\.(\d{1,3}))");
  std::smatch found;
  if (identity.find("5637") == std::string::npos || !std::regex_search(identity, found, kVersion)) return "";
  const auto number = [&found](std::size_t part) { return std::stoi(found[part].str()); };
  if (std::tuple(number(1), number(2), number(3)) >= std::tuple(1, 2, 23)) return "";
  return "Its firmware " + found.str() + " misses rings and caller ids; from 1.2.23 on it does not";
}

}  // namespace orven
