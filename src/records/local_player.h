// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/event_loop.h"
#include "platform/wave.h"
#include "records/call_list.h"
#include "records/call_store.h"
#include "records/message_files.h"

namespace orven {

/// What the player of messages shows on the main window.
class PlayerView {
 public:
  virtual ~PlayerView() = default;

  /// The slider `Slider1`, from 0 to LocalPlayer::kSliderLast. Setting it causes no callback, and has no
  /// effect while the user drags it.
  virtual void EnableSlider(bool on) = 0;
  virtual void ShowSlider(std::int32_t value) = 0;

  /// The selected message's waveform; without peaks for none.
  virtual void ShowWaveform(const Waveform& waveform) = 0;

  /// How far the message has been played, for the waveform and the times next to it. Both 0 when nothing
  /// plays.
  virtual void ShowProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) = 0;
};

/// Plays the selected message on the sound card (the program's `WavePlay`), with the slider following.
/// User-interface thread.
class LocalPlayer : public MessagePlayer, public WaveEvents {
 public:
  /// The slider's range: percent of the message.
  static constexpr std::int32_t kSliderLast = 100;

  struct Ports {
    EventLoop& loop;
    const MessageFolders& folders;
    WaveControl& WavePlay;
    WaveformReader& waveforms;
    PlayerView& view;
    SystemLog& log;
    /// Whether the list's selection must not move; if so, shows that in the status bar.
    std::function<bool()> blocked;
  };

  /// `mark_read` marks a row of the list read.
  LocalPlayer(Ports ports, CallList& list, const Settings& settings,
              std::function<void(std::int32_t row)> mark_read);
  ~LocalPlayer() override;
  LocalPlayer(const LocalPlayer&) = delete;
  LocalPlayer& operator=(const LocalPlayer&) = delete;

  /// Plays the message of the selected row (without a selection: the first), or the next one below. Rows
  /// without a message are marked read and skipped, a few at a time so that other events run in between. Does
  /// nothing while `blocked`. If the selected call was removed, stops playing.
  void Play();

  /// The button "Stop": stops a message; slider, timer and playing flag are reset in any case.
  void PressStop();

  /// Resets slider, timer and playing flag, for a new selection. Playing continues.
  void Reset();

  /// The user moved the slider: playing continues from there.
  void SeekTo(std::int32_t slider_value);

  /// The user clicked on this part (0 to 1) of the waveform.
  void SeekToPart(double part);

  /// Another row is selected, or its message has changed: shows its waveform.
  void ShowSelected();

  /// The playing flag: a message was started and has neither ended nor been stopped.
  bool Playing() const { return playing_; }

  bool IsPlaying() const override { return ports_.WavePlay.IsPlaying(); }
  /// Stops whatever the sound card plays, and the search for something to play.
  void Stop() override;
  std::string HeldFile() const override { return held_file_; }

  void PlayFinished() override;

 private:
  void PlayFrom(std::int32_t row);
  void SearchOnLater(std::int32_t row);
  void FindNothing();
  void PlayRow(std::int32_t row, const std::string& key);
  void Start(const std::string& path);
  void ShowPosition();

  Ports ports_;
  CallList& list_;
  const Settings& settings_;
  std::function<void(std::int32_t)> mark_read_;
  std::unique_ptr<Timer> Timer1;
  bool playing_ = false;
  std::string held_file_;
  std::chrono::milliseconds length_{0};  ///< of the held file
  std::string pictured_file_;            ///< whose waveform is shown or being read
  std::uint32_t search_ = 0;             ///< counts the searches, so that an older one ends
  Lifeline lifeline_;
};

}  // namespace orven
