// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/requests.h"

#include "base/text.h"
#include "core/mMain.h"

namespace orven {
namespace {

constexpr const char* kHelp = R"(usage: orven [OPTION]
A telephone answering machine: opens its window and watches the telephone line.

  -st        start hidden in the notification area, as at login
  --check    check the machine that runs, or what can be checked without it
  --help     print this and end
  --version  print the version and end

Qt's own options, such as -platform and -style, are understood, too.

Environment:
  ORVEN_HOME       the application folder (settings, messages, greetings, records)
  XDG_DATA_HOME    without ORVEN_HOME it is the folder orven in this one (~/.local/share)
  XDG_CONFIG_HOME  has the entry that starts the program at login (~/.config)
  QT_QPA_PLATFORM  "offscreen" keeps the program from looking for a display

Exit status:
  0  the program was ended, or another instance runs in the application folder
  1  the application folder cannot be made, the line could never be opened, or --check found a fault
  2  the command line asks for something else

The manual page orven(1) says more.
)";

}  // namespace

std::optional<std::string> AnswerTo(std::string_view line) {
  if (line == "--help") return kHelp;
  if (line == "--version") return std::string("ORVEN ") + kApplicationVersion + "\n";
  return std::nullopt;
}

bool IsStart(std::string_view line) {
  const auto words = Lower(Trimmed(line));
  return words.empty() || words == "-st";
}

}  // namespace orven
