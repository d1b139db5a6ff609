// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/shell.h"
#include "records/call_list.h"
#include "records/call_store.h"
#include "records/local_player.h"

namespace orven {

/// The commands of the call list. Every command except Clear and those that select a row needs a selected
/// row. If another program has changed the records, a command acts on the call that was shown, or only
/// updates the list. Failures are not logged here: the records log their own. User-interface thread.
class ListCommands {
 public:
  struct Parts {
    CallList& ListView1;
    CallStore& calls;
    LocalPlayer& player;
    Dialogs& dialogs;
    const Mouse& mouse;
    CallListView& view;
    const Settings& settings;
    /// True while the owner listens by telephone: the selection must not move. Also shows that in the status
    /// bar.
    std::function<bool()> blocked;
  };

  explicit ListCommands(Parts parts) : parts_(std::move(parts)) {}

  /// Asks first when the setting `WornDelete` says so. A call that comes in while the question is open does
  /// not change which call is deleted.
  void Delete();

  /// Deletes all records; asks first when the setting `WornClear` says so. A call that comes in while
  /// the question is open stays.
  void Clear();

  /// Saves a copy of the selected message.
  void Save();

  void MarkAsRead();
  void MarkAsUnread();

  /// While `blocked`, none of the commands that move the selection does anything.
  void First();
  void Last();

  /// Selects this call and, with Play, plays its message. Nothing happens when the call was deleted.
  void Show(const CallRow& call) { (void)Selects(call); }
  void Play(const CallRow& call);

  /// Stops a playing message and goes one row up or down, marking it read. At the end of the list, or when
  /// the selected call was removed, it only stops. Without a selection Next leads to the first row.
  void Back();
  void Next();

  /// A row was clicked. A call without a message is marked read.
  void ListView1_Click(std::int32_t row);

  /// The selection was moved by the keyboard: nothing is marked.
  void ListView1_Selected(std::int32_t row);

  /// A mouse button went down over the list, after the row below it was selected.
  void ListView1_MouseDown();

  /// Opens the list's menu without the mouse (the keyboard's menu key).
  void PopUpMenu();

  void ListView1_DblClick();

  bool HasSelection() const { return parts_.ListView1.Selected() > 0; }

 private:
  void Step(std::int32_t rows);
  void SelectRow(std::int32_t row);
  bool Selects(const CallRow& call);
  void Mark(bool read);
  bool Follow(std::int32_t row);

  Parts parts_;
};

}  // namespace orven
