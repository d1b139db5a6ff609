// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "adapters/database/record_file.h"
#include "platform/database.h"

namespace orven {

/// Records in one table of an SQLite file, which any SQLite tool can read while it is in use, and the open
/// calls in another. Row numbers (rowid) are the identities of records, in their order of insertion, and the
/// keys of open calls.
///
/// Positions are looked up in a copy of the row numbers in memory, which is read again when another program
/// has changed the file. If the file is moved or deleted while it is open, the path is opened again. If it
/// turns out to be damaged, it is repaired and the operation continues with the rows that could be read; an
/// operation with a position throws instead, because other records may have that position now. When Open
/// failed, Add, Query, RecordCount and OpenCalls try again (the disk may be back), and all other operations
/// throw 5.
class SqliteDatabase : public DatabaseControl {
 public:
  /// Takes one line for the log about what happened to the file after Open.
  using Report = std::function<void(const std::string&)>;

  /// `schema.open` has the fields of the open calls; their table gets the column `Record`, too. `loss` gets
  /// those of the reports after Open that are about records that may be lost.
  explicit SqliteDatabase(
      RecordSchema schema, Report report = [](const std::string&) {},
      Report loss = [](const std::string&) {});

  std::string Open(const std::string& path) override;
  RecordTable Query(std::string_view query) override;
  std::int32_t RecordCount() override;
  std::int32_t CountRecords(std::string_view field, std::string_view value) override;
  std::vector<std::string> Record(std::int32_t number) override;
  std::int64_t Identity(std::int32_t number) override;
  std::int32_t Locate(std::int64_t identity) override;
  std::int64_t NewestBefore(std::int64_t identity, const std::vector<FieldValue>& unlike) override;
  std::int32_t FieldIndex(std::string_view field) const override;
  std::int64_t Add(const std::vector<FieldValue>& values, const OpenCall& open = {}) override;
  void Change(std::int64_t identity, const std::vector<FieldValue>& values,
              const OpenCall& open = {}) override;
  void Remove(std::int64_t identity) override;
  void DeleteFirst(std::int32_t number) override;
  void DeleteAll() override;
  std::vector<OpenCall> OpenCalls() override;
  void Keep(const OpenCall& call) override;
  void Close(std::int64_t key) override;

 private:
  std::string OpenFile();
  void OpenAgain();
  void Refresh();
  void FollowFile();
  void Renew();
  enum class After { kAgain, kThrow };
  template <class Operation>
  auto Mending(const Operation& operation, After after = After::kAgain);
  template <class Operation>
  void Durably(const Operation& operation, After after = After::kAgain);
  void ReadRows();
  std::int64_t RowAt(std::int32_t number) const;
  std::int64_t Insert(const std::vector<FieldValue>& values);
  void Replace(std::int64_t row, const std::vector<FieldValue>& values);
  void Store(const OpenCall& call);
  void Remember(const OpenCall& call);

  RecordSchema schema_;
  Report report_;
  Report loss_;
  std::string table_;       ///< quoted
  std::string fields_;      ///< quoted, with commas between
  std::string open_table_;  ///< quoted
  std::string path_;
  std::string failure_;  ///< why the file is not open
  std::unique_ptr<SqliteConnection> connection_;
  std::string version_;             ///< SQLite's data version of `rows_`
  std::vector<std::int64_t> rows_;  ///< row numbers by position, ascending
  std::int64_t highest_ = 0;        ///< highest row number seen: none is reused while this object lives
  std::map<std::int64_t, OpenCall> open_;  ///< stored or read since Open
};

}  // namespace orven
