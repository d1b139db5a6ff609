// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_list.h"

#include <algorithm>

#include "core/conversions.h"
#include "core/error_trap.h"
#include "platform/runtime_error.h"
#include "records/call.h"
#include "records/call_fields.h"

namespace orven {
namespace {

CallIcon IconOf(bool message, bool read) {
  if (message) return read ? kReadMessage : kUnreadMessage;
  return read ? kReadNoMessage : kUnreadNoMessage;
}

/// Column numbers of the fields in a query's records.
struct Columns {
  explicit Columns(const DatabaseControl& database)
      : name(At(database, kCallName)),
        number(At(database, kCallNumber)),
        time(At(database, kCallTime)),
        date(At(database, kCallDate)),
        message(At(database, kCallMassageName)),
        type(At(database, kType)),
        read(At(database, kRead)) {}

  static std::size_t At(const DatabaseControl& database, const char* field) {
    return static_cast<std::size_t>(database.FieldIndex(field));
  }

  std::size_t name, number, time, date, message, type, read;
};

CallRow RowOf(const std::vector<std::string>& record, const Columns& columns) {
  const bool message = record.at(columns.type) != kNoMessageType;
  CallRow row;
  row.icon = IconOf(message, record.at(columns.read) == "1");
  row.date = record.at(columns.date);
  row.time = record.at(columns.time);
  row.number = record.at(columns.number);
  row.name = record.at(columns.name);
  if (message) {
    row.length = record.at(columns.type);
    row.key = record.at(columns.message);
  }
  return row;
}

bool IsUnread(const CallRow& row) {
  return row.icon == kUnreadMessage || row.icon == kUnreadNoMessage;
}

}  // namespace

void CallList::RangeListTitle() {
  const ErrorTrap trap(log_, "ErrRangeListTitle ");
  trap([&] {
    view_.ShowColumns(
        {{"Type", 400}, {"Length", 500}, {"Date", 1000}, {"Time", 1000}, {"Number", 1800}, {"Name", 1600}});
  });
}

void CallList::Clear() {
  rows_.clear();
  selected_ = 0;
  view_.ShowRows(rows_);
}

void CallList::makeList() {
  const ErrorTrap trap(log_, "ErrmakeList ");
  new_calls_ = 0;
  total_ = 0;
  RecordTable table;
  trap([&] { table = DataBase1.Query(kGetAll); });
  trap([&] { total_ = DataBase1.RecordCount(); });
  const auto selected = selected_;
  rows_.clear();
  trap([&] { Fill(table); });
  new_calls_ = ToCount(static_cast<std::size_t>(std::count_if(rows_.begin(), rows_.end(), IsUnread)));
  selected_ = std::min(selected, Count());
  trap([&] { view_.ShowRows(rows_); });
  trap([&] { counts_.MakeSysTryBaloon(total_, new_calls_); });
}

void CallList::Fill(const RecordTable& table) {
  const Columns columns(DataBase1);
  rows_.reserve(table.records.size());
  for (auto record = table.records.rbegin(); record != table.records.rend(); ++record) {
    rows_.push_back(RowOf(*record, columns));
  }
}

const CallRow& CallList::Row(std::int32_t index) const {
  if (index < 1 || index > Count()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
  return rows_[static_cast<std::size_t>(index) - 1];
}

void CallList::Select(std::int32_t index) {
  Row(index);
  selected_ = index;
  view_.ShowSelection(index);
}

void CallList::Mark(std::int32_t index, CallIcon icon, std::int32_t new_calls) {
  Row(index);
  rows_[static_cast<std::size_t>(index) - 1].icon = icon;
  new_calls_ = std::max(0, new_calls_ + new_calls);
  view_.ShowIcon(index, icon);
  counts_.MakeSysTryBaloon(total_, new_calls_);
}

}  // namespace orven
