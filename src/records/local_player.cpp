// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/local_player.h"

#include <algorithm>
#include <cmath>

#include "core/error_trap.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// Smooth enough, and cheap.
constexpr milliseconds kTimer1Interval{50};

/// Rows without a message that are marked and skipped in one go: each may cost a write to the disk.
constexpr std::int32_t kSkippedAtOnce = 10;

}  // namespace

LocalPlayer::LocalPlayer(Ports ports, CallList& list, const Settings& settings,
                         std::function<void(std::int32_t)> mark_read)
    : ports_(ports),
      list_(list),
      settings_(settings),
      mark_read_(std::move(mark_read)),
      Timer1(ports.loop.MakeTimer([this] { ShowPosition(); })) {
  ports_.WavePlay.SetEvents(this);
}

LocalPlayer::~LocalPlayer() {
  ports_.waveforms.Cancel();
  ports_.WavePlay.SetEvents(nullptr);
}

void LocalPlayer::Play() {
  ++search_;
  if (list_.SelectionLost()) return Stop();
  PlayFrom(list_.Selected() > 0 ? list_.Selected() : std::min(list_.Count(), 1));
}

void LocalPlayer::PlayFrom(std::int32_t row) {
  if (ports_.blocked()) return;
  const ErrorTrap trap(ports_.log, "ErrPlay ");
  trap([&] {
    for (std::int32_t looked_at = 0; row > 0; ++looked_at, ++row) {
      if (looked_at == kSkippedAtOnce) return SearchOnLater(row);
      mark_read_(row);
      const auto key = list_.Row(row).key;
      if (!key.empty()) return PlayRow(row, key);
      if (row == list_.Count()) return FindNothing();
    }
  });
}

void LocalPlayer::SearchOnLater(std::int32_t row) {
  // Calls may be added and removed meanwhile.
  ports_.loop.Post(lifeline_.Bind([this, call = list_.Identity(row), search = search_] {
    if (search == search_) PlayFrom(list_.RowOf(call));
  }));
}

void LocalPlayer::FindNothing() {
  list_.Select(list_.Count());
  if (playing_) Stop();
}

void LocalPlayer::PlayRow(std::int32_t row, const std::string& key) {
  if (row != list_.Selected()) list_.Select(row);
  Stop();
  Start(ports_.folders.PathOf(key));
}

void LocalPlayer::Start(const std::string& path) {
  held_file_ = path;
  length_ = milliseconds(std::llround(std::max(0.0, ports_.WavePlay.FileLength(path)) * 1000));
  const auto result = ports_.WavePlay.PlayFile(path, settings_.Sound);
  if (result != kWaveOk) {
    ports_.log.WriteSystem(ports_.WavePlay.PlayErrorText(result));
    return;
  }
  playing_ = true;
  ports_.view.EnableSlider(true);
  Timer1->Start(kTimer1Interval);
}

void LocalPlayer::PressStop() {
  ++search_;
  if (playing_ && IsPlaying()) ports_.WavePlay.StopPlay();
  Reset();
}

void LocalPlayer::Stop() {
  ++search_;
  if (IsPlaying()) ports_.WavePlay.StopPlay();
  Reset();
}

void LocalPlayer::Reset() {
  playing_ = false;
  Timer1->Stop();
  ports_.view.ShowSlider(0);
  ports_.view.ShowProgress(milliseconds(0), milliseconds(0));
  ports_.view.EnableSlider(false);
}

void LocalPlayer::PlayFinished() {
  if (playing_) Reset();
}

void LocalPlayer::ShowPosition() {
  const auto position = std::min(ports_.WavePlay.Position(), length_);
  const auto percent = length_.count() == 0 ? 0 : position * kSliderLast / length_;
  ports_.view.ShowSlider(static_cast<std::int32_t>(percent));
  ports_.view.ShowProgress(position, length_);
}

void LocalPlayer::SeekTo(std::int32_t slider_value) {
  SeekToPart(static_cast<double>(slider_value) / kSliderLast);
}

void LocalPlayer::SeekToPart(double part) {
  if (!playing_) return;
  ports_.WavePlay.Seek(milliseconds(std::llround(std::clamp(part, 0.0, 1.0) * double(length_.count()))));
  ShowPosition();
}

void LocalPlayer::ShowSelected() {
  const auto trap = ErrorTrap::Silent();
  std::string key;
  trap([&] {
    if (list_.Selected() > 0) key = list_.Row(list_.Selected()).key;
  });
  const auto path = key.empty() ? key : ports_.folders.PathOf(key);
  if (path == pictured_file_) return;
  pictured_file_ = path;
  ports_.waveforms.Cancel();
  ports_.view.ShowWaveform({});
  if (path.empty()) return;
  ports_.waveforms.Request(path, [this](const Waveform& waveform) { ports_.view.ShowWaveform(waveform); });
}

}  // namespace orven
