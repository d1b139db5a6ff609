// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <iosfwd>
#include <string>
#include <vector>

namespace orven::emulator {

/// Something that happens on the line, or to the modem: "ring", "press 12#", "say hello.wav" …
struct Step {
  std::chrono::milliseconds at{0};  ///< since the beginning
  std::string verb;
  std::string rest;  ///< behind the verb
};

/// "VERB REST". Throws std::runtime_error for a verb that there is not.
Step ReadStep(const std::string& text);

/// Lines of "SECONDS VERB REST"; empty ones and those that begin with '#' are passed over. Throws
/// std::runtime_error with the number of the line that is wrong.
std::vector<Step> ReadScript(std::istream& in);

/// The verbs that there are, one a line with what they do.
std::string ScriptHelp();

}  // namespace orven::emulator
