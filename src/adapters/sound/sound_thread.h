// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace orven {

/// A thread with Qt's event loop for everything that may wait for the sound server. Nobody ever waits
/// for it, save for a second at the end. Needs a QCoreApplication. User-interface thread, but Post from
/// any.
class SoundThread {
 public:
  /// `at_end` runs in the thread after its last task, when no event is being handled.
  explicit SoundThread(std::function<void()> at_end);

  /// Ends the thread after what has been posted. A thread that does not end within a second hangs in
  /// the sound server: it is left behind until the process ends, with everything that its tasks own.
  /// When the process ends, the destructors of globals are not run from now on.
  ~SoundThread();

  /// Leaves a thread that hangs behind for good, without waiting. Should it come to, it goes on with what
  /// has been posted and then idles: Qt's sound library has made it the home of objects that all threads
  /// need.
  static void Abandon(std::unique_ptr<SoundThread> thread);

  SoundThread(const SoundThread&) = delete;
  SoundThread& operator=(const SoundThread&) = delete;

  /// Runs `task` in the thread, after those posted before. It must own what it uses, as
  /// must `at_end`.
  void Post(std::function<void()> task);

 private:
  class Thread;
  void Leave();

  std::unique_ptr<Thread> thread_;
  std::unique_ptr<QObject> context_;  ///< lives in the thread and receives the tasks
};

}  // namespace orven
