// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <functional>
#include <map>
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
  int added = 0;      ///< number of records added
  int refused = 0;    ///< number of records that could not be added
  bool gone = false;  ///< the file is lost and cannot be created again

  std::vector<Fields>& Records() { return records_; }
  std::string Field(std::size_t record, std::string_view field) const {
    return records_.at(record).at(Column(field));
  }
  /// Replaces the file by an empty one, as if it had been lost.
  void LoseFile() {
    records_.clear();
    identities_.clear();
    known_ = std::exchange(open, {});
  }
  /// Puts a record there without the program. Fields that are not given are empty.
  void Put(const std::vector<FieldValue>& values) { Set(records_.emplace_back(kCallFields.size()), values); }

  std::map<std::int64_t, OpenCall> open;  ///< the open calls, by key

  std::string Open(const std::string& path) override {
    opened_path = path;
    known_.clear();
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
  std::int64_t Add(const std::vector<FieldValue>& values, const OpenCall& call) override {
    Fields record(kCallFields.size());
    Set(record, values);
    ++refused;
    BeforeWrite();
    --refused;
    records_.push_back(std::move(record));
    ++added;
    const auto identity = Identities().back();
    Settle(call, identity);
    return identity;
  }
  void Change(std::int64_t identity, const std::vector<FieldValue>& values, const OpenCall& call) override {
    auto record = records_.at(Index(Locate(identity)));
    Set(record, values);
    BeforeWrite();
    records_.at(Index(Locate(identity))) = std::move(record);
    Settle(call, call.record);
  }
  void Remove(std::int64_t identity) override {
    const auto number = Locate(identity);
    Erase(static_cast<std::int32_t>(Index(number)), number);
  }
  void DeleteFirst(std::int32_t number) override { Erase(0, number); }
  void DeleteAll() override { Erase(0, RecordCount()); }

  std::vector<OpenCall> OpenCalls() override {
    Table();
    std::vector<OpenCall> calls;
    for (const auto& [key, call] : open) calls.push_back(call);
    return calls;
  }
  void Keep(const OpenCall& call) override {
    Table();
    if (const auto kept = open.find(call.key); kept != open.end() && kept->second == call) return;
    BeforeWrite();
    Settle(call, call.record);
  }
  void Close(std::int64_t key) override {
    Table();
    if (!open.contains(key)) return;
    BeforeWrite();
    Settle({key, 0, {}}, 0);
  }

 private:
  static void Require(bool holds) {
    if (!holds) throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the database is not open");
  }
  static std::size_t Column(std::string_view field) {
    const auto found = std::ranges::find(kCallFields, field);
    if (found == kCallFields.end()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return static_cast<std::size_t>(found - kCallFields.begin());
  }
  static void Set(Fields& record, const std::vector<FieldValue>& values) {
    for (const auto& [field, value] : values) record.at(Column(field)) = value;
  }
  /// Every operation notices that the file was replaced, and brings the open calls along.
  const std::vector<Fields>& Table() {
    Require(!gone);
    open.merge(known_);
    known_.clear();
    return records_;
  }
  void BeforeWrite() {
    Table();
    before_write();
  }
  void Settle(const OpenCall& call, std::int64_t record) {
    if (call.key == 0) return;
    if (call.fields.empty()) {
      open.erase(call.key);
    } else {
      open[call.key] = {call.key, record, call.fields};
    }
  }
  std::size_t Index(std::int32_t number) {
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
    Table();
    before_write();
    Identities();
    identities_.erase(identities_.begin() + first, identities_.begin() + end);
    records_.erase(records_.begin() + first, records_.begin() + end);
  }

  std::vector<Fields> records_;
  std::vector<std::int64_t> identities_;
  std::int64_t last_identity_ = 0;
  std::map<std::int64_t, OpenCall> known_;  ///< the open calls of a lost file, until the program notices
};

}  // namespace orven::test
