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
#include "adapters/sound/card_stream.h"
#include "platform/audio_device.h"

namespace orven {

/// Plays one CardPlay on one output.
class CardPlayer : public CardStream {
 public:
  /// Opens the stream; when that fails, Problem says so.
  CardPlayer(const QAudioDevice& device, std::shared_ptr<CardPlay> play);

  CardPlayer(const CardPlayer&) = delete;
  CardPlayer& operator=(const CardPlayer&) = delete;

  /// Gives the output what it has room for. Nothing is left to do when the play was stopped, or when it
  /// ended and all of it has been heard.
  bool Tick() override;

  /// What has not been heard yet is cut off.
  void Close() override { sink_.reset(); }

  const std::string& Problem() const override { return problem_; }
  bool Fail() override { return play_->Fail(); }

 private:
  void Check();
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
