// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/sqlite_connection.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace orven {

namespace {

/// Long enough for another program's single statement, too short for the user to notice.
constexpr std::chrono::duration<int, std::milli> kLockPatience{200};

/// The largest number that SQLite keeps as a file's user version.
constexpr std::int64_t kMostMerges = 0x7FFFFFFF;

/// Far more than a record needs; a damaged file must not exhaust the memory.
constexpr int kLongestRecord = 16 * 1024 * 1024;

/// The file may come from anywhere, so SQLite must not run its triggers or views: they could change stored
/// records or never end.
void TrustNothingIn(sqlite3* handle) {
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, kLongestRecord);
}

ErrorNumber NumberOf(int code, int system_error) {
  const bool no_space = system_error == ENOSPC || system_error == EDQUOT || system_error == EFBIG;
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_READONLY: return ErrorNumber::PermissionDenied;
    case SQLITE_CANTOPEN: return ErrorNumber::PathAccessError;
    case SQLITE_FULL: return ErrorNumber::DiskFull;
    case SQLITE_IOERR: return no_space ? ErrorNumber::DiskFull : ErrorNumber::DeviceIoError;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: return ErrorNumber::DeviceIoError;
    case SQLITE_NOMEM: return ErrorNumber::OutOfMemory;
    default: return ErrorNumber::InternalError;
  }
}

std::string DetailOf(const std::string& path, const std::string& message, int system_error) {
  std::string text = path + " (" + message;
  if (system_error != 0) text += ", " + std::generic_category().message(system_error);
  return text + ")";
}

}  // namespace

SqliteError::SqliteError(int code, const std::string& path, const std::string& message, int system_error)
    : RuntimeError(NumberOf(code, system_error), DetailOf(path, message, system_error)), code_(code) {}

bool SqliteError::FileIsUseless() const {
  const int kind = code_ & 0xFF;
  return kind == SQLITE_NOTADB || kind == SQLITE_CORRUPT || kind == SQLITE_ERROR ||
         code_ == SQLITE_IOERR_SHORT_READ;
}

SqliteConnection::SqliteConnection(const std::string& path) : path_(path) {
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(
      path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
  handle_.reset(handle);
  if (handle == nullptr) throw SqliteError(SQLITE_NOMEM, path, "out of memory");
  if (code != SQLITE_OK) throw Failure(code);
  // SQLite silently opens a file without write permission as read-only.
  if (sqlite3_db_readonly(handle, "main") == 1)
    throw SqliteError(SQLITE_READONLY, path, "the file is read-only");
  TrustNothingIn(handle);
  sqlite3_busy_timeout(handle, kLockPatience.count());
}

SqliteError SqliteConnection::Failure(int code) {
  const int kind = code & 0xFF;
  const bool of_system = kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN || kind == SQLITE_FULL;
  return {code, path_, sqlite3_errmsg(Handle()), of_system ? sqlite3_system_errno(Handle()) : 0};
}

void SqliteConnection::Execute(const std::string& sql) {
  const int code = sqlite3_exec(Handle(), sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) throw Failure(code);
}

std::string SqliteConnection::Ask(const std::string& sql) {
  SqliteStatement statement(*this, sql);
  return statement.Step() ? statement.Text(0) : std::string();
}

bool SqliteConnection::HasMoved() {
  int moved = 0;
  const int code = sqlite3_file_control(Handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return code == SQLITE_OK && moved != 0;
}

void SqliteConnection::RequireWhole() {
  std::error_code error;
  if (std::filesystem::file_size(path_, error) < merged_size_)
    throw SqliteError(SQLITE_CORRUPT, path_, sqlite3_errstr(SQLITE_CORRUPT));
}

void SqliteConnection::Borrow(std::string& image) {
  const auto size = static_cast<sqlite3_int64>(image.size());
  const int code = sqlite3_deserialize(Handle(), "main", reinterpret_cast<unsigned char*>(image.data()), size,
                                       size, SQLITE_DESERIALIZE_READONLY);
  if (code != SQLITE_OK) throw Failure(code);
}

void SqliteConnection::MergeLog() try {
  AtOnce([this] {
    const int merged =
        sqlite3_wal_checkpoint_v2(Handle(), "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    if (merged != SQLITE_OK) return;
    std::error_code error;
    merged_size_ = std::filesystem::file_size(path_, error);
    SqliteStatement merges(*this, "PRAGMA user_version");
    const auto count = merges.Step() ? merges.Integer(0) : 0;
    merges.Reset();
    Execute("PRAGMA user_version = " + std::to_string(count == kMostMerges ? 0 : count + 1));
  });
} catch (const SqliteError&) {
  return;  // The next change waits for the disk.
}

void SqliteConnection::Durably(const std::function<void()>& change) {
  try {
    Execute("PRAGMA synchronous=FULL; BEGIN IMMEDIATE");
    change();
    Execute("COMMIT; PRAGMA synchronous=NORMAL");
  } catch (...) {
    sqlite3_exec(Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_exec(Handle(), "PRAGMA synchronous=NORMAL", nullptr, nullptr, nullptr);
    throw;
  }
  MergeLog();
}

void SqliteConnection::AtOnce(const std::function<void()>& work) {
  const auto be_patient = [](sqlite3* handle) { sqlite3_busy_timeout(handle, kLockPatience.count()); };
  const std::unique_ptr<sqlite3, decltype(be_patient)> afterwards(Handle(), be_patient);
  sqlite3_busy_timeout(Handle(), 0);
  work();
}

void SqliteConnection::KeepLogOnClose() {
  sqlite3_db_config(Handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

SqliteStatement::SqliteStatement(SqliteConnection& connection, const std::string& sql)
    : connection_(connection) {
  sqlite3_stmt* statement = nullptr;
  const int code =
      sqlite3_prepare_v2(connection.Handle(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  statement_.reset(statement);
  if (code != SQLITE_OK) throw connection_.Failure(code);
}

void SqliteStatement::Bind(int parameter, std::string_view text) {
  const int code = sqlite3_bind_text64(statement_.get(), parameter, text.empty() ? "" : text.data(),
                                       text.size(), SQLITE_STATIC, SQLITE_UTF8);
  if (code != SQLITE_OK) throw connection_.Failure(code);
}

void SqliteStatement::Bind(int parameter, std::int64_t number) {
  const int code = sqlite3_bind_int64(statement_.get(), parameter, number);
  if (code != SQLITE_OK) throw connection_.Failure(code);
}

void SqliteStatement::Bind(int parameter, const std::vector<std::string>& texts) {
  for (const std::string& text : texts) Bind(parameter++, text);
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) throw connection_.Failure(code);
  return code == SQLITE_ROW;
}

std::string SqliteStatement::Text(int column) {
  const void* text = sqlite3_column_blob(statement_.get(), column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
  return text == nullptr ? std::string() : std::string(static_cast<const char*>(text), size);
}

std::int64_t SqliteStatement::Integer(int column) {
  return sqlite3_column_int64(statement_.get(), column);
}

std::vector<std::string> SqliteStatement::Texts(int column, std::size_t count) {
  std::vector<std::string> texts(count);
  for (std::string& text : texts) text = Text(column++);
  return texts;
}

std::string QuotedIdentifier(std::string_view name) {
  std::string quoted = "\"";
  for (const char letter : name) {
    if (letter == '"') quoted += '"';
    quoted += letter;
  }
  return quoted + '"';
}

}  // namespace orven
