// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace orven {

/// Turns the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) into one call on the user-interface
/// thread. Later signals are ignored, so that they do not interrupt the exit (SIGKILL still ends a process
/// that hangs). SIGHUP stays ignored if it was (nohup). SIGPIPE is ignored: a closed output pipe must not end
/// the program.
///
/// At most one object at a time, made after the QCoreApplication on its thread. The destructor restores the
/// earlier handling, or ignores the signals for the rest of the process if one has come.
class ExitSignals {
 public:
  /// `on_exit` is called once, by the event loop, after the first signal; a signal that comes before the loop
  /// runs is not lost. Throws std::system_error when the system has no file descriptors left.
  explicit ExitSignals(std::function<void()> on_exit);
  ~ExitSignals();
  ExitSignals(const ExitSignals&) = delete;
  ExitSignals& operator=(const ExitSignals&) = delete;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Handles the end of the desktop's session. Qt would close the windows, but a window that only hides itself
/// refuses that, and the session's end would kill the program. At most one object at a time, made after the
/// QApplication; user-interface thread.
class QuitRequests : public QObject {
 public:
  /// `on_request` returns true if it ends the program itself, false to let Qt close the windows.
  explicit QuitRequests(std::function<bool()> on_request);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<bool()> on_request_;
};

}  // namespace orven
