// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_list.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "core/error_trap.h"
#include "records/call.h"

namespace orven {
namespace {

/// "Read" of a call that has been seen or heard.
constexpr const char* kIsRead = "1";

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

CallRow RowFrom(const std::vector<std::string>& record, const Columns& columns) {
  const bool message = record.at(columns.type) != kNoMessageType;
  CallRow row;
  row.icon = IconOf(message, record.at(columns.read) == kIsRead);
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

}  // namespace

bool CallRow::IsSameCall(const CallRow& now) const {
  return call != 0 && call == now.call && date == now.date && time == now.time && number == now.number &&
         name == now.name && (key.empty() || key == now.key);
}

void CallList::RangeListTitle() {
  const ErrorTrap trap(log_, "ErrRangeListTitle ");
  trap([&] {
    view_.ShowColumns(
        {{"Type", 400}, {"Length", 500}, {"Date", 1000}, {"Time", 1000}, {"Number", 1800}, {"Name", 1600}});
  });
}

void CallList::Clear() {
  total_ = 0;
  newest_ = {};
  Remember(0);
  marked_.clear();
  view_.ShowRowCount(0);
  selection_changed_();
}

void CallList::makeList() {
  const ErrorTrap trap(log_, "ErrmakeList ");
  const auto shown = total_;
  new_calls_ = 0;
  total_ = 0;
  trap([&] { total_ = DataBase1.RecordCount(); });
  trap([&] { new_calls_ = total_ - DataBase1.CountRecords(kRead, kIsRead); });
  marked_.clear();
  trap([&] { ShowRows(shown); });
  trap([&] { KeepSelection(); });
  counts_.MakeSysTryBaloon(total_, new_calls_);
}

void CallList::FollowRecords() {
  const ErrorTrap trap(log_, "ErrmakeList ");
  bool changed = false;
  trap([&] {
    changed = DataBase1.RecordCount() != total_ || (total_ > 0 && !newest_.IsSameCall(Row(1))) ||
              (selected_ > 0 && RowOf(selected_call_) == 0);
  });
  if (!changed) return;
  log_.WriteSystem("The call records have changed since they were shown: the list is read again");
  makeList();
}

bool CallList::SelectionLost() {
  const auto call = selected_call_;
  FollowRecords();
  return call.call != 0 && !call.IsSameCall(selected_call_);
}

bool CallList::SelectionStands() {
  const bool selected = selected_ > 0;
  return !SelectionLost() && selected;
}

/// Notifies the view of the change from the `shown` rows that it shows.
void CallList::ShowRows(std::int32_t shown) {
  if (total_ == 0) {
    newest_ = {};
    return view_.ShowRowCount(0);
  }
  const auto known = newest_.call == 0 ? 0 : DataBase1.Locate(newest_.call);
  newest_ = Row(1);
  // If the former newest record still has its number, all former rows still exist.
  if (shown == 0 || known != shown) return view_.ShowRowCount(total_);
  if (total_ > shown) view_.ShowRowsInserted(total_ - shown);
  view_.ShowRowsChanged();
}

void CallList::KeepSelection() {
  if (total_ == 0 && selected_ == 0) return;
  const auto row = selected_ == 0 ? 0 : RowOf(selected_call_);
  const bool same_call = row > 0;
  Remember(same_call ? row : std::min(std::max(selected_, 1), total_));
  view_.ShowSelection(selected_);
  if (!same_call) selection_changed_();
}

void CallList::Remember(std::int32_t index) {
  selected_ = index;
  selected_call_ = index == 0 ? CallRow() : Row(index);
}

void CallList::CheckIndex(std::int32_t index) const {
  if (index < 1 || index > Count()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
}

CallRow CallList::Row(std::int32_t index) const {
  CheckIndex(index);
  auto row = RowFrom(DataBase1.Record(RecordNumber(index)), Columns(DataBase1));
  row.call = Identity(index);
  if (const auto mark = marked_.find(index); mark != marked_.end()) row.icon = mark->second;
  return row;
}

std::int64_t CallList::Identity(std::int32_t index) const {
  CheckIndex(index);
  return DataBase1.Identity(RecordNumber(index));
}

std::int32_t CallList::RowOf(std::int64_t identity) const {
  const auto record = DataBase1.Locate(identity);
  return record == 0 || record > total_ ? 0 : total_ - record + 1;
}

std::int32_t CallList::RowOf(const CallRow& call) const {
  const auto row = RowOf(call.call);
  return row > 0 && call.IsSameCall(Row(row)) ? row : 0;
}

std::int32_t CallList::NextMessage(std::int64_t above) const {
  const auto found = DataBase1.NewestBefore(above, {{kType, kNoMessageType}, {kCallMassageName, ""}});
  return found == 0 ? 0 : RowOf(found);
}

void CallList::Select(std::int32_t index) {
  FollowSelection(index);
  view_.ShowSelection(index);
  view_.EnsureVisible(index);
}

void CallList::FollowSelection(std::int32_t index) {
  const auto before = selected_call_;
  Remember(index);
  if (!before.IsSameCall(selected_call_)) selection_changed_();
}

void CallList::Mark(std::int32_t index, CallIcon icon, std::int32_t new_calls) {
  CheckIndex(index);
  marked_[index] = icon;
  new_calls_ = std::max(0, new_calls_ + new_calls);
  view_.ShowIcon(index, icon);
  counts_.MakeSysTryBaloon(total_, new_calls_);
}

void CallList::Remove(std::int32_t index) {
  CheckIndex(index);
  const bool selected = index == selected_;
  --total_;
  marked_.clear();
  newest_ = total_ == 0 ? CallRow() : Row(1);
  view_.ShowRowRemoved(index);
  if (index < selected_) --selected_;
  Remember(std::min(selected_, total_));
  view_.ShowSelection(selected_);
  if (selected) selection_changed_();
}

}  // namespace orven
