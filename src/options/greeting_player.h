// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "greetings/greeting_library.h"
#include "platform/dialogs.h"
#include "records/call_store.h"
#include "telephony/call_effects.h"

namespace orven {

/// The list `CmbGreetsMessages`: greetings' names, and the one that is selected; empty for none.
struct GreetingList {
  std::vector<std::string> names;
  std::string selected;
};

/// The toolbar `tlbrGreetingPlayer` of the options dialog: plays, makes and deletes greetings. A statement
/// that fails leaves no trace. User-interface thread.
class GreetingPlayer {
 public:
  struct Parts {
    const GreetingLibrary& library;
    EventSounds& sounds;
    MessagePlayer& player;
    Dialogs& dialogs;
    std::function<std::optional<std::string>()> add;  ///< opens the greeting creator; what it has saved
    std::function<void()> refill_main;  ///< fills the main window's greeting box; its first is selected
    std::function<void(const std::string& name)> choose_default;
  };

  explicit GreetingPlayer(Parts parts) : parts_(std::move(parts)) {}

  /// The library as it is now; `selected` when it is there, else the first one, is selected.
  GreetingList Fill(const std::string& selected = {}) const;

  /// A button: "Play", "Stop", "Add", "Delete". Changes the list where the library changes.
  void ButtonClick(const std::string& key, GreetingList& list);

 private:
  void Add(GreetingList& list);
  void Delete(GreetingList& list);

  Parts parts_;
};

}  // namespace orven
