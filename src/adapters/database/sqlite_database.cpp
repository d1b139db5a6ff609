// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/sqlite_database.h"

#include <algorithm>
#include <utility>

namespace orven {

SqliteDatabase::SqliteDatabase(RecordSchema schema, Report report, Report loss)
    : schema_(std::move(schema)),
      report_(std::move(report)),
      loss_(std::move(loss)),
      table_(QuotedIdentifier(schema_.table)) {
  for (const std::string& field : schema_.fields) {
    fields_ += (fields_.empty() ? "" : ", ") + QuotedIdentifier(field);
  }
}

std::string SqliteDatabase::Open(const std::string& path) {
  path_ = path;
  return OpenFile();
}

std::string SqliteDatabase::OpenFile() {
  connection_.reset();
  rows_.clear();
  current_.reset();
  std::string note;
  try {
    auto connection = OpenRecordFile(path_, schema_, note);
    std::swap(connection_, connection);
    ReadRows();
  } catch (const RuntimeError& error) {
    connection_.reset();
    failure_ = error.what();
    if (!note.empty()) report_(note);
    throw;
  }
  return note;
}

void SqliteDatabase::OpenAgain() {
  if (connection_ || path_.empty()) return;
  try {
    const std::string note = OpenFile();
    note.empty() ? report_(path_ + " is open again") : loss_(note);
  } catch (const RuntimeError&) {
    return;  // Refresh reports it.
  }
}

// Handles all changes that other programs may have made to the file since the last operation.
void SqliteDatabase::Refresh() {
  if (!connection_) {
    const std::string reason = failure_.empty() ? "" : " (" + failure_ + ")";
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the database is not open" + reason);
  }
  if (connection_->HasMoved()) {
    FollowMove();
  } else if (connection_->Ask("PRAGMA data_version") != version_) {
    ReadRows();
  }
}

void SqliteDatabase::FollowMove() {
  connection_->KeepLogOnClose();
  connection_.reset();
  if (draft_ && draft_->row) draft_.reset();  // Its row number has no meaning in another file.
  const std::string aside = KeepStrayLog(path_);
  report_(path_ + " was moved or replaced" +
          (aside.empty() ? "" : "; its log file is kept as " + aside + "-wal"));
  const std::string note = OpenFile();
  if (!note.empty()) loss_(note);
}

/// Runs an operation. If it finds the file damaged, repairs the file and runs it again.
template <class Operation>
auto SqliteDatabase::Mending(const Operation& operation, After after) {
  try {
    return operation();
  } catch (const SqliteError& damage) {
    if (!connection_ || !damage.FileIsUseless()) throw;
    Renew();
    if (after == After::kThrow) throw;
  }
  return operation();
}

void SqliteDatabase::Renew() {
  const auto known = rows_;
  const auto current = current_;
  connection_->KeepLogOnClose();
  std::string note = OpenFile();
  current_ = current;  // copied rows keep their numbers
  const auto gone =
      std::ranges::count_if(known, [&](std::int64_t row) { return !std::ranges::binary_search(rows_, row); });
  if (note.empty() && gone == 0) return;
  if (note.empty()) note = path_ + " was damaged";
  loss_(note + "; " + std::to_string(gone) + " of " + std::to_string(known.size()) + " calls are lost");
}

void SqliteDatabase::ReadRows() {
  // Reads the version before the rows, so that a change in between is noticed next time.
  std::string version = connection_->Ask("PRAGMA data_version");
  std::vector<std::int64_t> rows;
  SqliteStatement statement(*connection_, "SELECT rowid FROM " + table_ + " ORDER BY rowid");
  while (statement.Step()) rows.push_back(statement.Integer(0));
  rows_ = std::move(rows);
  if (!rows_.empty()) highest_ = std::max(highest_, rows_.back());
  version_ = std::move(version);
}

RecordTable SqliteDatabase::Query(std::string_view query) {
  if (query != "Get *") throw RuntimeError(ErrorNumber::InvalidProcedureCall, std::string(query));
  OpenAgain();
  return Mending([&] {
    Refresh();
    RecordTable table;
    table.records.reserve(rows_.size());
    SqliteStatement statement(*connection_, "SELECT " + fields_ + " FROM " + table_ + " ORDER BY rowid");
    while (statement.Step()) {
      Fields& record = table.records.emplace_back(schema_.fields.size());
      for (std::size_t column = 0; column < record.size(); ++column) {
        record[column] = statement.Text(static_cast<int>(column));
      }
    }
    return table;
  });
}

std::int32_t SqliteDatabase::RecordCount() {
  OpenAgain();
  Mending([&] { Refresh(); });
  return static_cast<std::int32_t>(rows_.size());
}

std::int32_t SqliteDatabase::CountRecords(std::string_view field, std::string_view value) {
  FieldIndex(field);
  return Mending([&] {
    Refresh();
    SqliteStatement statement(*connection_, "SELECT count(*) FROM " + table_ + " WHERE " +
                                                QuotedIdentifier(std::string(field)) + " = ?");
    statement.Bind(1, value);
    statement.Step();
    return static_cast<std::int32_t>(statement.Integer(0));
  });
}

std::vector<std::string> SqliteDatabase::Record(std::int32_t number) {
  const auto read = [&] {
    Refresh();
    return ReadRecord(RowAt(number));
  };
  return Mending(read, After::kThrow);
}

std::int64_t SqliteDatabase::Identity(std::int32_t number) {
  Mending([&] { Refresh(); }, After::kThrow);
  return RowAt(number);
}

std::int32_t SqliteDatabase::Locate(std::int64_t identity) {
  Mending([&] { Refresh(); });
  const auto found = std::lower_bound(rows_.begin(), rows_.end(), identity);
  if (found == rows_.end() || *found != identity) return 0;
  return static_cast<std::int32_t>(found - rows_.begin()) + 1;
}

std::int64_t SqliteDatabase::NewestBefore(std::int64_t identity, const std::vector<FieldValue>& unlike) {
  std::string sql = "SELECT rowid FROM " + table_ + " WHERE rowid < ?";
  for (const auto& [field, value] : unlike) {
    FieldIndex(field);
    sql += " AND CAST(coalesce(" + QuotedIdentifier(field) + ", '') AS TEXT) <> ?";
  }
  return Mending([&] {
    Refresh();
    SqliteStatement statement(*connection_, sql + " ORDER BY rowid DESC LIMIT 1");
    statement.Bind(1, identity);
    int parameter = 2;
    for (const auto& [field, value] : unlike) statement.Bind(parameter++, value);
    return statement.Step() ? statement.Integer(0) : std::int64_t{0};
  });
}

std::int64_t SqliteDatabase::RowAt(std::int32_t number) const {
  if (number < 1 || static_cast<std::size_t>(number) > rows_.size()) {
    throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "record " + std::to_string(number));
  }
  return rows_[static_cast<std::size_t>(number) - 1];
}

