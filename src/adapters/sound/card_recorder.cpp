// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_recorder.h"

#include <span>
#include <utility>

#include "adapters/sound/card_format.h"
#include "adapters/sound/sound_device.h"
#include "platform/audio_device.h"

namespace orven {
namespace {

constexpr const char* kKind = "microphone";

/// How often the input hands over what it has captured: a block, so that the level follows the voice and
/// little is lost at a stop.
constexpr qint64 kPeriodMicroseconds = 1'000'000LL * kBlockSamples / kSampleRate;

}  // namespace

CardRecorder::CardRecorder(const QAudioDevice& device, std::shared_ptr<CardTake> take)
    : device_(device),
      take_(std::move(take)),
      converter_(CardFormatOf(device)),
      source_(device, CardFormatOf(device)) {
  source_.setBufferSize(source_.format().bytesForDuration(kPeriodMicroseconds));
  if (converter_.Valid()) stream_ = source_.start();
  if (stream_ == nullptr || source_.error() != QAudio::NoError) problem_ = Told(kKind, device_, kNotOpened);
}

bool CardRecorder::Tick() {
  if (problem_.empty()) Check();
  return problem_.empty() && take_->Active() && HandOver();
}

void CardRecorder::Check() {
  // The server may go on with another input; nobody chose that one.
  if (InputOf(device_.id().toStdString()).isNull()) {
    problem_ = Told(kKind, device_, "went away while it was recording.");
  } else if (source_.state() == QAudio::StoppedState) {
    problem_ = Told(kKind, device_, "stopped while it was recording; perhaps the sound server ended.");
  }
}

bool CardRecorder::HandOver() {
  const auto captured = converter_.Convert(stream_->readAll());
  pending_.insert(pending_.end(), captured.begin(), captured.end());
  std::size_t done = 0;
  for (; pending_.size() - done >= kBlockSamples; done += kBlockSamples)
    if (!take_->Write(std::span(pending_).subspan(done, kBlockSamples))) return false;
  pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(done));
  return true;
}

}  // namespace orven
