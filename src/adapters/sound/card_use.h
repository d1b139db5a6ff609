// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>

#include "platform/audio_device.h"

namespace orven {

/// One use of a sound card by one client, a source that is played or a sink that is recorded into, where
/// the sound thread and the thread that starts and stops meet. Its lock is held only while the client is
/// being called, never during a call into the sound system, so that whoever stops a use waits for nothing
/// else. Any thread.
template <class Client>
class CardUse {
 public:
  using Clock = std::chrono::steady_clock;

  explicit CardUse(Client& client) : client_(&client), last_block_(Clock::now()) {}

  /// Ends the use; when it returns, the client is not being called and will not be.
  void Stop() {
    const std::lock_guard lock(mutex_);
    client_ = nullptr;
  }

  /// The client has neither ended nor been taken away.
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

  /// Ends the play and tells the source so. False when it was over already.
  bool Fail();
};

/// One take from a sound card's microphone into one sink. Any thread.
class CardTake : public CardUse<AudioSink> {
 public:
  using CardUse::CardUse;

  /// Hands the sink its next block. False when the take is over.
  bool Write(std::span<const std::int16_t> block);

  /// Ends the take, as no more blocks will come. False when it was over already.
  bool Fail();
};

}  // namespace orven
