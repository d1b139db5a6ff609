// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>

namespace orven {

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
