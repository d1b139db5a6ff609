// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// The result of a query: one vector of texts per record, columns in the order of FieldIndex.
struct RecordTable {
  std::vector<std::vector<std::string>> records;  ///< [record row][field column]
};

/// A value in a field.
struct FieldValue {
  std::string_view field;
  std::string_view value;
};

/// The record database control (the program's `DataBase1`): records of text fields in insertion order,
/// addressed by 1-based position through one current-record cursor. An update is a durable transaction. Every
/// operation throws RuntimeError when it fails; then the stored records are unchanged. User-interface thread.
class DatabaseControl {
 public:
  virtual ~DatabaseControl() = default;

  /// Opens the database file, creating it if it is missing. A file that is damaged or is not a database is
  /// renamed to a dated name, and a new one is opened with the records that could be read, in the same order
  /// and with the same identities. The returned text says so, for the log; empty when the file was fine.
  virtual std::string Open(const std::string& path) = 0;

  /// Runs `query`; "Get *" gives all records with all fields. Throws 5 on any other text.
  virtual RecordTable Query(std::string_view query) = 0;

  virtual std::int32_t RecordCount() = 0;

  /// How many records hold `value` in `field`; throws 9 for an unknown field.
  virtual std::int32_t CountRecords(std::string_view field, std::string_view value) = 0;

  /// All fields of record `number` (1-based), as Query gives them; throws 9 when there is no such
  /// record. The current record does not change.
  virtual std::vector<std::string> Record(std::int32_t number) = 0;

  /// The identity of record `number`, which stays the same when its position changes. Never 0; a
  /// record added later has a greater one. Throws 9 when there is no such record.
  virtual std::int64_t Identity(std::int32_t number) = 0;

  /// Position of the record with that identity, 0 when there is none.
  virtual std::int32_t Locate(std::int64_t identity) = 0;

  /// Identity of the newest record that is older than the one with `identity` (which may be deleted) and has
  /// none of the values `unlike`; 0 when there is none. One query, no matter how many records it skips.
  /// Throws 9 for an unknown field.
  virtual std::int64_t NewestBefore(std::int64_t identity, const std::vector<FieldValue>& unlike) = 0;

  /// Column of a field in the query's records (0-based); throws 9 for an unknown field.
  virtual std::int32_t FieldIndex(std::string_view field) const = 0;

  /// Makes record `number` (1-based) the current one; throws 9 when there is no such record.
  virtual void MoveTo(std::int32_t number) = 0;
  virtual void MoveFirst() = 0;
  virtual void MoveNext() = 0;

  /// Starts a new record with empty fields; Update stores it.
  virtual void AddNew() = 0;

  /// Starts to change the current record; throws 5 without one.
  virtual void Edit() = 0;

  /// Sets a field of the record that AddNew or Edit started; throws 5 without one, 9 for an unknown field.
  virtual void SetField(std::string_view field, std::string_view value) = 0;
  virtual void SetField(std::string_view field, std::int32_t value) = 0;

  /// A field of the record being added or edited, else of the current record.
  virtual std::string GetField(std::string_view field) = 0;

  /// Stores the record that AddNew (it becomes the last and current one) or Edit started.
  virtual void Update() = 0;

  /// Removes the current record; there is no current record afterwards.
  virtual void Delete() = 0;

  /// Removes the records 1 to `number`, all or none.
  virtual void DeleteFirst(std::int32_t number) = 0;

  /// Removes every record.
  virtual void DeleteAll() = 0;
};

}  // namespace orven
