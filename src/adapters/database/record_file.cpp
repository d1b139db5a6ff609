// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/record_file.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "adapters/database/salvage.h"
#include "adapters/database/stray_log.h"
#include "base/durable_file.h"
#include "base/text.h"

namespace orven {

namespace fs = std::filesystem;

namespace {

/// Throws when SQLite finds inconsistent pages. Reads the whole file.
void CheckIntegrity(SqliteConnection& connection, const std::string& path) {
  const std::string verdict = connection.Ask("PRAGMA quick_check(1)");
  if (verdict != "ok") throw SqliteError(SQLITE_CORRUPT, path, verdict);
}

std::vector<std::string> ColumnsOf(SqliteConnection& connection, const std::string& table) {
  SqliteStatement statement(connection, "SELECT lower(name) FROM pragma_table_info(?)");
  statement.Bind(1, table);
  std::vector<std::string> columns;
  while (statement.Step()) columns.push_back(statement.Text(0));
  return columns;
}

void MakeTable(SqliteConnection& connection, const TableSchema& schema) {
  const std::vector<std::string> columns = ColumnsOf(connection, schema.table);
  const std::string table = QuotedIdentifier(schema.table);
  if (columns.empty()) {
    std::string fields;
    for (const std::string& field : schema.fields) {
      fields += (fields.empty() ? "" : ", ") + QuotedIdentifier(field) + " TEXT";
    }
    connection.Execute("CREATE TABLE " + table + " (" + fields + ")");
    return;
  }
  for (const std::string& field : schema.fields) {
    if (std::find(columns.begin(), columns.end(), Lower(field)) != columns.end()) continue;
    connection.Execute("ALTER TABLE " + table + " ADD COLUMN " + QuotedIdentifier(field) + " TEXT");
  }
}

void MakeIndex(SqliteConnection& connection, const RecordSchema& schema) {
  if (schema.counted.empty()) return;
  const std::string& table = schema.records.table;
  connection.Execute("CREATE INDEX IF NOT EXISTS " + QuotedIdentifier(table + "_" + schema.counted) + " ON " +
                     QuotedIdentifier(table) + " (" + QuotedIdentifier(schema.counted) + ")");
}

/// Throws when the table cannot be used.
void CheckTable(SqliteConnection& connection, const TableSchema& schema) {
  const std::string table = QuotedIdentifier(schema.table), fields = ListOf(schema.fields);
  // Fails for a view or a table without row numbers, which cannot keep the order of insertion.
  const SqliteStatement order(connection, "UPDATE " + table + " SET rowid = rowid");
  // Fails for a generated column, which cannot be written.
  const SqliteStatement fill(
      connection, "INSERT INTO " + table + " (" + fields + ") SELECT " + fields + " FROM " + table);
}

void Prepare(SqliteConnection& connection, const std::string& path, const RecordSchema& schema) {
  connection.Execute("PRAGMA synchronous=FULL");
  // Without it, salvage would restore deleted calls.
  connection.Execute("PRAGMA secure_delete=ON");
  // Only MergeLog merges: no step of a call waits for it.
  connection.Execute("PRAGMA wal_autocheckpoint=0");
  CheckIntegrity(connection, path);
  connection.Execute("BEGIN IMMEDIATE");
  MakeTable(connection, schema.records);
  MakeIndex(connection, schema);
  MakeTable(connection, schema.open);
  CheckTable(connection, schema.records);
  CheckTable(connection, schema.open);
  connection.Execute("COMMIT");
  // Last, because it writes: an unusable file must be kept unchanged.
  connection.Execute("PRAGMA journal_mode=WAL");
  connection.Execute("PRAGMA synchronous=NORMAL");
  connection.MergeLog();
}

std::unique_ptr<SqliteConnection> OpenIntact(const std::string& path, const RecordSchema& schema) {
  auto connection = std::make_unique<SqliteConnection>(path);
  try {
    Prepare(*connection, path, schema);
  } catch (const SqliteError& error) {
    if (error.FileIsUseless()) connection->KeepLogOnClose();
    throw;
  }
  return connection;
}

/// Renames the log files of `path`; returns the new name for the file itself.
std::string SetAsideLogs(const std::string& path) {
  std::string aside = NameToSetAside(path, "damaged");
  for (const char* companion : {"-wal", "-shm", "-journal"}) {
    std::error_code error;
    if (fs::exists(path + companion, error)) RenameKeeping(path + companion, aside + companion);
  }
  return fs::path(aside).filename().string();
}

/// Moves the file at `path` and its log files. The logs go first: SQLite would delete them if it found them
/// next to a new, empty file.
std::string SetAside(const std::string& path) {
  std::string name = SetAsideLogs(path);
  RenameKeeping(path, fs::path(path).replace_filename(name).string());
  return name;
}

/// Suffix of the new file while it is filled, before it replaces a damaged one.
constexpr const char* kFresh = ".fresh";

void Remove(const std::string& path) {
  std::error_code error;
  fs::remove(path, error);
}

void RemoveFresh(const std::string& fresh) {
  for (const char* part : {"", "-wal", "-shm"}) Remove(fresh + part);
}

void Fill(SqliteConnection& connection, const TableSchema& table, const SalvagedRows& rows) {
  SqliteStatement put(connection, PutInto(table));
  for (const auto& [row, values] : rows) {
    put.Bind(1, row);
    put.Bind(2, values);
    put.Step();
    put.Reset();
  }
}

void FillFresh(const std::string& fresh, const RecordSchema& schema, const SalvagedRows& records,
               const SalvagedRows& open) {
  RemoveFresh(fresh);  // left by a program that was killed meanwhile
  const auto connection = OpenIntact(fresh, schema);
  connection->Durably([&] {
    Fill(*connection, schema.records, records);
    Fill(*connection, schema.open, open);
  });
}

/// Replaces the file at `path` by one with the rows that can be read. Returns a note about both.
std::string Renew(const std::string& path, const RecordSchema& schema) {
  const SalvagedRows records = SalvageRows(path, schema.records.table, schema.records.fields, 1);
  const SalvagedRows open =
      SalvageRows(path, schema.open.table, schema.open.fields, schema.open.fields.size());
  const std::string fresh = path + kFresh;
  try {
    FillFresh(fresh, schema, records, open);
  } catch (const RuntimeError&) {
    RemoveFresh(fresh);
    throw;
  }
  const std::string aside = SetAside(path);
  RenameKeeping(fresh, path);
  return std::to_string(records.size()) +
         " calls could be read and are carried over; the damaged file is kept as " + aside;
}

}  // namespace

std::string ListOf(const std::vector<std::string>& fields) {
  std::string list;
  for (const std::string& field : fields) list += (list.empty() ? "" : ", ") + QuotedIdentifier(field);
  return list;
}

std::string PutInto(const TableSchema& schema) {
  std::string marks;
  for (std::size_t count = 0; count < schema.fields.size(); ++count) marks += ", ?";
  return "INSERT OR REPLACE INTO " + QuotedIdentifier(schema.table) + " (rowid, " + ListOf(schema.fields) +
         ") VALUES (?" + marks + ")";
}

std::string KeepStrayLog(const std::string& path) {
  if (!LogIsEmpty(path)) return SetAsideLogs(path);
  Remove(path + "-wal");
  Remove(path + "-shm");
  return {};
}

std::unique_ptr<SqliteConnection> OpenRecordFile(const std::string& path, const RecordSchema& schema,
                                                 std::string& note) {
  std::error_code error;
  if (fs::is_directory(path, error))
    throw RuntimeError(ErrorNumber::PathAccessError, path + " (is a folder)");
  if (HasStrayLog(path)) {
    const std::string aside = KeepStrayLog(path);
    const char* fate = fs::exists(path, error) && !fs::is_empty(path, error) ? " was replaced" : " is gone";
    if (!aside.empty()) note = path + fate + "; the log file that was left is kept as " + aside + "-wal";
  }
  try {
    return OpenIntact(path, schema);
  } catch (const SqliteError& damage) {
    if (!damage.FileIsUseless()) throw;
    note = damage.what();
  }
  note += ": " + Renew(path, schema);
  return OpenIntact(path, schema);
}

}  // namespace orven
