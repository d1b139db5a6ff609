// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/record_file.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "adapters/database/salvage.h"
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

std::string ListOf(const std::vector<std::string>& fields) {
  std::string list;
  for (const std::string& field : fields) list += (list.empty() ? "" : ", ") + QuotedIdentifier(field);
  return list;
}

void MakeTable(SqliteConnection& connection, const RecordSchema& schema) {
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
  connection.Execute("CREATE INDEX IF NOT EXISTS " + QuotedIdentifier(schema.table + "_" + schema.counted) +
                     " ON " + QuotedIdentifier(schema.table) + " (" + QuotedIdentifier(schema.counted) + ")");
}

void Prepare(SqliteConnection& connection, const std::string& path, const RecordSchema& schema) {
  connection.Execute("PRAGMA synchronous=FULL");
  // Without it, salvage would restore deleted calls.
  connection.Execute("PRAGMA secure_delete=ON");
  CheckIntegrity(connection, path);
  connection.Execute("BEGIN IMMEDIATE");
  MakeTable(connection, schema);
  MakeIndex(connection, schema);
  // Fails for a view or a table without row numbers, which cannot keep the order of insertion.
  const SqliteStatement order(connection, "UPDATE " + QuotedIdentifier(schema.table) + " SET rowid = rowid");
  // Fails for a generated column, which cannot be written.
  const std::string fields = ListOf(schema.fields);
  const SqliteStatement fill(connection, "INSERT INTO " + QuotedIdentifier(schema.table) + " (" + fields +
                                             ") SELECT " + fields + " FROM " +
                                             QuotedIdentifier(schema.table));
  connection.Execute("COMMIT");
  // Last, because it writes: an unusable file must be kept unchanged.
  connection.Execute("PRAGMA journal_mode=WAL");
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

void RemoveFresh(const std::string& fresh) {
  for (const char* part : {"", "-wal", "-shm"}) {
    std::error_code error;
    fs::remove(fresh + part, error);
  }
}

void FillFresh(const std::string& fresh, const RecordSchema& schema, const SalvagedRows& rows) {
  RemoveFresh(fresh);  // left by a program that was killed meanwhile
  const auto connection = OpenIntact(fresh, schema);
  connection->Execute("BEGIN");
  std::string marks = "?";
  for (std::size_t count = 0; count < schema.fields.size(); ++count) marks += ", ?";
  SqliteStatement insert(*connection, "INSERT INTO " + QuotedIdentifier(schema.table) + " (rowid, " +
                                          ListOf(schema.fields) + ") VALUES (" + marks + ")");
  for (const auto& [row, values] : rows) {
    insert.Bind(1, row);
    for (std::size_t column = 0; column < values.size(); ++column) {
      insert.Bind(static_cast<int>(column) + 2, values[column]);
    }
    insert.Step();
    insert.Reset();
  }
  connection->Execute("COMMIT");
}

/// Replaces the file at `path` by one with the rows that can be read. Returns a note about both.
std::string Renew(const std::string& path, const RecordSchema& schema) {
  const SalvagedRows rows = SalvageRows(path, schema.table, schema.fields);
  const std::string fresh = path + kFresh;
  try {
    FillFresh(fresh, schema, rows);
  } catch (const RuntimeError&) {
    RemoveFresh(fresh);
    throw;
  }
  const std::string aside = SetAside(path);
  RenameKeeping(fresh, path);
  return std::to_string(rows.size()) +
         " calls could be read and are carried over; the damaged file is kept as " + aside;
}

std::uintmax_t SizeOf(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(path, error);
  return error ? 0 : size;
}

}  // namespace

std::string KeepStrayLog(const std::string& path) {
  return SizeOf(path + "-wal") > 0 ? SetAsideLogs(path) : "";
}

std::unique_ptr<SqliteConnection> OpenRecordFile(const std::string& path, const RecordSchema& schema,
                                                 std::string& note) {
  std::error_code error;
  if (fs::is_directory(path, error))
    throw RuntimeError(ErrorNumber::PathAccessError, path + " (is a folder)");
  if (SizeOf(path) == 0) {
    const std::string aside = KeepStrayLog(path);
    if (!aside.empty()) note = path + " is gone; the log file that was left is kept as " + aside + "-wal";
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
