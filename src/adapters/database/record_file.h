// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/database/sqlite_connection.h"

namespace orven {

/// The table that holds the records, and its text columns in their order. Records are counted by their
/// value in the field `counted` without reading them all.
struct RecordSchema {
  std::string table;
  std::vector<std::string> fields;
  std::string counted = {};
};

/// Opens the database at `path`: creates it if it is missing, checks it for damage, creates `schema`'s table
/// and adds missing columns; other tables and columns stay. Commits are durable on return (write-ahead log,
/// full synchronisation); MergeLog after each one keeps the main file complete by itself, so that it can be
/// copied or replaced alone. A file that cannot be used is renamed, with its log files, to a dated name; the
/// records that can be read are copied, with their row numbers, to a new file, and `note` says so. Throws
/// SqliteError or RuntimeError, without any change, when the file cannot be opened now (locked, no
/// permission, no folder, no room for a new file).
std::unique_ptr<SqliteConnection> OpenRecordFile(const std::string& path, const RecordSchema& schema,
                                                 std::string& note);

/// Renames the write-ahead log that stayed at `path` when the database file was moved or replaced. Otherwise
/// SQLite would write the log's pages into the new file. Returns the dated name without "-wal", or an empty
/// text if the log was empty.
std::string KeepStrayLog(const std::string& path);

}  // namespace orven
