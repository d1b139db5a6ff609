// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_player.h"

#include "adapters/sound/sound_device.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// Blocks read in one tick at most: two, so that a late tick is made up for, but a source that is being
/// recorded at this moment is not emptied at one go.
constexpr int kMostBlocks = 2;

constexpr qint64 kBlockMicroseconds = 1'000'000LL * kBlockSamples / kSampleRate;

/// An output that has not played out its buffer after this long never will.
constexpr auto kDrainLimit = 2s;

constexpr const char* kKind = "sound output";

}  // namespace

CardPlayer::CardPlayer(const QAudioDevice& device, std::shared_ptr<CardPlay> play)
    : device_(device),
      play_(std::move(play)),
      converter_(CardFormatOf(device)),
      sink_(device, CardFormatOf(device)),
      block_bytes_(sink_.format().bytesForDuration(kBlockMicroseconds)) {
  if (converter_.Valid()) stream_ = sink_.start();
  if (stream_ == nullptr || sink_.error() != QAudio::NoError) problem_ = Told(kKind, device_, kNotOpened);
}

bool CardPlayer::Tick() {
  if (problem_.empty()) Check();
  if (!problem_.empty()) return false;
  return ended_ ? Draining() : Feed();
}

void CardPlayer::Check() {
  // The server may go on elsewhere with a stream whose output was unplugged; a message is not to be
  // heard from where nobody chose to hear it.
  if (OutputOf(device_.id().toStdString()).isNull()) {
    problem_ = Told(kKind, device_, "went away while it was playing.");
  } else if (sink_.state() == QAudio::StoppedState) {
    problem_ = Told(kKind, device_, "stopped while it was playing; perhaps the sound server ended.");
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

/// For one more block, everything before it having been written.
bool CardPlayer::HasRoom() {
  Write();
  return pending_.isEmpty() && sink_.bytesFree() >= block_bytes_;
}

void CardPlayer::Write() {
  if (pending_.isEmpty()) return;
  const qint64 written = stream_->write(pending_);
  if (written > 0) pending_.remove(0, written);
}

/// The end of the sound is in the sink's buffer and on its way through the server.
bool CardPlayer::Draining() {
  if (CardPlay::Clock::now() - ended_at_ > kDrainLimit) return false;
  Write();
  return !pending_.isEmpty() || sink_.state() != QAudio::IdleState;
}

}  // namespace orven
