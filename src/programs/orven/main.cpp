// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <cstdlib>
#include <iostream>
#include <string>

#include "adapters/desktop/application.h"
#include "adapters/desktop/exit_requests.h"
#include "adapters/desktop/installation.h"
#include "programs/orven/program.h"

namespace {

/// Everything after the program's name, as one text.
std::string CommandLine(int count, char** arguments) {
  std::string line;
  for (int i = 1; i < count; ++i) line += (i > 1 ? " " : "") + std::string(arguments[i]);
  return line;
}

}  // namespace

int main(int count, char** arguments) {
  const auto command_line = CommandLine(count, arguments);
  orven::RaiseFileLimit();
  const auto application = orven::MakeApplication(count, arguments);
  const auto hints = orven::ProcessFolderHints();
  const auto folder = orven::FindApplicationFolder(hints);
  if (const auto problem = orven::MakeApplicationFolder(folder); !problem.empty()) {
    std::cerr << "ORVEN: " << problem << std::endl;
    return EXIT_FAILURE;
  }
  orven::Program program({folder, hints.executable_folder, orven::FindAssets(hints.executable_folder)});
  const orven::ExitSignals exit_signals([&] { program.Exit(); });
  const orven::QuitRequests quit_requests([&] {
    const bool ending = program.Ended();
    if (!ending) program.Exit();
    return !ending;
  });
  if (!program.Start(command_line) || program.Ended()) return EXIT_SUCCESS;
  return QApplication::exec();
}
