// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orven {

/// One English sentence for a result of playing; an unknown code is named by its number.
std::string PlayResultText(std::int32_t code);

/// The same for a result of recording.
std::string RecordResultText(std::int32_t code);

}  // namespace orven
