// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <chrono>
#include <string>
#include <vector>

#include "modem_emulator/modem_emulator.h"
#include "modem_emulator/program/call_script.h"

namespace orven::emulator {

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
