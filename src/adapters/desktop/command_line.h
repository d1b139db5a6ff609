// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orven {

/// The program and the arguments in one line of text. Blanks separate them; double quotes keep one
/// together and are taken away, so that "" is an empty argument; a quote that is not closed reaches to
/// the end. No other character means anything.
std::vector<std::string> SplitCommandLine(std::string_view line);

/// Names and values of environment variables.
using Environment = std::vector<std::pair<std::string, std::string>>;

/// Sees to it that a program started from now on inherits standard input, output and error only. Libraries
/// open sockets that would pass on; a program that outlives this one would keep the line's address with them.
void KeepFilesFromPrograms();

/// Starts the program in `line` as a process of its own, through no command interpreter, in the folder
/// of this process and with its environment. Throws as Shell::Run. There is no window style here:
/// programs decide about their windows themselves on this platform.
void StartCommandLine(const std::string& line);

/// The same for a line that has been split; the program gets the variables in `added` besides ours.
void StartProgram(const std::vector<std::string>& parts, const Environment& added);

}  // namespace orven
