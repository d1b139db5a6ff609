// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "base/runtime_error.h"
#include "platform/database.h"
#include "records/call.h"

namespace orven::test {

/// Call records in memory. The simulation makes thousands per second, too many for files.
class MemoryDatabase : public DatabaseControl {
 public:
  using Fields = std::vector<std::string>;

  /// Called before each change. If it throws, the change fails with that exception.
  std::function<void()> before_write = [] {};
  std::string open_note;
  std::string opened_path;
  int writes = 0;
  int added = 0;      ///< number of records added
  bool gone = false;  ///< the file is lost and cannot be created again

  std::vector<Fields>& Records() { return records_; }
  std::string Field(std::size_t record, std::string_view field) const {
    return records_.at(record).at(Column(field));
  }
  /// Replaces the file by an empty one, as if it had been lost.
  void LoseFile() {
    records_.clear();
    identities_.clear();
    if (current_ != 0) edited_.reset();
    current_ = 0;
  }
  /// Adds a record. Fields that are not given are empty.
  void Add(const std::map<std::string, std::string>& fields) {
    records_.emplace_back(kCallFields.size());
    for (const auto& [field, value] : fields) records_.back().at(Column(field)) = value;
  }

  std::string Open(const std::string& path) override {
    opened_path = path;
    Require(!gone);
    return open_note;
  }
  RecordTable Query(std::string_view query) override {
    Require(query == kGetAll);
    return {Table()};
  }
  std::int32_t RecordCount() override { return static_cast<std::int32_t>(Table().size()); }
  std::int32_t CountRecords(std::string_view field, std::string_view value) override {
    const auto has = [&](const Fields& record) { return record.at(Column(field)) == value; };
    return static_cast<std::int32_t>(std::ranges::count_if(Table(), has));
  }
  Fields Record(std::int32_t number) override { return Table().at(Index(number)); }
  std::int64_t Identity(std::int32_t number) override { return Identities().at(Index(number)); }
  std::int32_t Locate(std::int64_t identity) override {
    const auto& all = Identities();
    const auto found = std::ranges::find(all, identity);
    return found == all.end() ? 0 : static_cast<std::int32_t>(found - all.begin()) + 1;
  }
  std::int64_t NewestBefore(std::int64_t identity, const std::vector<FieldValue>& unlike) override {
    for (auto record = RecordCount(); record > 0; --record) {
      const auto is = [&](const FieldValue& one) {
        return Record(record).at(Column(one.field)) == one.value;
      };
      if (Identity(record) < identity && std::ranges::none_of(unlike, is)) return Identity(record);
    }
    return 0;
  }
  std::int32_t FieldIndex(std::string_view field) const override {
    return static_cast<std::int32_t>(Column(field));
  }
  void MoveTo(std::int32_t number) override {
    Index(number);
    current_ = number;
    edited_.reset();
  }
  void MoveFirst() override { MoveTo(1); }
  void MoveNext() override { MoveTo(current_ + 1); }
  void AddNew() override {
    Require(!gone);
    current_ = 0;
    edited_ = Fields(kCallFields.size());
  }
  void Edit() override { edited_ = Record(current_); }
  void SetField(std::string_view field, std::string_view value) override {
    Require(edited_.has_value());
    edited_->at(Column(field)) = value;
  }
  void SetField(std::string_view field, std::int32_t value) override {
    SetField(field, std::to_string(value));
  }
  std::string GetField(std::string_view field) override {
    return (edited_ ? *edited_ : Record(current_)).at(Column(field));
  }
  void Update() override {
    Require(!gone && edited_);
    before_write();
    ++writes;
    if (current_ == 0) {
      records_.emplace_back();
      ++added;
      current_ = RecordCount();
    }
    records_.at(Index(current_)) = *edited_;
    edited_.reset();
  }
  void Delete() override { Erase(static_cast<std::int32_t>(Index(current_)), current_); }
  void DeleteFirst(std::int32_t number) override { Erase(0, number); }
  void DeleteAll() override { Erase(0, RecordCount()); }

 private:
  static void Require(bool holds) {
    if (!holds) throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the database is not open");
  }
  static std::size_t Column(std::string_view field) {
    const auto found = std::ranges::find(kCallFields, field);
    if (found == kCallFields.end()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return static_cast<std::size_t>(found - kCallFields.begin());
  }
  const std::vector<Fields>& Table() const {
    Require(!gone);
    return records_;
  }
  std::size_t Index(std::int32_t number) const {
    if (number < 1 || static_cast<std::size_t>(number) > Table().size())
      throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return static_cast<std::size_t>(number) - 1;
  }
  /// Returns the records' identities. Assigns missing ones first, because tests change Records() directly.
  const std::vector<std::int64_t>& Identities() {
    identities_.resize(std::min(identities_.size(), Table().size()));
    while (identities_.size() < records_.size()) identities_.push_back(++last_identity_);
    return identities_;
  }
  /// Erases the records from index `first` up to, but not including, `end`.
  void Erase(std::int32_t first, std::int32_t end) {
    if (end > 0) Index(end);
    before_write();
    Identities();
    identities_.erase(identities_.begin() + first, identities_.begin() + end);
    records_.erase(records_.begin() + first, records_.begin() + end);
    current_ = 0;
  }

  std::vector<Fields> records_;
  std::vector<std::int64_t> identities_;
  std::int64_t last_identity_ = 0;
  std::int32_t current_ = 0;  ///< 0 if there is none or a record is being added
  std::optional<Fields> edited_;
};

}  // namespace orven::test
