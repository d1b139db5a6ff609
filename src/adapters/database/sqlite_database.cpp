// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/sqlite_database.h"

#include <algorithm>
#include <utility>

namespace orven {

namespace {

RuntimeError RecordGone() {
  return {ErrorNumber::SubscriptOutOfRange, "the record is gone"};
}

}  // namespace

SqliteDatabase::SqliteDatabase(RecordSchema schema, Report report, Report loss)
    : schema_(std::move(schema)),
      report_(std::move(report)),
      loss_(std::move(loss)),
      table_(QuotedIdentifier(schema_.records.table)),
      fields_(ListOf(schema_.records.fields)),
      open_table_(QuotedIdentifier(schema_.open.table)) {
  schema_.open.fields.emplace_back("Record");
}

std::string SqliteDatabase::Open(const std::string& path) {
  path_ = path;
  open_.clear();
  return OpenFile();
}

std::string SqliteDatabase::OpenFile() {
  connection_.reset();
  rows_.clear();
  std::string note;
  try {
    connection_ = OpenRecordFile(path_, schema_, note);
    ReadRows();
    if (!open_.empty()) {  // it may be another file
      connection_->Durably([this] {
        for (const auto& [key, call] : open_) Store(call);
      });
    }
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
  FollowFile();
  if (connection_->Ask("PRAGMA data_version") != version_) ReadRows();
}

void SqliteDatabase::FollowFile() {
  if (!connection_) {
    const std::string reason = failure_.empty() ? "" : " (" + failure_ + ")";
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the database is not open" + reason);
  }
  if (!connection_->HasMoved()) return connection_->RequireWhole();
  connection_->KeepLogOnClose();
  connection_.reset();
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

/// Changes the file as it is now, in one durable transaction.
template <class Operation>
void SqliteDatabase::Durably(const Operation& operation, After after) {
  const auto change = [&] {
    Refresh();
    connection_->Durably(operation);
  };
  Mending(change, after);
}

void SqliteDatabase::Renew() {
  const auto known = rows_;
  connection_->KeepLogOnClose();
  std::string note = OpenFile();
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
    while (statement.Step()) table.records.push_back(statement.Texts(0, schema_.records.fields.size()));
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
    SqliteStatement statement(*connection_, "SELECT " + fields_ + " FROM " + table_ + " WHERE rowid = ?");
    statement.Bind(1, RowAt(number));
    if (!statement.Step()) throw RecordGone();
    return statement.Texts(0, schema_.records.fields.size());
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
  const auto found = std::find(schema_.records.fields.begin(), schema_.records.fields.end(), field);
  if (found == schema_.records.fields.end())
    throw RuntimeError(ErrorNumber::SubscriptOutOfRange, std::string(field));
  return static_cast<std::int32_t>(found - schema_.records.fields.begin());
}

std::int64_t SqliteDatabase::Add(const std::vector<FieldValue>& values, const OpenCall& open) {
  OpenAgain();
  OpenCall settled = open;
  Durably([&] {
    settled.record = Insert(values);
    Store(settled);
  });
  Remember(settled);
  highest_ = settled.record;
  rows_.push_back(settled.record);
  return settled.record;
}

void SqliteDatabase::Change(std::int64_t identity, const std::vector<FieldValue>& values,
                            const OpenCall& open) {
  Durably([&] {
    Replace(identity, values);
    Store(open);
  });
  Remember(open);
}

void SqliteDatabase::Remove(std::int64_t identity) {
  Durably([&] {
    connection_->Execute("DELETE FROM " + table_ + " WHERE rowid = " + std::to_string(identity));
    if (connection_->Changes() == 0) throw RecordGone();
  });
  std::erase(rows_, identity);
}

void SqliteDatabase::DeleteFirst(std::int32_t number) {
  const auto remove = [&] {
    connection_->Execute("DELETE FROM " + table_ + " WHERE rowid <= " + std::to_string(RowAt(number)));
  };
  Durably(remove, After::kThrow);
  rows_.erase(rows_.begin(), rows_.begin() + number);
}

void SqliteDatabase::DeleteAll() {
  Durably([&] { connection_->Execute("DELETE FROM " + table_); });
  rows_.clear();
}

std::vector<OpenCall> SqliteDatabase::OpenCalls() {
  OpenAgain();
  const auto calls = Mending([&] {
    Refresh();
    std::vector<OpenCall> read;
    const std::size_t fields = schema_.open.fields.size() - 1;
    SqliteStatement row(*connection_, "SELECT rowid, Record, " + ListOf(schema_.open.fields) + " FROM " +
                                          open_table_ + " WHERE rowid > 0 ORDER BY rowid");
    while (row.Step()) read.push_back({row.Integer(0), row.Integer(1), row.Texts(2, fields)});
    return read;
  });
  for (const OpenCall& call : calls) Remember(call);
  return calls;
}

void SqliteDatabase::Keep(const OpenCall& call) {
  Mending([&] {
    FollowFile();
    const auto known = open_.find(call.key);
    if (known == open_.end() || known->second != call) connection_->AtOnce([&] { Store(call); });
  });
  Remember(call);
}

void SqliteDatabase::Close(std::int64_t key) {
  Mending([&] {
    FollowFile();
    const std::string row = "FROM " + open_table_ + " WHERE rowid = " + std::to_string(key);
    if (connection_->Ask("SELECT 1 " + row).empty()) return;
    connection_->Execute("DELETE " + row);
    connection_->MergeLog();
  });
  open_.erase(key);
}

// Chooses the row number itself, so that the new record is always the last one and never gets the number of a
// deleted one while this object lives or an open call names it.
std::int64_t SqliteDatabase::Insert(const std::vector<FieldValue>& values) {
  std::vector<std::string> fields(schema_.records.fields.size());
  for (const auto& [field, value] : values) fields[static_cast<std::size_t>(FieldIndex(field))] = value;
  std::string marks;
  for (std::size_t count = 0; count < fields.size(); ++count) marks += ", ?";
  SqliteStatement statement(
      *connection_,
      "INSERT INTO " + table_ + " (rowid, " + fields_ +
          ") SELECT max(coalesce(max(rowid), 0), ?, (SELECT coalesce(max(CAST(Record AS INTEGER)), 0) FROM " +
          open_table_ + ")) + 1" + marks + " FROM " + table_);
  statement.Bind(1, highest_);
  statement.Bind(2, fields);
  statement.Step();
  return connection_->LastRowId();
}

void SqliteDatabase::Replace(std::int64_t row, const std::vector<FieldValue>& values) {
  std::string assignments;
  for (const auto& [field, value] : values) {
    FieldIndex(field);
    assignments += (assignments.empty() ? "" : ", ") + QuotedIdentifier(field) + " = ?";
  }
  SqliteStatement statement(*connection_, "UPDATE " + table_ + " SET " + assignments + " WHERE rowid = ?");
  int parameter = 1;
  for (const auto& [field, value] : values) statement.Bind(parameter++, value);
  statement.Bind(parameter, row);
  statement.Step();
  if (connection_->Changes() == 0) throw RecordGone();
}

// Removes it when it has no fields.
void SqliteDatabase::Store(const OpenCall& call) {
  if (call.key == 0) return;
  if (call.fields.empty())
    return connection_->Execute("DELETE FROM " + open_table_ + " WHERE rowid = " + std::to_string(call.key));
  SqliteStatement statement(*connection_, PutInto(schema_.open));
  statement.Bind(1, call.key);
  statement.Bind(2, call.fields);
  statement.Bind(static_cast<int>(schema_.open.fields.size()) + 1, call.record);
  statement.Step();
}

void SqliteDatabase::Remember(const OpenCall& call) {
  open_.erase(call.key);
  if (!call.fields.empty()) open_.emplace(call.key, call);
}

}  // namespace orven
