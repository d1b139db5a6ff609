// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace orven {

/// A thread with Qt's event loop for everything that may wait for the sound server. No other thread waits for
/// it, except for a second at the end. Needs a QCoreApplication. User-interface thread; Post from any thread.
class SoundThread {
 public:
  /// `at_end` runs in the thread after its last task, outside the event loop.
  explicit SoundThread(std::function<void()> at_end);

  /// Ends the thread after the posted tasks. A thread that does not end within a second hangs in the sound
  /// server: it is left behind until the process ends, with everything that its tasks own. From now on the
  /// process ends without the destructors of globals.
  ~SoundThread();

  /// Leaves a hanging thread behind for good, without waiting. If it wakes up, it runs the posted tasks and
  /// then idles: Qt Multimedia keeps objects in it that all threads need.
  static void Abandon(std::unique_ptr<SoundThread> thread);

  SoundThread(const SoundThread&) = delete;
  SoundThread& operator=(const SoundThread&) = delete;

  /// Runs `task` in the thread, after those posted before. Like `at_end`, it must own what it uses.
  void Post(std::function<void()> task);

 private:
  class Thread;
  void Leave();

  std::unique_ptr<Thread> thread_;
  std::unique_ptr<QObject> context_;  ///< lives in the thread and receives the tasks
};

}  // namespace orven
