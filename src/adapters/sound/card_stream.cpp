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

/// The end of the report about a device that is connected but cannot be opened.
constexpr const char* kNotOpened =
    "could not be opened. If the sound server was restarted, restart ORVEN too.";

}  // namespace

QAudioDevice OutputOf(const std::string& id) {
  return Among(QMediaDevices::audioOutputs(), id);
}

QAudioDevice InputOf(const std::string& id) {
  return Among(QMediaDevices::audioInputs(), id);
}

void CardStream::Break(const std::string& what) {
  problem_ = std::string("The ") + kind_ + " \"" + device_.description().toStdString() + "\" " + what;
}

bool CardStream::Works(const QAudioDevice& now, QAudio::State state, const std::string& doing) {
  if (!problem_.empty()) return false;
  // The server may move a stream to another device when its own was unplugged; the user did not choose that
  // one.
  if (now.isNull()) {
    Break("was disconnected while it was " + doing + ".");
  } else if (state == QAudio::StoppedState) {
    Break("stopped while it was " + doing + "; perhaps the sound server ended.");
  }
  return problem_.empty();
}

CardPlayer::CardPlayer(const QAudioDevice& device, std::shared_ptr<CardPlay> play)
    : CardStream("sound output", device),
      play_(std::move(play)),
      converter_(CardFormatOf(device)),
      sink_(device, CardFormatOf(device)),
      block_bytes_(sink_.format().bytesForDuration(kBlockMicroseconds)) {
  if (converter_.Valid()) stream_ = sink_.start();
  if (stream_ == nullptr || sink_.error() != QAudio::NoError) Break(kNotOpened);
}

bool CardPlayer::Tick() {
  if (!Works(OutputOf(DeviceId()), sink_.state(), "playing")) return false;
  return ended_ ? Draining() : Feed();
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
    : CardStream("microphone", device),
      take_(std::move(take)),
      converter_(CardFormatOf(device)),
      source_(device, CardFormatOf(device)) {
  // The input's period is one block, so that the level follows the voice and little is lost at a stop.
  source_.setBufferSize(source_.format().bytesForDuration(kBlockMicroseconds));
  if (converter_.Valid()) stream_ = source_.start();
  if (stream_ == nullptr || source_.error() != QAudio::NoError) Break(kNotOpened);
}

bool CardRecorder::Tick() {
  return Works(InputOf(DeviceId()), source_.state(), "recording") && take_->Active() && HandOver();
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
