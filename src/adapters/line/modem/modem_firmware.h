// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// What its owner should know of the firmware of the modem that calls itself `identity` (its answers to ATI
/// and the like); empty when there is nothing.
std::string FirmwareAdvice(const std::string& identity);

}  // namespace orven
