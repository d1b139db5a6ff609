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

/// The connected output with this id, or a null one. Sound thread; may wait for the sound server.
QAudioDevice OutputOf(const std::string& id);

/// The same for inputs.
QAudioDevice InputOf(const std::string& id);

/// A stream to or from one sound device, open until Close. The destructor lets the thread's events run. Sound
/// thread; every call may wait for the sound server.
class CardStream {
 public:
  virtual ~CardStream() = default;

  /// Transfers the available audio; call it every 20 ms. False when nothing is left to do, or there is a
  /// Problem.
  virtual bool Tick() = 0;

  virtual void Close() = 0;

  /// Why the stream failed, as a sentence; empty while it works.
  const std::string& Problem() const { return problem_; }

  /// Ends the play or take, because of the Problem. False when it was over already.
  virtual bool Fail() = 0;

 protected:
  /// `kind` is what the device is, in a sentence.
  CardStream(const char* kind, const QAudioDevice& device) : kind_(kind), device_(device) {}

  std::string DeviceId() const { return device_.id().toStdString(); }

  /// The Problem is that the device `what`.
  void Break(const std::string& what);

  /// False when there is a Problem, perhaps a new one: the device, `now` in the list, is not there any more,
  /// or the stream has stopped. `doing` is what it does, in a sentence.
  bool Works(const QAudioDevice& now, QAudio::State state, const std::string& doing);

 private:
  const char* kind_;
  QAudioDevice device_;
  std::string problem_;
};

/// Plays one CardPlay on one output.
class CardPlayer : public CardStream {
 public:
  /// Opens the stream; when that fails, there is a Problem.
  CardPlayer(const QAudioDevice& device, std::shared_ptr<CardPlay> play);

  CardPlayer(const CardPlayer&) = delete;
  CardPlayer& operator=(const CardPlayer&) = delete;

  /// Writes what the output has room for. Nothing is left to do when the play was stopped, or when it ended
  /// and was heard to its end.
  bool Tick() override;

  /// Discards audio that was not heard yet.
  void Close() override { sink_.reset(); }

  bool Fail() override { return play_->Fail(); }

 private:
  bool Feed();
  bool HasRoom();
  void Write();
  bool Draining();

  std::shared_ptr<CardPlay> play_;
  CardConverter converter_;
  QAudioSink sink_;
  const qint32 block_bytes_;
  QIODevice* stream_ = nullptr;  ///< the sink's own
  QByteArray pending_;           ///< converted, not written to the sink yet
  std::array<std::int16_t, kBlockSamples> block_{};
  bool ended_ = false;
  CardPlay::Clock::time_point ended_at_;
};

/// Records one CardTake from one input.
///
/// A stop drops the audio that the input has captured and not passed on: at most its period and one tick (20
/// ms each), part of a block, and what the converter holds back (up to 6 ms).
class CardRecorder : public CardStream {
 public:
  /// Opens the stream; when that fails, there is a Problem.
  CardRecorder(const QAudioDevice& device, std::shared_ptr<CardTake> take);

  CardRecorder(const CardRecorder&) = delete;
  CardRecorder& operator=(const CardRecorder&) = delete;

  /// Passes on what was captured. Nothing is left to do when the take was stopped.
  bool Tick() override;
  void Close() override { source_.reset(); }
  bool Fail() override { return take_->Fail(); }

 private:
  bool HandOver();

  std::shared_ptr<CardTake> take_;
  CaptureConverter converter_;
  QAudioSource source_;
  QIODevice* stream_ = nullptr;        ///< the source's own
  std::vector<std::int16_t> pending_;  ///< captured, less than a block
};

}  // namespace orven
