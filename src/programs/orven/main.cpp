// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <QLocale>
#include <cstdlib>
#include <iostream>
#include <string>

#include "adapters/desktop/application.h"
#include "adapters/desktop/exit_requests.h"
#include "adapters/desktop/installation.h"
#include "programs/orven/check_up_ports.h"
#include "programs/orven/program.h"
#include "programs/orven/requests.h"
#include "widgets/translation.h"

namespace {

/// Everything after the program's name, as one text.
std::string CommandLine(int count, char** arguments) {
  std::string line;
  for (int i = 1; i < count; ++i) line += (i > 1 ? " " : "") + std::string(arguments[i]);
  return line;
}

int Print(const std::string& answer) {
  return std::cout << answer << std::flush ? EXIT_SUCCESS : EXIT_FAILURE;
}

int Check() {
  return orven::RunCheck(orven::FindApplicationFolder(orven::ProcessFolderHints()));
}

int RunMachine(const std::string& command_line) {
  const auto language = orven::ShowIn(QLocale::system().uiLanguages());
  const auto hints = orven::ProcessFolderHints();
  const auto folder = orven::FindApplicationFolder(hints);
  if (const auto problem = orven::MakeApplicationFolder(folder); !problem.empty()) {
    std::cerr << "ORVEN: " << problem << std::endl;
    return EXIT_FAILURE;
  }
  orven::Program program(
      {folder, hints.executable_folder, {orven::FindAssets(hints.executable_folder), language}});
  const orven::ExitSignals exit_signals([&] { program.Exit(); });
  const orven::QuitRequests quit_requests([&] {
    const bool ending = program.Ended();
    if (!ending) program.Exit();
    return !ending;
  });
  if (program.Start(command_line) && !program.Ended()) (void)QApplication::exec();
  return program.ExitCode();
}

}  // namespace

int main(int count, char** arguments) {
  if (const auto answer = orven::AnswerTo(CommandLine(count, arguments))) return Print(*answer);
  if (CommandLine(count, arguments) == "--check") {
    const QCoreApplication application(count, arguments);  // needs no display
    return Check();
  }
  orven::RaiseFileLimit();
  const auto application = orven::MakeApplication(count, arguments);
  const auto line = CommandLine(count, arguments);  // without Qt's own options
  if (const auto answer = orven::AnswerTo(line)) return Print(*answer);
  if (line == "--check") return Check();
  if (orven::IsStart(line)) return RunMachine(line);
  std::cerr << "ORVEN: there is no option \"" << line << "\"; orven --help lists all" << std::endl;
  return orven::kUsageError;
}
