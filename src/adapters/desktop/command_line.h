// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/shell.h"

namespace orven {

/// Splits a line into a program and its arguments. Blanks separate them; double quotes keep blanks and are
/// removed, so that "" is an empty argument; a quote that is not closed reaches to the end. No other
/// character has a meaning.
std::vector<std::string> SplitCommandLine(std::string_view line);

/// Programs started from now on inherit standard input, output and error only. Otherwise the sockets that
/// libraries open would keep the line's address in use if such a program outlives this one.
void KeepFilesFromPrograms();

/// Starts the program parts[0] with the other parts as arguments, as a separate process in this process's
/// folder and with its environment plus `added`; no shell is involved. Throws as Shell::Run.
void StartProgram(const std::vector<std::string>& parts, const Environment& added);

}  // namespace orven
