// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_stream.h"

#include <QList>
#include <QMediaDevices>
#include <span>
#include <utility>

#include "adapters/sound/card_format.h"
#include "platform/audio_device.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

QAudioDevice Among(const QList<QAudioDevice>& devices, const std::string& id) {
  for (const QAudioDevice& device : devices)
    if (device.id().toStdString() == id) return device;
  return {};
}

/// The maximum number of blocks read in one tick: two make up for a late tick, but do not empty a source that
/// is being recorded at this moment.
constexpr int kMostBlocks = 2;

constexpr qint64 kBlockMicroseconds = 1'000'000LL * kBlockSamples / kSampleRate;

/// Limit for an output to play the rest of its buffer.
constexpr auto kDrainLimit = 2s;

constexpr const char* kOutput = "sound output";

constexpr const char* kMicrophone = "microphone";

/// The input's period: one block, so that the level follows the voice and little is lost at a stop.
constexpr qint64 kPeriodMicroseconds = 1'000'000LL * kBlockSamples / kSampleRate;

}  // namespace

QAudioDevice OutputOf(const std::string& id) {
  return Among(QMediaDevices::audioOutputs(), id);
}

QAudioDevice InputOf(const std::string& id) {
  return Among(QMediaDevices::audioInputs(), id);
}

std::string Told(const char* kind, const QAudioDevice& device, const char* what) {
  return std::string("The ") + kind + " \"" + device.description().toStdString() + "\" " + what;
}

CardPlayer::CardPlayer(const QAudioDevice& device, std::shared_ptr<CardPlay> play)
    : device_(device),
      play_(std::move(play)),
      converter_(CardFormatOf(device)),
      sink_(device, CardFormatOf(device)),
      block_bytes_(sink_.format().bytesForDuration(kBlockMicroseconds)) {
  if (converter_.Valid()) stream_ = sink_.start();
  if (stream_ == nullptr || sink_.error() != QAudio::NoError) problem_ = Told(kOutput, device_, kNotOpened);
}

bool CardPlayer::Tick() {
  if (problem_.empty()) Check();
  if (!problem_.empty()) return false;
  return ended_ ? Draining() : Feed();
}

void CardPlayer::Check() {
  // The server may move a stream to another output when its own was unplugged; the user did not choose that
  // one for messages.
  if (OutputOf(device_.id().toStdString()).isNull()) {
    problem_ = Told(kOutput, device_, "was disconnected while it was playing.");
  } else if (sink_.state() == QAudio::StoppedState) {
    problem_ = Told(kOutput, device_, "stopped while it was playing; perhaps the sound server ended.");
  }
}

bool CardPlayer::Feed() {
  for (int blocks = 0; blocks < kMostBlocks && HasRoom(); ++blocks) {
    const auto got = play_->Read(block_);
    if (got == CardPlay::Got::Stopped) return false;
    ended_ = got == CardPlay::Got::End;
    pending_ = ended_ ? converter_.Flush() : converter_.Convert(block_);
    Write();
    if (!ended_) continue;
    ended_at_ = CardPlay::Clock::now();
    break;
  }
  return true;
}

/// All earlier audio is written, and there is room for one more block.
bool CardPlayer::HasRoom() {
  Write();
  return pending_.isEmpty() && sink_.bytesFree() >= block_bytes_;
}

void CardPlayer::Write() {
  if (pending_.isEmpty()) return;
  const qint64 written = stream_->write(pending_);
  if (written > 0) pending_.remove(0, written);
}

/// The end of the audio is in the sink's buffer and in the server's.
bool CardPlayer::Draining() {
  if (CardPlay::Clock::now() - ended_at_ > kDrainLimit) return false;
  Write();
  return !pending_.isEmpty() || sink_.state() != QAudio::IdleState;
}

CardRecorder::CardRecorder(const QAudioDevice& device, std::shared_ptr<CardTake> take)
    : device_(device),
      take_(std::move(take)),
      converter_(CardFormatOf(device)),
      source_(device, CardFormatOf(device)) {
  source_.setBufferSize(source_.format().bytesForDuration(kPeriodMicroseconds));
  if (converter_.Valid()) stream_ = source_.start();
  if (stream_ == nullptr || source_.error() != QAudio::NoError)
    problem_ = Told(kMicrophone, device_, kNotOpened);
}

bool CardRecorder::Tick() {
  if (problem_.empty()) Check();
  return problem_.empty() && take_->Active() && HandOver();
}

void CardRecorder::Check() {
  // The server may move the stream to another input; the user did not choose that one.
  if (InputOf(device_.id().toStdString()).isNull()) {
    problem_ = Told(kMicrophone, device_, "was disconnected while it was recording.");
  } else if (source_.state() == QAudio::StoppedState) {
    problem_ = Told(kMicrophone, device_, "stopped while it was recording; perhaps the sound server ended.");
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
