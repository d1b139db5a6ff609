// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "platform/database.h"

namespace orven {

/// Small-icon indexes of the call list; they also tell a row's state.
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
  std::string key;  ///< file name of the message; empty without one
};

/// A column of the list, width in twips (1/1440 inch).
struct CallColumn {
  std::string header;
  std::int32_t width;
};

/// Shows the list `ListView1`. Indexes are 1-based.
class CallListView {
 public:
  virtual ~CallListView() = default;
  virtual void ShowColumns(const std::vector<CallColumn>& columns) = 0;
  virtual void ShowRows(const std::vector<CallRow>& rows) = 0;
  virtual void ShowIcon(std::int32_t index, CallIcon icon) = 0;
  virtual void ShowSelection(std::int32_t index) = 0;
};

/// Shows how many calls there are, as the tray icon's tip.
class CallCountsView {
 public:
  virtual ~CallCountsView() = default;
  virtual void MakeSysTryBaloon(std::int32_t total, std::int32_t new_calls) = 0;
};

/// The call list: one row per record, newest first, with a selection and the two counts. Row indexes
/// are 1-based; row i of n shows record n - i + 1. User-interface thread.
class CallList {
 public:
  CallList(DatabaseControl& database, SystemLog& log, CallListView& view, CallCountsView& counts)
      : DataBase1(database), log_(log), view_(view), counts_(counts) {}

  /// Builds the six columns.
  void RangeListTitle();

  /// Empties the list without touching the records.
  void Clear();

  /// Rebuilds all rows and both counts from the records. The selection stays on the row number it
  /// had, or on the last row when there are fewer.
  void makeList();

  std::int32_t Count() const { return static_cast<std::int32_t>(rows_.size()); }
  std::int32_t Total() const { return total_; }
  std::int32_t NewCalls() const { return new_calls_; }

  /// The record behind a row.
  std::int32_t RecordNumber(std::int32_t index) const { return Count() - index + 1; }

  /// Throws RuntimeError 9 when there is no such row.
  const CallRow& Row(std::int32_t index) const;

  /// The selected row, 0 for none.
  std::int32_t Selected() const { return selected_; }

  /// Selects a row; throws RuntimeError 9, leaving the selection, when there is no such row.
  void Select(std::int32_t index);

  /// Gives a row another icon and moves the new-call count by `new_calls` (never below 0).
  void Mark(std::int32_t index, CallIcon icon, std::int32_t new_calls);

 private:
  void Fill(const RecordTable& table);

  DatabaseControl& DataBase1;
  SystemLog& log_;
  CallListView& view_;
  CallCountsView& counts_;
  std::vector<CallRow> rows_;
  std::int32_t total_ = 0;
  std::int32_t new_calls_ = 0;
  std::int32_t selected_ = 0;
};

}  // namespace orven
