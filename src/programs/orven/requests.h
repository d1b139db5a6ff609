// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orven {

/// The process's exit code for a command line that asks for nothing the program does.
inline constexpr int kUsageError = 2;

/// What --help or --version print, when `line` asks for one of them. Lines are everything after the program's
/// name, as one text; these two need no display, no application folder and no QApplication.
std::optional<std::string> AnswerTo(std::string_view line);

/// Whether `line` starts the machine: an empty one or "-st". Only exactly "-st" starts it hidden
/// (EntryRoutine), but in upper case or with blanks around it shows the window and is no mistake.
bool IsStart(std::string_view line);

}  // namespace orven
