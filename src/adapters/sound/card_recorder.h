// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDevice>
#include <QAudioSource>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/sound/capture_converter.h"
#include "adapters/sound/card_stream.h"
#include "adapters/sound/card_take.h"

namespace orven {

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
