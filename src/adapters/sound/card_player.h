// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDevice>
#include <QAudioSink>
#include <QByteArray>
#include <array>
#include <chrono>
#include <memory>
#include <string>

#include "adapters/sound/card_format.h"
#include "adapters/sound/card_play.h"
#include "platform/audio_device.h"

namespace orven {

/// Plays one CardPlay on one output. The stream is open from the beginning until Close. Sound thread; every
/// call may wait for the sound server.
class CardPlayer {
 public:
  /// Opens the stream; when that fails, Problem says so.
  CardPlayer(const QAudioDevice& device, std::shared_ptr<CardPlay> play);

  /// Lets the thread's events run.
  ~CardPlayer() = default;
  CardPlayer(const CardPlayer&) = delete;
  CardPlayer& operator=(const CardPlayer&) = delete;

  /// Gives the output what it has room for; to be called every 20 ms. False when there is nothing left
  /// to do: the play was stopped, or it ended and all of it has been heard, or there is a Problem.
  bool Tick();

  /// Closes the stream; what has not been heard yet is cut off.
  void Close() { sink_.reset(); }

  /// Why the stream cannot play (on), as a sentence; empty while it can.
  const std::string& Problem() const { return problem_; }

  const QAudioDevice& Device() const { return device_; }
  CardPlay& Play() { return *play_; }

 private:
  bool Feed();
  bool HasRoom();
  void Write();
  bool Draining();

  QAudioDevice device_;
  std::shared_ptr<CardPlay> play_;
  CardConverter converter_;
  QAudioSink sink_;
  const qint32 block_bytes_;
  QIODevice* stream_ = nullptr;  ///< the sink's own
  QByteArray pending_;           ///< converted, not taken by the sink yet
  std::array<std::int16_t, kBlockSamples> block_{};
  bool ended_ = false;
  CardPlay::Clock::time_point ended_at_;
  std::string problem_;
};

}  // namespace orven
