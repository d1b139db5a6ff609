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

/// A call that is not finished, as it is kept beside the records.
struct OpenCall {
  std::int64_t key = 0;             ///< greater than 0; a later call has a greater one
  std::int64_t record = 0;          ///< identity of its record; 0: none yet; -1: it gets none
  std::vector<std::string> fields;  ///< of any meaning, in an order that stays the same

  bool operator==(const OpenCall&) const = default;
};

/// The record database control (the program's `DataBase1`): records of text fields in insertion order,
/// addressed by 1-based position or by identity, and the open calls beside them. A change of a record is a
/// durable transaction. Every operation throws RuntimeError when it fails; then what is stored is unchanged.
/// User-interface thread.
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
  /// record.
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

  /// Adds a record with these values, the other fields empty, as the newest; returns its identity. In the
  /// same transaction the open call with `open`'s key is stored with that identity as its record; when `open`
  /// has no fields, that call is closed. A key of 0 names no call. Throws 9 for an unknown field.
  virtual std::int64_t Add(const std::vector<FieldValue>& values, const OpenCall& open = {}) = 0;

  /// Changes these fields of the record with this identity, and stores or closes `open` as Add does, with the
  /// record it names. Throws 9 when there is no such record, or for an unknown field.
  virtual void Change(std::int64_t identity, const std::vector<FieldValue>& values,
                      const OpenCall& open = {}) = 0;

  /// Removes the record with this identity; throws 9 when there is none.
  virtual void Remove(std::int64_t identity) = 0;

  /// Removes the records 1 to `number`, all or none.
  virtual void DeleteFirst(std::int32_t number) = 0;

  /// Removes every record.
  virtual void DeleteAll() = 0;

  /// The open calls, by key.
  virtual std::vector<OpenCall> OpenCalls() = 0;

  /// Stores an open call, replacing the one with its key. It outlives a crash of the program, but not always
  /// a loss of power, and never waits for another program's lock. If the file is replaced by another one, all
  /// open calls that this program has stored or read go there, too.
  virtual void Keep(const OpenCall& call) = 0;

  /// Closes the open call with this key, if there is one.
  virtual void Close(std::int64_t key) = 0;
};

}  // namespace orven
