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

/// Opens the database at `path` and makes it ready: created when absent, checked for damage, with
/// `schema`'s table, to which missing columns are added; other tables and columns are left alone.
/// A commit has reached the disk when it returns (write-ahead log, full synchronisation); MergeLog
/// after each keeps the main file complete by itself, so that it can be copied or replaced alone. From a file
/// that cannot be used, the records that can be read are carried over, with their row numbers, into a fresh
/// one; it is set aside with its log files under a dated name, and `note` says so. Throws SqliteError or
/// RuntimeError, nothing changed, when the file cannot be opened now (locked, no permission, no folder, no
/// room for a fresh one).
std::unique_ptr<SqliteConnection> OpenRecordFile(const std::string& path, const RecordSchema& schema,
                                                 std::string& note);

/// Sets a write-ahead log aside that was left at `path` when its file was moved or replaced: SQLite
/// would write its pages over whatever file is there now. Gives the dated name, without "-wal"; empty
/// when there was nothing in it.
std::string KeepStrayLog(const std::string& path);

}  // namespace orven
