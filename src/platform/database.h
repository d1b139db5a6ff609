// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// What a query gives: one vector of texts a record, columns in the order of FieldIndex.
struct RecordTable {
  std::vector<std::vector<std::string>> records;  ///< [record row][field column]
};

/// A value in a field.
struct FieldValue {
  std::string_view field;
  std::string_view value;
};

/// The record database control (the program's `DataBase1`): records of text fields in insertion
/// order, addressed by 1-based position through one current-record cursor. An update is a
/// transaction: on return it has reached the disk. Every operation throws RuntimeError when it
/// fails; then the stored records are unchanged. User-interface thread.
class DatabaseControl {
 public:
  virtual ~DatabaseControl() = default;

  /// Opens the database file, creating it when absent. A file that is not a database, or is
  /// damaged, is set aside under a dated name beside it, and a fresh one is opened with the records that
  /// could be read, which keep their order and identities; the returned text then says so for the log,
  /// otherwise it is empty.
  virtual std::string Open(const std::string& path) = 0;

  /// Runs `query`; "Get *" gives all records with all fields. Throws 5 on any other text.
  virtual RecordTable Query(std::string_view query) = 0;

  virtual std::int32_t RecordCount() = 0;

  /// How many records hold `value` in `field`; throws 9 for an unknown field.
  virtual std::int32_t CountRecords(std::string_view field, std::string_view value) = 0;

  /// All fields of record `number` (1-based), as Query gives them; throws 9 when there is no such
  /// record. The current record stays the same one.
  virtual std::vector<std::string> Record(std::int32_t number) = 0;

  /// What identifies record `number` as long as it exists, whatever its position becomes. Never 0; a
  /// record added later has a greater one. Throws 9 when there is no such record.
  virtual std::int64_t Identity(std::int32_t number) = 0;

  /// Position of the record with that identity, 0 when there is none.
  virtual std::int32_t Locate(std::int64_t identity) = 0;

  /// Identity of the newest record that is older than the one with `identity`, which may be gone, and that
  /// holds none of the values `unlike`; 0 when there is none. However many records are passed over, it is one
  /// query. Throws 9 for an unknown field.
  virtual std::int64_t NewestBefore(std::int64_t identity, const std::vector<FieldValue>& unlike) = 0;

  /// Column of a field in the query's records (0-based); throws 9 for an unknown field.
  virtual std::int32_t FieldIndex(std::string_view field) const = 0;

  /// Makes record `number` (1-based) the current one; throws 9 when there is no such record.
  virtual void MoveTo(std::int32_t number) = 0;
  virtual void MoveFirst() = 0;
  virtual void MoveNext() = 0;

  /// Begins a new record, all fields empty, stored by Update.
  virtual void AddNew() = 0;

  /// Begins changing the current record; throws 5 without one.
  virtual void Edit() = 0;

  /// Sets a field of the record begun by AddNew or Edit; throws 5 without one, 9 for an unknown field.
  virtual void SetField(std::string_view field, std::string_view value) = 0;
  virtual void SetField(std::string_view field, std::int32_t value) = 0;

  /// A field of the record being added or edited, else of the current record.
  virtual std::string GetField(std::string_view field) = 0;

  /// Stores the record begun by AddNew (it becomes the last and current one) or Edit.
  virtual void Update() = 0;

  /// Removes the current record; there is no current record afterwards.
  virtual void Delete() = 0;

  /// Removes the records 1 to `number`, all or none.
  virtual void DeleteFirst(std::int32_t number) = 0;

  /// Removes every record.
  virtual void DeleteAll() = 0;
};

}  // namespace orven
