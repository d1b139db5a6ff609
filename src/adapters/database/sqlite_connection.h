// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/runtime_error.h"

namespace orven {

/// A failure that SQLite reported: the closest classic number, the file's path, SQLite's text.
class SqliteError : public RuntimeError {
 public:
  /// `code` is SQLite's result, `system_error` the errno behind it or 0.
  SqliteError(int code, const std::string& path, const std::string& message, int system_error = 0);

  /// The file is not a database, is damaged or truncated, or has an unusable table: trying again does not
  /// help, a new file does.
  bool FileIsUseless() const;

 private:
  int code_;
};

/// One open SQLite file. Failures throw SqliteError.
class SqliteConnection {
 public:
  /// Opens the file for writing, creating it if it is missing; waits at most kLockPatience for another
  /// program's lock.
  explicit SqliteConnection(const std::string& path);

  void Execute(const std::string& sql);

  /// The first column of the first row that `sql` gives, or an empty text.
  std::string Ask(const std::string& sql);

  /// Whether the open file is no longer the one at its path.
  bool HasMoved();

  /// Throws when the main file is shorter than after the latest merge. SQLite does not see that while its log
  /// has pages.
  void RequireWhole();

  /// Reads from the image of a file instead; the image outlives this connection.
  void Borrow(std::string& image);

  /// Merges the write-ahead log into the main file and empties it, unless another program is reading or
  /// writing; then the next call does it. SQLite syncs the log before its first page, so that is
  /// written at once, with the number of merges in it: no later change has to wait for the disk.
  void MergeLog();

  /// Runs `change` in one transaction, durable on return, and merges the log. If anything fails, nothing is
  /// changed.
  void Durably(const std::function<void()>& change);

  /// Runs `work` without waiting for any lock.
  void AtOnce(const std::function<void()>& work);

  /// Leaves the write-ahead log as it is when the connection closes, instead of merging it.
  void KeepLogOnClose();

  /// Number of rows that the latest statement changed.
  int Changes() { return sqlite3_changes(handle_.get()); }
  std::int64_t LastRowId() { return sqlite3_last_insert_rowid(handle_.get()); }

  sqlite3* Handle() { return handle_.get(); }
  SqliteError Failure(int code);

 private:
  struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };
  std::string path_;
  std::unique_ptr<sqlite3, Closer> handle_;
  std::uintmax_t merged_size_ = 0;
};

/// One prepared statement; must not outlive its connection.
class SqliteStatement {
 public:
  SqliteStatement(SqliteConnection& connection, const std::string& sql);

  /// Parameters are numbered from 1. The text must live until the last Step.
  void Bind(int parameter, std::string_view text);
  void Bind(int parameter, std::int64_t number);

  /// Binds all of them from `parameter` on.
  void Bind(int parameter, const std::vector<std::string>& texts);

  /// Runs to the next row; false when there is none.
  bool Step();

  /// Returns to before the first Step, for other parameters.
  void Reset() { sqlite3_reset(statement_.get()); }

  /// Columns are numbered from 0. An absent value is an empty text.
  std::string Text(int column);
  std::int64_t Integer(int column);

  /// The texts of `count` columns from `column` on.
  std::vector<std::string> Texts(int column, std::size_t count);

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  SqliteConnection& connection_;
  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

/// `name` as an identifier in SQL.
std::string QuotedIdentifier(std::string_view name);

}  // namespace orven
