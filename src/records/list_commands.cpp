// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/list_commands.h"

#include <string>

#include "core/error_trap.h"

namespace orven {

void ListCommands::Delete() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    auto& list = parts_.ListView1;
    if (!list.SelectionStands()) return;
    const auto call = list.Row(list.Selected());
    if (parts_.settings.WornDelete != 0) {
      if (!parts_.dialogs.Confirm(Words("Delete Call %1 Information ?").Arg(list.Selected()))) return;
    }
    // While the question was open a new call may have moved the others down.
    const auto row = list.RowOf(call);
    if (row == 0) return list.FollowRecords();
    parts_.calls.DeleteItemIndex(row);
    list.makeList();
  });
}

void ListCommands::Clear() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    auto& list = parts_.ListView1;
    list.FollowRecords();
    if (list.Count() == 0) return;
    // A call that comes in while the question is open stays.
    const auto newest = list.Row(1);
    if (parts_.settings.WornClear != 0 && !parts_.dialogs.Confirm(Words("Clear Calls List ?"))) return;
    if (list.RowOf(newest) == 0) return list.FollowRecords();
    parts_.calls.ClearUpTo(newest.call);
  });
}

void ListCommands::Save() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (!parts_.ListView1.SelectionStands()) return;
    const auto key = parts_.ListView1.Row(parts_.ListView1.Selected()).key;
    if (!key.empty()) parts_.calls.SaveMessage(key);
  });
}

void ListCommands::MarkAsRead() {
  Mark(true);
}

void ListCommands::MarkAsUnread() {
  Mark(false);
}

void ListCommands::Mark(bool read) {
  if (parts_.ListView1.SelectionStands()) parts_.calls.MarkAsReadUnRead(parts_.ListView1.Selected(), read);
}

void ListCommands::First() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    parts_.ListView1.FollowRecords();
    SelectRow(1);
  });
}

void ListCommands::Last() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    parts_.ListView1.FollowRecords();
    SelectRow(parts_.ListView1.Count());
  });
}

void ListCommands::SelectRow(std::int32_t row) {
  if (parts_.ListView1.Count() == 0 || parts_.blocked()) return;
  if (row != parts_.ListView1.Selected()) parts_.player.Stop();
  parts_.ListView1.Select(row);
}

/// False when the call was deleted or the selection must not move.
bool ListCommands::Selects(const CallRow& call) {
  const auto trap = ErrorTrap::Silent();
  bool selected = false;
  trap([&] {
    parts_.ListView1.FollowRecords();
    const auto row = parts_.ListView1.RowOf(call);
    if (row > 0) SelectRow(row);
    selected = row > 0 && row == parts_.ListView1.Selected();
  });
  return selected;
}

void ListCommands::Play(const CallRow& call) {
  if (Selects(call)) parts_.player.Play();
}

void ListCommands::Back() {
  Step(-1);
}

void ListCommands::Next() {
  Step(+1);
}

void ListCommands::Step(std::int32_t rows) {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    const auto before = parts_.ListView1.Selected();
    const bool lost = parts_.ListView1.SelectionLost();
    if (parts_.blocked()) return;
    parts_.player.Stop();
    if (lost) return;
    // Reading the list again may have selected the first row, which is where Next leads without a selection.
    const auto row = (before == 0 ? 0 : parts_.ListView1.Selected()) + rows;
    if (row < 1 || row > parts_.ListView1.Count()) return;
    parts_.ListView1.Select(row);
    Mark(true);
  });
}

void ListCommands::ListView1_Click(std::int32_t row) {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (!Follow(row)) return;
    parts_.player.Stop();
    if (parts_.ListView1.Row(parts_.ListView1.Selected()).key.empty()) Mark(true);
  });
}

void ListCommands::ListView1_Selected(std::int32_t row) {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (row == parts_.ListView1.Selected()) return;
    if (Follow(row)) parts_.player.Stop();
  });
}

/// Selects the call that was shown in the row; false when that fails. If the call was removed, nothing is
/// selected, so that the next key does not act on another call.
bool ListCommands::Follow(std::int32_t row) {
  auto& list = parts_.ListView1;
  const auto seen = parts_.view.ShownCall(row);
  list.FollowRecords();
  if (parts_.blocked()) {
    parts_.view.ShowSelection(list.Selected());
    return false;
  }
  const auto now = list.RowOf(seen);
  if (now == 0) list.makeList();
  list.FollowSelection(now);
  if (now != row) parts_.view.ShowSelection(now);
  return now != 0;
}

void ListCommands::ListView1_MouseDown() {
  const auto button = parts_.mouse.ButtonsSwapped() ? kLeftButton : kRightButton;
  if (parts_.mouse.IsDown(button)) PopUpMenu();
}

void ListCommands::PopUpMenu() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    auto& list = parts_.ListView1;
    const bool wanted_for_a_call = HasSelection();
    const bool stands = list.SelectionStands();
    if (stands || !wanted_for_a_call) parts_.view.PopUpMenu(stands && !list.Row(list.Selected()).key.empty());
  });
}

void ListCommands::ListView1_DblClick() {
  if (HasSelection()) parts_.player.Play();
}

}  // namespace orven