std::int32_t SqliteDatabase::FieldIndex(std::string_view field) const {
  const auto found = std::find(schema_.fields.begin(), schema_.fields.end(), field);
  if (found == schema_.fields.end()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange, std::string(field));
  return static_cast<std::int32_t>(found - schema_.fields.begin());
}

void SqliteDatabase::MoveTo(std::int32_t number) {
  Mending([&] { Refresh(); }, After::kThrow);
  const auto row = RowAt(number);
  draft_.reset();
  current_ = row;
}

void SqliteDatabase::MoveFirst() {
  MoveTo(1);
}

void SqliteDatabase::MoveNext() {
  Mending([&] { Refresh(); });
  const auto after = std::upper_bound(rows_.begin(), rows_.end(), Current());
  MoveTo(static_cast<std::int32_t>(after - rows_.begin()) + 1);
}

void SqliteDatabase::AddNew() {
  draft_.reset();
  OpenAgain();
  Mending([&] { Refresh(); });
  draft_ = Draft{Fields(schema_.fields.size()), std::nullopt};
}

void SqliteDatabase::Edit() {
  draft_.reset();
  Mending([&] {
    Refresh();
    draft_ = Draft{ReadRecord(Current()), Current()};
  });
}

void SqliteDatabase::SetField(std::string_view field, std::string_view value) {
  const auto column = static_cast<std::size_t>(FieldIndex(field));
  if (!draft_) throw RuntimeError(ErrorNumber::InvalidProcedureCall, "no record is being added or edited");
  draft_->fields[column] = value;
}

