// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QThread>
#include <functional>
#include <memory>

namespace orven {

/// A thread with Qt's event loop for everything that may wait for the sound server. Nobody ever waits
/// for it, save for a second at the end. Needs a QCoreApplication. User-interface thread, but Post from
/// any.
class SoundThread {
 public:
  SoundThread();

  /// Ends the thread after what has been posted. A thread that does not end within a second hangs in
  /// the sound server: it is left behind until the process ends, with everything that its tasks own.
  ~SoundThread();
  SoundThread(const SoundThread&) = delete;
  SoundThread& operator=(const SoundThread&) = delete;

  /// Runs `task` in the thread, after those posted before. It must own what it uses.
  void Post(std::function<void()> task);

 private:
  std::unique_ptr<QThread> thread_;
  std::unique_ptr<QObject> context_;  ///< lives in the thread and receives the tasks
};

}  // namespace orven
