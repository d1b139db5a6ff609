// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <chrono>
#include <iosfwd>
#include <string>
#include <vector>

#include "modem_emulator/modem_emulator.h"

namespace orven::emulator {
/// A step of a script, on the line or the modem: "ring", "press 12#", "say hello.wav" …
struct Step {
  std::chrono::milliseconds at{0};  ///< since the start
  std::string verb;
  std::string rest;  ///< the text after the verb
};

/// Parses "VERB REST". Throws std::runtime_error for an unknown verb.
Step ReadStep(const std::string& text);

/// Parses lines of "SECONDS VERB REST"; skips empty lines and those that start with '#'. Throws
/// std::runtime_error with the number of the invalid line.
std::vector<Step> ReadScript(std::istream& in);

/// The verbs and their meaning, one per line.
std::string ScriptHelp();

/// The program's options.
struct Options {
  const ModemProfile* profile = nullptr;
  ModemFaults faults;
  std::vector<Step> script;
  std::string link;
  std::string captured;
  std::string spoken;
  std::string sent;
  std::chrono::seconds lifetime{300};
  bool times = false;  ///< reports end with " at SECONDS" and include rings and keys
};

/// Ends the program for --help, and for invalid options with a sentence that says so.
Options ReadOptions(const QStringList& arguments);

}  // namespace orven::emulator
