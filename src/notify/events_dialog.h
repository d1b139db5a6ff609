// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "records/call_store.h"
#include "telephony/call_effects.h"

namespace orven {

/// Plays the sounds of events, one at a time, on the sound card that plays messages. A sound that cannot be
/// played is logged. User-interface thread.
class DeskSounds : public EventSounds {
 public:
  /// `player` owns what `WavePlay` may be playing.
  DeskSounds(WaveControl& WavePlay, MessagePlayer& player, const Settings& settings, SystemLog& log)
      : WavePlay_(WavePlay), player_(player), settings_(settings), log_(log) {}

  void PlayWave(const std::string& path) override;

 private:
  WaveControl& WavePlay_;
  MessagePlayer& player_;
  const Settings& settings_;
  SystemLog& log_;
};

/// A list of the sound library: sorted file names without folder, and the selected one; empty for none.
struct SoundList {
  std::vector<std::string> names;
  std::string selected;
};

/// The state of every control of the events dialog, by the controls' names.
struct EventChoices {
  bool chkPlayInCall = false;
  SoundList CmbPlayWhenCall;
  bool chkViewDet = false;
  bool chkPlayInMessage = false;
  SoundList CmbPlayWhenMessage;
  bool chkOnlyIfGotMessage = false;
  bool chkMsgInMsg = false;
  bool chkAnimation = false;
  std::int32_t sldAnimationFast = 0;  ///< 0 to kFastestAnimation
  bool chkCloseCVAfter = false;
  std::int32_t cmbCloseCVAfter = 0;  ///< seconds; one of kCloseSeconds, or what was stored instead
};

inline constexpr std::int32_t kFastestAnimation = 100;
inline constexpr std::int32_t kCloseSeconds[] = {10, 20, 30, 60};

/// The rules of the events dialog: which sounds are played and whether the caller view opens when a call
/// comes in and when it ends, and the library of sounds. A file operation that fails is not logged; the lists
/// always show the actual library. User-interface thread.
class EventsDialog {
 public:
  enum class Sounds { WhenCall, WhenMessage };

  struct Parts {
    Settings& settings;  ///< the main window's, which the next call uses
    SettingsStore& store;
    const SharedOptions& shared;
    Files& files;
    EventSounds& sounds;
    MessagePlayer& player;
    Dialogs& dialogs;
    CallerView& caller_view;
  };

  explicit EventsDialog(Parts parts) : parts_(parts) {}

  /// What the controls show when the dialog opens.
  EventChoices Load() const;

  /// A button of a list's toolbar: "Play", "Stop", "Add", "Delete". Updates both lists when the library
  /// changes.
  void ButtonClick(Sounds list, const std::string& key, EventChoices& choices);

  /// `cmdTestViewer`: opens the caller view with the chosen options.
  void TestViewer(const EventChoices& choices);

  /// `cmbCloseCVAfter` was changed; stored at once.
  void ChangeCloseSeconds(std::int32_t seconds);

  /// `cmdOK`: stores everything; the next call uses it.
  void Save(const EventChoices& choices);

 private:
  void Play(const std::string& name);
  void Add(SoundList& list, SoundList& other);
  void Delete(SoundList& list, SoundList& other);
  std::optional<std::string> AddSound();
  void Fill(SoundList& list, std::string selected) const;
  std::string SoundFolder() const;
  void Put(const char* name, std::int16_t Settings::*field, std::int32_t value);
  void Put(const char* name, std::string Settings::*field, const std::string& value);

  Parts parts_;
};

}  // namespace orven
