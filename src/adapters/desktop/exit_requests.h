// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace orven {

/// Turns the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) into one call on the
/// user-interface thread. Later signals change nothing: an exit under way is never cut off half-way
/// (SIGKILL remains for a process that hangs). SIGHUP stays ignored where it was (nohup). SIGPIPE
/// becomes ignored: a reader of our output that goes away must not end us.
///
/// At most one object at a time, made after the QCoreApplication on its thread. Its end restores the
/// earlier handling, unless a signal has come: then these signals are ignored for the short rest of
/// the process.
class ExitSignals {
 public:
  /// `on_exit` is called once, by the event loop, after the first signal; a signal that comes before
  /// the loop runs is kept for it. Throws std::system_error when the system has no file handles left.
  explicit ExitSignals(std::function<void()> on_exit);
  ~ExitSignals();
  ExitSignals(const ExitSignals&) = delete;
  ExitSignals& operator=(const ExitSignals&) = delete;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Hears of requests to end the application that are no signals: the end of the desktop's session. Qt
/// would answer them by closing the windows, and a window that only hides refuses that; then the
/// session's end would cut the program off. At most one object at a time, made after the QApplication;
/// user-interface thread.
class QuitRequests : public QObject {
 public:
  /// `on_request` returns true when it sees to the end itself, and false to let Qt close the windows.
  explicit QuitRequests(std::function<bool()> on_request);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<bool()> on_request_;
};

}  // namespace orven
