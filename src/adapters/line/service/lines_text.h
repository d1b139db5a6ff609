// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/service/lines_file.h"

namespace orven {

/// One telephone line as `lines.ini` shall have it.
struct LineEdit {
  int head = 0;      ///< LineSection::line_number of the section that it changes; 0 for a new one
  std::string name;  ///< the device name
  std::string type;  ///< sip, modem or sim
  std::map<std::string, std::string> values;  ///< every key that shall have a value
};

/// A whole section, as it is appended.
std::string SectionText(const LineEdit& line);

/// The text of a `lines.ini` after its usable sections `before` (as ParseLines found them in `text`)
/// became `after`: a section that is not in `after` goes, new ones are appended, and of the others only
/// the lines change whose values do. Comments, the order, and what ParseLines did not understand stay;
/// so do the line ends.
std::string EditLines(std::string_view text, const std::vector<LineSection>& before,
                      const std::vector<LineEdit>& after);

}  // namespace orven
