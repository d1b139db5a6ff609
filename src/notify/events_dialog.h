// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/paths.h"
#include "core/activity_log.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "core/sound_list.h"
#include "notify/caller_view.h"
#include "notify/desk_sounds.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "records/call_store.h"

namespace orven {

/// The rules of the events dialog: which sounds are played and whether the caller view opens when a call
/// comes in and when it ends, and the library of sounds. A file operation that fails is not logged; the lists
/// always show the actual library. User-interface thread.
class EventsDialog {
 public:
  struct Parts {
    Settings& settings;  ///< the main window's, which the next call uses
    SettingsStore& store;
    const ApplicationFolder& home;
    Files& files;
    DeskSounds& sounds;
    MessagePlayer& player;
    Dialogs& dialogs;
    CallerView& caller_view;
  };

  explicit EventsDialog(Parts parts) : parts_(parts) {}

  /// What the controls show when the dialog opens.
  Choices Load() const;

  /// The file names of the library as it is now, sorted, with `selected` if it has that sound. A folder that
  /// cannot be read counts as empty.
  SoundList Sounds(const std::string& selected) const;

  /// A button of the toolbar of `list`: "Play", "Stop", "Add", "Delete". Updates both lists when the library
  /// changes.
  void ButtonClick(const std::string& key, SoundList& list, SoundList& other);

  /// `cmdTestViewer`: opens the caller view with the chosen options.
  void TestViewer(const Choices& choices);

  /// Another number of seconds was chosen in `cmbCloseCVAfter`; stored at once.
  void ChangeCloseSeconds(const Choices& choices);

  /// `cmdOK`: stores everything; the next call uses it.
  void Save(const Choices& choices);

 private:
  void Play(const std::string& name);
  void Add(SoundList& list, SoundList& other);
  void Delete(SoundList& list, SoundList& other);
  std::optional<std::string> AddSound();
  std::string SoundFolder() const;
  void Store(const SettingRow& row, const Choices& choices);

  Parts parts_;
};

}  // namespace orven
