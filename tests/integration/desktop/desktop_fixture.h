// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <chrono>
#include <functional>

namespace orven {

/// Runs the event loop until `done` holds. False when that took longer than five seconds.
inline bool RunUntil(const std::function<bool()>& done) {
  QElapsedTimer waited;
  waited.start();
  QTimer wake;  // so that waiting for events never outlasts the limit
  wake.start(std::chrono::milliseconds(5));
  while (!done()) {
    if (waited.hasExpired(5000)) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace orven