void SqliteDatabase::SetField(std::string_view field, std::int32_t value) {
  SetField(field, std::to_string(value));
}

std::string SqliteDatabase::GetField(std::string_view field) {
  const auto column = static_cast<std::size_t>(FieldIndex(field));
  if (draft_) return draft_->fields[column];
  return Mending([&] {
    Refresh();
    return ReadRecord(Current())[column];
  });
}

void SqliteDatabase::Update() {
  Mending([&] {
    Refresh();
    if (!draft_) throw RuntimeError(ErrorNumber::InvalidProcedureCall, "no record is being added or edited");
    draft_->row ? Replace(*draft_->row, draft_->fields) : Insert(draft_->fields);
  });
  connection_->MergeLog();
  draft_.reset();
}

void SqliteDatabase::Delete() {
  Mending([&] {
    Refresh();
    SqliteStatement statement(*connection_, "DELETE FROM " + table_ + " WHERE rowid = ?");
    statement.Bind(1, Current());
    statement.Step();
  });
  connection_->MergeLog();
  const std::int64_t row = Current();
  rows_.erase(std::remove(rows_.begin(), rows_.end(), row), rows_.end());
  current_.reset();
  draft_.reset();
}

void SqliteDatabase::DeleteFirst(std::int32_t number) {
  const auto remove = [&] {
    Refresh();
    SqliteStatement statement(*connection_, "DELETE FROM " + table_ + " WHERE rowid <= ?");
    statement.Bind(1, RowAt(number));
    statement.Step();
  };
  Mending(remove, After::kThrow);
  connection_->MergeLog();
  rows_.erase(rows_.begin(), rows_.begin() + number);
  current_.reset();
  draft_.reset();
}

void SqliteDatabase::DeleteAll() {
  Mending([&] {
    Refresh();
    connection_->Execute("DELETE FROM " + table_);
  });
  connection_->MergeLog();
  rows_.clear();
  current_.reset();
  draft_.reset();
}

std::int64_t SqliteDatabase::Current() const {
  if (!current_) throw RuntimeError(ErrorNumber::InvalidProcedureCall, "there is no current record");
  return *current_;
}

SqliteDatabase::Fields SqliteDatabase::ReadRecord(std::int64_t row) {
  SqliteStatement statement(*connection_, "SELECT " + fields_ + " FROM " + table_ + " WHERE rowid = ?");
  statement.Bind(1, row);
  if (!statement.Step()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "the record is gone");
  Fields record(schema_.fields.size());
  for (std::size_t column = 0; column < record.size(); ++column) {
    record[column] = statement.Text(static_cast<int>(column));
  }
  return record;
}

// Chooses the row number itself, so that the new record is always the last one and never gets the number of a
// deleted one.
void SqliteDatabase::Insert(const Fields& fields) {
  std::string marks;
  for (std::size_t count = 0; count < fields.size(); ++count) marks += ", ?";
  SqliteStatement statement(*connection_, "INSERT INTO " + table_ + " (rowid, " + fields_ +
                                              ") SELECT max(coalesce(max(rowid), 0), ?) + 1" + marks +
                                              " FROM " + table_);
  statement.Bind(1, highest_);
  for (std::size_t column = 0; column < fields.size(); ++column) {
    statement.Bind(static_cast<int>(column) + 2, fields[column]);
  }
  statement.Step();
  current_ = connection_->LastRowId();
  highest_ = *current_;
  rows_.push_back(*current_);
}

void SqliteDatabase::Replace(std::int64_t row, const Fields& fields) {
  std::string assignments;
  for (const std::string& field : schema_.fields) {
    assignments += (assignments.empty() ? "" : ", ") + QuotedIdentifier(field) + " = ?";
  }
  SqliteStatement statement(*connection_, "UPDATE " + table_ + " SET " + assignments + " WHERE rowid = ?");
  for (std::size_t column = 0; column < fields.size(); ++column) {
    statement.Bind(static_cast<int>(column) + 1, fields[column]);
  }
  statement.Bind(static_cast<int>(fields.size()) + 1, row);
  statement.Step();
  if (connection_->Changes() == 0) throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "the record is gone");
}

}  // namespace orven
