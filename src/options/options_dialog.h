// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/paths.h"
#include "core/error_trap.h"
#include "core/settings_store.h"
#include "core/sound_list.h"
#include "greetings/greeting_library.h"
#include "notify/desk_sounds.h"
#include "platform/audio_device.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/registry.h"
#include "platform/telephony.h"
#include "records/call_store.h"
#include "records/message_move.h"
#include "telephony/line_manager.h"

namespace orven {

/// The toolbar `tlbrGreetingPlayer` of the options dialog: plays, makes and deletes greetings. Failures are
/// ignored. User-interface thread.
class GreetingPlayer {
 public:
  struct Parts {
    const GreetingLibrary& library;
    DeskSounds& sounds;
    MessagePlayer& player;
    Dialogs& dialogs;
    std::function<std::optional<std::string>()> add;  ///< opens the greeting creator; returns what was saved
    std::function<void()> refill_main;  ///< fills the main window's greeting box; its first is selected
    std::function<void(const std::string& name)> choose_default;
  };

  explicit GreetingPlayer(Parts parts) : parts_(std::move(parts)) {}

  /// The library as it is now. The first greeting is selected when `selected` is missing.
  SoundList Fill(const std::string& selected = {}) const;

  /// A button: "Play", "Stop", "Add", "Delete". Updates the list when the library changes.
  void ButtonClick(const std::string& key, SoundList& list);

 private:
  void Add(SoundList& list);
  void Delete(SoundList& list);

  Parts parts_;
};

/// What the lists of the dialog offer.
struct OptionLists {
  std::vector<std::string> devices;  ///< in device-index order
  std::vector<Words> cards;          ///< in the order of the cards' numbers
};

/// What changes in the open dialog without the user's action.
class OptionsView {
 public:
  virtual ~OptionsView() = default;
  /// The level of the current call in thousandths of full scale; nothing when no caller is greeted or
  /// recorded.
  virtual void ShowLevel(std::optional<std::int32_t> level) noexcept = 0;
  /// The list `cmbSoundDev`. Cards keep their places; new ones are added at the end.
  virtual void ShowSoundCards(const std::vector<Words>& names) noexcept = 0;
  /// The messages folder, and the progress while messages are being moved to it.
  virtual void ShowMessagesPath(const std::string& path,
                                const std::optional<RelocationProgress>& moving) noexcept = 0;
};

/// What the options dialog does: shows what is stored, stores what was chosen, and moves the messages to
/// another folder. User-interface thread.
class OptionsDialog {
 public:
  struct Parts {
    EventLoop& loop;
    Registry& registry;
    SystemLog& log;
    Dialogs& dialogs;
    TelephonyControl& Tapi1;
    SoundCardNames& cards;
    SettingsStore& store;
    Settings& settings;  ///< the main window's, which the next call uses
    const ApplicationFolder& home;
    const MessageFolders& folders;
    const LineManager& line;
    const MessageMove& move;
    std::function<std::optional<std::int32_t>()> line_level;          ///< as ShowLevel takes it
    std::function<void(const std::string& greeting)> fill_greetings;  ///< of the main window's box
    std::function<void(const std::string& folder)> move_messages;     ///< and stores the new folder
    std::function<void()> show_in_main;  ///< brings the main window's boxes and layout up to date
  };

  explicit OptionsDialog(Parts parts);

  /// What the lists offer when the dialog opens.
  OptionLists Lists();

  /// What the controls show when the dialog opens. A value that cannot be converted is logged, and its
  /// control is off or empty.
  Choices Load();

  /// Whether the program starts with the desktop.
  bool Autostarts();

  /// The messages folder in use.
  const std::string& MessagesPath() const { return parts_.folders.Serving(); }

  /// The names of the telephony devices as they are now.
  std::vector<std::string> Devices() const;

  /// The name of the device that the stored settings choose.
  std::string StoredDevice() const { return parts_.settings.ModemName; }

  /// A device's capabilities, as labels with their values; the values are empty for an unknown device.
  std::vector<std::pair<Words, Words>> Capabilities(const std::string& device) const;

  /// Whether the line is open on another device. It stays open until it is turned off.
  bool AnotherLineIsOpen(const std::string& device) const;

  /// Keeps `view` up to date from now on; nullptr when the dialog closes.
  void Watch(OptionsView* view);

  /// `cmdBrowsMessagesPath`: asks for a folder and begins to move the messages there.
  void BrowsMessagesPath();

  /// `cmdOK`: stores everything; the next call uses it. A bad number is logged and its setting keeps its
  /// value. An open line stays open.
  void Save(Choices choices, bool autostart);

 private:
  std::vector<Words> SoundCards();
  void LookAgain();
  std::vector<NamedRegistryValue> Take(const Choices& choices, const ErrorTrap& trap);
  void StoreAutostart(bool on);
  void TellOfFailures(bool stored, bool autostart);

  Parts parts_;
  std::unique_ptr<Timer> timer_;  ///< runs while there is a view
  OptionsView* view_ = nullptr;
  int ticks_ = 0;
};

}  // namespace orven
