// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "adapters/line/service/lines_file.h"
#include "adapters/line/service/lines_text.h"
#include "platform/telephone_lines.h"

namespace orven {

/// A section of `lines.ini` as a person knows it; `origin` is its line number.
TelephoneLine LineOf(const LineSection& section);

/// The same backwards: the values that `line` shall have in the file. A value that is the default is
/// written only where `before`, the section that it changes, has it; nullptr for a new one.
LineEdit EditOf(const TelephoneLine& line, const LineSection* before);

/// What keeps `line` from being stored or used. What is stored must be read again as it was given.
std::optional<LineFault> FaultOf(const TelephoneLine& line);

}  // namespace orven
