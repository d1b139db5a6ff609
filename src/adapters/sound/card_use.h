// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pulse/stream.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "adapters/sound/sound_devices.h"
#include "platform/audio_device.h"

namespace orven {

/// One play or take on a sound card, with the client it serves (a source or a sink). The user-interface
/// thread starts and ends it; the sound thread has its stream. The lock is held only while the client is
/// called, never during a call into libpulse, so that a stop waits only for the client.
class CardUse : public std::enable_shared_from_this<CardUse> {
 public:
  using Report = std::function<void(const std::string&)>;

  virtual ~CardUse() = default;
  CardUse(const CardUse&) = delete;
  CardUse& operator=(const CardUse&) = delete;

  /// It has not ended. Any thread.
  bool Active() const;

  /// How long ago the card last moved a block, or the use began. Any thread.
  std::chrono::milliseconds SinceLastBlock() const;

  /// Ends it: afterwards neither the client nor the report is called. False when it had ended before. Any
  /// thread.
  bool Stop();

  /// Ends it because of `problem`, a sentence, which is reported, unless it had ended before. Any thread.
  void Fail(const std::string& problem);

  /// Opens the stream, unless it has ended meanwhile. Sound thread.
  void Open(pa_context* context, const SoundDevice& device);

  /// Closes the stream; audio that was not heard yet is discarded. Sound thread.
  void Close();

 protected:
  /// What the device is and does, in a sentence.
  struct Words {
    const char* device;
    const char* doing;
  };
  CardUse(Words words, Report report) : words_(words), report_(std::move(report)) {}

  /// Moves a block: calls `client` with the time, unless the use has ended. Returns what it does, whether the
  /// use goes on.
  template <class Client>
  std::optional<bool> Move(Client client) {
    const std::lock_guard lock(mutex_);
    if (!active_) return std::nullopt;
    last_block_ = Clock::now();
    return active_ = client(last_block_);
  }

  pa_stream* Stream() const { return stream_; }

 private:
  using Clock = std::chrono::steady_clock;

  /// Connects the new stream to the device; below 0 when that fails.
  virtual int Connect(const char* device) = 0;

  /// Tells the client that the card has ended the use.
  virtual void Gone() {}

  void StateChanged();
  void Ended();
  std::string Sentence(const std::string& what) const;

  const Words words_;
  const Report report_;
  mutable std::mutex mutex_;
  bool active_ = true;
  Clock::time_point last_block_ = Clock::now();

  // Sound thread.
  pa_stream* stream_ = nullptr;
  std::shared_ptr<CardUse> self_;  ///< while there is a stream, whose callbacks hold only a plain pointer
  std::string device_;             ///< for people
  bool opened_ = false;
};

/// Plays a source. The stream asks for each block; at the end of the source it stays open until all was
/// heard.
class CardPlay : public CardUse {
 public:
  CardPlay(AudioSource& source, Report report)
      : CardUse({"sound output", "playing"}, std::move(report)), source_(source), live_(source.Live()) {}

 private:
  int Connect(const char* device) override;
  void Gone() override { source_.Gone(); }
  void Feed(std::size_t room);
  void Drain();

  AudioSource& source_;
  const bool live_;
};

/// Records into a sink. A stop drops what the input has captured and not passed on: at most two blocks and
/// the input's own delay.
class CardTake : public CardUse {
 public:
  CardTake(AudioSink& sink, Report report)
      : CardUse({"microphone", "recording"}, std::move(report)), sink_(sink) {}

 private:
  int Connect(const char* device) override;
  void Collect();
  void Append(const std::byte* data, std::size_t bytes);

  AudioSink& sink_;
  std::array<std::int16_t, kBlockSamples> block_{};
  std::size_t filled_ = 0;  ///< bytes of the block
};

}  // namespace orven
