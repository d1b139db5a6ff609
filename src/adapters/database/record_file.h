// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/database/sqlite_connection.h"

namespace orven {

/// A table and its text columns in their order.
struct TableSchema {
  std::string table;
  std::vector<std::string> fields;
};

/// The tables of a record file. Records are counted by their value in the field `counted` without reading
/// them all. Rows of a damaged file are told apart by their number of values: `open` must have more.
struct RecordSchema {
  TableSchema records;
  std::string counted = {};
  TableSchema open = {"OpenCalls", {}};
};

/// Opens the database at `path`: creates it if it is missing, checks it for damage, creates `schema`'s tables
/// and adds missing columns; other tables and columns stay. A commit outlives a crash of the program
/// (write-ahead log), one by Durably a loss of power, too; MergeLog keeps the main file complete by itself,
/// so that it can be copied or replaced alone. A file that cannot be used is renamed, with its log files, to
/// a dated name; the rows that can be read are copied, with their row numbers, to a new file, and `note` says
/// so. Throws SqliteError or RuntimeError, without any change, when the file cannot be opened now (locked, no
/// permission, no folder, no room for a new file).
std::unique_ptr<SqliteConnection> OpenRecordFile(const std::string& path, const RecordSchema& schema,
                                                 std::string& note);

/// Names of columns in SQL, with commas between.
std::string ListOf(const std::vector<std::string>& fields);

/// The statement that puts a row into a table; its parameters are the row's number and the values.
std::string PutInto(const TableSchema& schema);

/// Renames the write-ahead log that stayed at `path` when the database file was moved or replaced. Otherwise
/// SQLite would write the log's pages into the new file. Returns the dated name without "-wal", or an empty
/// text if nothing was in the log; such a log is removed.
std::string KeepStrayLog(const std::string& path);

}  // namespace orven
