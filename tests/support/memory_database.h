// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/database.h"

namespace orven::test {

/// Call records in memory.
class MemoryDatabase : public DatabaseControl {
 public:
  using Fields = std::vector<std::string>;

  /// Called before each operation that changes records; throws what the operation shall throw.
  std::function<void()> before_write = [] {};
  std::string open_note;
  std::string opened_path;
  int writes = 0;
  int added = 0;      ///< records
  bool gone = false;  ///< the file has gone and no other can be made

  std::vector<Fields>& Records() { return records_; }
  /// A field of a record, both as the program names them.
  std::string Field(std::size_t record, std::string_view field) const;
  /// The file is taken away: an empty one takes its place.
  void LoseFile();
  /// Adds a record; fields that are not given are empty.
  void Add(const std::map<std::string, std::string>& fields);

  std::string Open(const std::string& path) override;
  RecordTable Query(std::string_view query) override;
  std::int32_t RecordCount() override;
  std::int32_t CountRecords(std::string_view field, std::string_view value) override;
  std::vector<std::string> Record(std::int32_t number) override;
  std::int64_t Identity(std::int32_t number) override;
  std::int32_t Locate(std::int64_t identity) override;
  std::int64_t NewestBefore(std::int64_t identity, const std::vector<FieldValue>& unlike) override;
  std::int32_t FieldIndex(std::string_view field) const override;
  void MoveTo(std::int32_t number) override;
  void MoveFirst() override { MoveTo(1); }
  void MoveNext() override { MoveTo(current_ + 1); }
  void AddNew() override;
  void Edit() override;
  void SetField(std::string_view field, std::string_view value) override;
  void SetField(std::string_view field, std::int32_t value) override {
    SetField(field, std::to_string(value));
  }
  std::string GetField(std::string_view field) override;
  void Update() override;
  void Delete() override;
  void DeleteFirst(std::int32_t number) override;
  void DeleteAll() override;

 private:
  void Reach() const;
  std::size_t At(std::int32_t number) const;
  const std::vector<std::int64_t>& Identities();

  std::vector<Fields> records_;
  std::vector<std::int64_t> identities_;  ///< follows records_ when it is looked at
  std::int64_t last_identity_ = 0;
  std::int32_t current_ = 0;
  std::optional<Fields> edited_;
  bool adding_ = false;
};

}  // namespace orven::test
