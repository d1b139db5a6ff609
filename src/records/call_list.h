// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "platform/database.h"

namespace orven {

/// Small-icon indexes of the call list; they also encode a row's state.
enum CallIcon : std::int32_t {
  kUnreadMessage = 1,
  kUnreadNoMessage = 2,
  kReadMessage = 3,
  kReadNoMessage = 4,
};

/// One row of the call list.
struct CallRow {
  CallIcon icon = kUnreadNoMessage;
  std::string length;  ///< of the message, in seconds; empty without one
  std::string date;
  std::string time;
  std::string number;
  std::string name;
  std::string key;        ///< file name of the message; empty without one
  std::int64_t call = 0;  ///< the call's identity, which does not depend on its row; 0 for no call

  /// Whether `now`, read later, is still this call. The identity is not enough: another program's new record
  /// may have the identity of a removed one. A message may have been added since.
  bool IsSameCall(const CallRow& now) const;
};

/// A column of the list, width in twips (1/1440 inch).
struct CallColumn {
  std::string header;
  std::int32_t width;
};

/// Shows the list `ListView1`. Row indexes are 1-based. The view keeps no rows: it asks the list for
/// those that can be seen, whenever it needs them.
class CallListView {
 public:
  virtual ~CallListView() = default;
  virtual void ShowColumns(const std::vector<CallColumn>& columns) = 0;

  /// The list has `count` rows, perhaps all different from before.
  virtual void ShowRowCount(std::int32_t count) = 0;
  /// `count` rows were inserted at the top; the visible rows stay visible.
  virtual void ShowRowsInserted(std::int32_t count) = 0;
  virtual void ShowRowRemoved(std::int32_t index) = 0;
  /// What the rows show may have changed.
  virtual void ShowRowsChanged() = 0;
  virtual void ShowIcon(std::int32_t index, CallIcon icon) = 0;

  /// The call shown in a row; an empty one when none is.
  virtual CallRow ShownCall(std::int32_t index) const = 0;

  /// Selects a row, 0 for none, without scrolling and without a callback.
  virtual void ShowSelection(std::int32_t index) = 0;
  virtual void EnsureVisible(std::int32_t index) = 0;

  /// Pops up `mnuRightClick`, or `mnuNoMessageRightClick` for a row without a message, where the mouse is.
  virtual void PopUpMenu(bool message) = 0;
};

/// Shows how many calls there are, as the tray icon's tip.
class CallCountsView {
 public:
  virtual ~CallCountsView() = default;
  virtual void MakeSysTryBaloon(std::int32_t total, std::int32_t new_calls) = 0;
};

/// The call list: one row per record, newest first, with a selection and the two counts. Rows are read
/// from the records when they are asked for, so that no operation takes longer for a long list. Row
/// indexes are 1-based; row i of n shows record n - i + 1. User-interface thread.
class CallList {
 public:
  CallList(DatabaseControl& database, SystemLog& log, CallListView& view, CallCountsView& counts)
      : DataBase1(database), log_(log), view_(view), counts_(counts) {}

  /// Called whenever another row, or none, has become the selected one.
  void SetSelectionListener(std::function<void()> listener) { selection_changed_ = std::move(listener); }

  /// Builds the six columns.
  void RangeListTitle();

  /// Empties the list without touching the records.
  void Clear();

  /// Updates rows and counts from the records. The selection stays on its call; if that was removed, on its
  /// row number, or on the last row when there are fewer. Without a selection the newest call is selected.
  void makeList();

  /// The same, but only if another program has added, removed or replaced records: it compares their number,
  /// the newest call and the selected one. To be called before a command on a row.
  void FollowRecords();

  /// The same, before a command that works without a selection. True if the selected call was removed.
  bool SelectionLost();

  /// The same, before a command on the selected call. True if it still exists.
  bool SelectionStands();

  std::int32_t Count() const { return total_; }
  std::int32_t NewCalls() const { return new_calls_; }

  /// The record behind a row.
  std::int32_t RecordNumber(std::int32_t index) const { return Count() - index + 1; }

  /// Throws RuntimeError 9 for an unknown row, and what the records throw.
  CallRow Row(std::int32_t index) const;

  /// What identifies the call behind a row as long as it exists; throws as Row.
  std::int64_t Identity(std::int32_t index) const;
  /// The row of that call, 0 when it was removed.
  std::int32_t RowOf(std::int64_t identity) const;
  /// The same, but checks that the identity was not reused for another call. Throws what the records throw.
  std::int32_t RowOf(const CallRow& call) const;

  /// A place above all rows.
  static constexpr auto kTop = std::numeric_limits<std::int64_t>::max();
  /// The first row with a message below the call `above` (its identity; it may have been removed, or kTop), 0
  /// when there is none. The time does not depend on the distance; throws what the records throw.
  std::int32_t NextMessage(std::int64_t above) const;

  /// The selected row, 0 for none.
  std::int32_t Selected() const { return selected_; }

  /// Selects a row and scrolls to it; throws RuntimeError 9 for an unknown row and keeps the selection.
  void Select(std::int32_t index);

  /// A person has selected the row, or none (0), in the view, which shows it already.
  void FollowSelection(std::int32_t index);

  /// Gives a row another icon and adds `new_calls` to the new-call count (never below 0).
  void Mark(std::int32_t index, CallIcon icon, std::int32_t new_calls);

  /// The record behind the row was deleted: removes the row. makeList follows.
  void Remove(std::int32_t index);

 private:
  void ShowRows(std::int32_t shown);
  void KeepSelection();
  void Remember(std::int32_t index);
  void CheckIndex(std::int32_t index) const;

  DatabaseControl& DataBase1;
  SystemLog& log_;
  CallListView& view_;
  CallCountsView& counts_;
  std::function<void()> selection_changed_ = [] {};
  std::int32_t total_ = 0;
  std::int32_t new_calls_ = 0;
  std::int32_t selected_ = 0;
  CallRow newest_;                           ///< row 1
  CallRow selected_call_;                    ///< the selected row
  std::map<std::int32_t, CallIcon> marked_;  ///< rows whose icon differs from their record
};

}  // namespace orven
