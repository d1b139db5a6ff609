// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>

#include "platform/audio_device.h"

namespace orven {

/// One use of a sound card by one client (a source that is played, or a sink that is recorded into), shared
/// by the sound thread and the thread that starts and stops it. Its lock is held only while the client is
/// called, never during a call into the sound system, so that a stop waits only for the client. Any thread.
template <class Client>
class CardUse {
 public:
  using Clock = std::chrono::steady_clock;

  explicit CardUse(Client& client) : client_(&client), last_block_(Clock::now()) {}

  /// Ends the use: after it returns the client is no longer called.
  void Stop() {
    const std::lock_guard lock(mutex_);
    client_ = nullptr;
  }

  /// The use has not ended.
  bool Active() const {
    const std::lock_guard lock(mutex_);
    return client_ != nullptr;
  }

  /// How long ago the card last moved a block, or the use began.
  std::chrono::milliseconds SinceLastBlock() const {
    const std::lock_guard lock(mutex_);
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - last_block_);
  }

 protected:
  mutable std::mutex mutex_;
  Client* client_;  ///< nullptr when the use is over
  Clock::time_point last_block_;
};

/// One play of one source on a sound card. Any thread.
class CardPlay : public CardUse<AudioSource> {
 public:
  enum class Got { Block, End, Stopped };

  using CardUse::CardUse;

  /// The next block: Block; End when the source has none left (once); Stopped when the play is over.
  Got Read(std::span<std::int16_t> block);

  /// Ends the play and tells the source (Gone). False when it was over already.
  bool Fail();
};

/// One take from a sound card's microphone into one sink. Any thread.
class CardTake : public CardUse<AudioSink> {
 public:
  using CardUse::CardUse;

  /// Passes the next block to the sink. False when the take is over.
  bool Write(std::span<const std::int16_t> block);

  /// Ends the take, because no more blocks will come. False when it was over already.
  bool Fail();
};

}  // namespace orven
