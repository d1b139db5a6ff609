// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDevice>
#include <QAudioSink>
#include <QAudioSource>
#include <QByteArray>
#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/sound/card_format.h"
#include "adapters/sound/card_use.h"
#include "platform/audio_device.h"

namespace orven {

/// The output with this id that is there now, or a null one. Sound thread; may wait for the sound server.
QAudioDevice OutputOf(const std::string& id);

/// The same for inputs.
QAudioDevice InputOf(const std::string& id);

/// What a device is told to have done that cannot be used although it is there.
inline constexpr const char* kNotOpened =
    "could not be opened. If the sound server was restarted, ORVEN has to be, too.";

/// "The KIND "DESCRIPTION" WHAT", to begin a sentence about a device.
std::string Told(const char* kind, const QAudioDevice& device, const char* what);

/// An open stream to or from one sound device. It is open from the beginning until Close; the destructor
/// lets the thread's events run. Sound thread; every call may wait for the sound server.
class CardStream {
 public:
  virtual ~CardStream() = default;

  /// Moves what can be moved; to be called every 20 ms. False when there is nothing left to do, or there
  /// is a Problem.
  virtual bool Tick() = 0;

  virtual void Close() = 0;

  /// Why the stream does not go (on), as a sentence; empty while it does.
  virtual const std::string& Problem() const = 0;

  /// Ends the play or take, because of the Problem. False when it was over already.
  virtual bool Fail() = 0;
};

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

/// Records one CardTake from one input.
///
/// A stop does not wait for what the input has captured but not handed over: at most the input's period
/// and one tick (20 ms each), less than one block, and what the converter holds back (up to 6 ms).
class CardRecorder : public CardStream {
 public:
  /// Opens the stream; when that fails, Problem says so.
  CardRecorder(const QAudioDevice& device, std::shared_ptr<CardTake> take);

  CardRecorder(const CardRecorder&) = delete;
  CardRecorder& operator=(const CardRecorder&) = delete;

  /// Hands over what has been captured. Nothing is left to do when the take was stopped.
  bool Tick() override;
  void Close() override { source_.reset(); }
  const std::string& Problem() const override { return problem_; }
  bool Fail() override { return take_->Fail(); }

 private:
  void Check();
  bool HandOver();

  QAudioDevice device_;
  std::shared_ptr<CardTake> take_;
  CaptureConverter converter_;
  QAudioSource source_;
  QIODevice* stream_ = nullptr;        ///< the source's own
  std::vector<std::int16_t> pending_;  ///< captured, less than a block
  std::string problem_;
};

}  // namespace orven
