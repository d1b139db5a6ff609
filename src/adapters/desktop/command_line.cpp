// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/command_line.h"

#include <pthread.h>
#include <unistd.h>

#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include "base/runtime_error.h"

namespace orven {
namespace {

/// The file of a program: a path stays as it is, a name is looked up in PATH.
QString FileOf(const QString& program) {
  if (program.contains(u'/')) return program;
  const QString found = QStandardPaths::findExecutable(program);
  return found.isEmpty() ? program : found;
}

/// Marks open files to be closed when the process executes another program.
void CloseOnExec() {
  ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
}

}  // namespace

void KeepFilesFromPrograms() {
  // The child marks its files after fork, because other threads may open sockets until then. This process
  // marks them now as well, because newer versions of Qt use vfork, which does not call fork handlers.
  static const int registered = ::pthread_atfork(nullptr, nullptr, CloseOnExec);
  (void)registered;
  CloseOnExec();
}

std::vector<std::string> SplitCommandLine(std::string_view line) {
  std::vector<std::string> parts;
  bool inside = false;  // inside an argument, which may be empty
  bool quoted = false;
  for (const char letter : line) {
    const bool blank = letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
    if (blank && !quoted) {
      inside = false;
      continue;
    }
    if (!inside) parts.emplace_back();
    inside = true;
    if (letter == '"') {
      quoted = !quoted;
    } else {
      parts.back() += letter;
    }
  }
  return parts;
}

void StartProgram(const std::vector<std::string>& parts, const Environment& added) {
  if (parts.empty() || parts.front().empty()) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the command is empty");
  }
  const QFileInfo file(FileOf(QString::fromStdString(parts.front())));
  if (!file.exists()) throw RuntimeError(ErrorNumber::FileNotFound, parts.front());
  if (file.isDir() || !file.isExecutable()) {
    throw RuntimeError(ErrorNumber::PermissionDenied, parts.front() + " (not a program)");
  }
  KeepFilesFromPrograms();
  QProcess process;
  process.setProgram(file.filePath());
  QStringList arguments;
  for (std::size_t i = 1; i < parts.size(); ++i) arguments << QString::fromStdString(parts[i]);
  process.setArguments(arguments);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const auto& [name, value] : added) {
    environment.insert(QString::fromStdString(name), QString::fromStdString(value));
  }
  if (!added.empty()) process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  if (!process.startDetached()) {
    throw RuntimeError(ErrorNumber::PermissionDenied,
                       parts.front() + " (" + process.errorString().toStdString() + ")");
  }
}

}  // namespace orven
