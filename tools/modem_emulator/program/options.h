// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <chrono>
#include <iosfwd>
#include <string>
#include <vector>

#include "modem_emulator/modem_emulator.h"

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

/// What the program was started with.
struct Options {
  const ModemProfile* profile = nullptr;
  ModemFaults faults;
  std::vector<Step> script;
  std::string link;
  std::string captured;
  std::string spoken;
  std::string sent;
  std::chrono::seconds lifetime{300};
  bool times = false;  ///< reports end with " at SECONDS", and tell of rings and keys, too
};

/// Ends the program for --help and for what it does not know, with a sentence that says so.
Options ReadOptions(const QStringList& arguments);

}  // namespace orven::emulator
