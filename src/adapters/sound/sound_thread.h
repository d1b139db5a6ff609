// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "adapters/sound/card_list.h"
#include "base/worker.h"

namespace orven {

class SoundServer;

/// The sound thread: it runs libpulse's event loop, in which the connection to the sound server and all
/// streams live. The loop waits for events only; what may block is looking up a server in the network and
/// starting one. User-interface thread; no call but the destructor waits for the thread.
class SoundThread {
 public:
  using Task = std::function<void(SoundServer&)>;  ///< owns what it uses

  explicit SoundThread(std::shared_ptr<CardList> cards);

  /// Closes all streams. Waits for the thread, but at most a second; a thread that hangs longer is left
  /// behind.
  ~SoundThread();
  SoundThread(const SoundThread&) = delete;
  SoundThread& operator=(const SoundThread&) = delete;

  /// Runs `task` in the thread, after those posted before.
  void Post(Task task);

 private:
  class Inbox;
  std::shared_ptr<Inbox> inbox_;  ///< also the thread's
  Worker worker_;
};

}  // namespace orven
