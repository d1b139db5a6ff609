// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/memory_database.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "records/call.h"

namespace orven::test {

std::int32_t MemoryDatabase::FieldIndex(std::string_view field) const {
  const auto* found = std::find(kCallFields.begin(), kCallFields.end(), field);
  if (found == kCallFields.end()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
  return static_cast<std::int32_t>(found - kCallFields.begin());
}

std::string MemoryDatabase::Field(std::size_t record, std::string_view field) const {
  return records_.at(record).at(static_cast<std::size_t>(FieldIndex(field)));
}

void MemoryDatabase::Add(const std::map<std::string, std::string>& fields) {
  Fields record(kCallFields.size());
  for (const auto& [field, value] : fields) record.at(static_cast<std::size_t>(FieldIndex(field))) = value;
  records_.push_back(std::move(record));
}

std::string MemoryDatabase::Open(const std::string& path) {
  opened_path = path;
  Reach();
  return open_note;
}

void MemoryDatabase::LoseFile() {
  records_.clear();
  identities_.clear();
  current_ = 0;
  if (!adding_) edited_.reset();
}

void MemoryDatabase::Reach() const {
  if (gone) throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the database is not open");
}

std::int32_t MemoryDatabase::RecordCount() {
  Reach();
  return static_cast<std::int32_t>(records_.size());
}

std::vector<std::string> MemoryDatabase::Record(std::int32_t number) {
  return records_.at(At(number));
}

std::int64_t MemoryDatabase::Identity(std::int32_t number) {
  return Identities().at(At(number));
}

RecordTable MemoryDatabase::Query(std::string_view query) {
  if (query != kGetAll) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  Reach();
  return {records_};
}

std::size_t MemoryDatabase::At(std::int32_t number) const {
  Reach();
  if (number < 1 || static_cast<std::size_t>(number) > records_.size()) {
    throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
  }
  return static_cast<std::size_t>(number) - 1;
}

const std::vector<std::int64_t>& MemoryDatabase::Identities() {
  Reach();
  identities_.resize(std::min(identities_.size(), records_.size()));
  while (identities_.size() < records_.size()) identities_.push_back(++last_identity_);
  return identities_;
}

std::int32_t MemoryDatabase::CountRecords(std::string_view field, std::string_view value) {
  Reach();
  const auto column = static_cast<std::size_t>(FieldIndex(field));
  return static_cast<std::int32_t>(
      std::ranges::count_if(records_, [&](const Fields& record) { return record.at(column) == value; }));
}

std::int32_t MemoryDatabase::Locate(std::int64_t identity) {
  const auto& all = Identities();
  const auto found = std::ranges::find(all, identity);
  return found == all.end() ? 0 : static_cast<std::int32_t>(found - all.begin()) + 1;
}

std::int64_t MemoryDatabase::NewestBefore(std::int64_t identity, const std::vector<FieldValue>& unlike) {
  const auto& all = Identities();
  for (auto record = all.size(); record-- > 0;) {
    const auto is = [&](const FieldValue& one) { return Field(record, one.field) == one.value; };
    if (all[record] < identity && std::ranges::none_of(unlike, is)) return all[record];
  }
  return 0;
}

void MemoryDatabase::MoveTo(std::int32_t number) {
  At(number);
  current_ = number;
  edited_.reset();
}

void MemoryDatabase::AddNew() {
  Reach();
  edited_ = Fields(kCallFields.size());
  adding_ = true;
}

void MemoryDatabase::Edit() {
  Reach();
  if (current_ == 0) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  edited_ = records_.at(static_cast<std::size_t>(current_) - 1);
  adding_ = false;
}

void MemoryDatabase::SetField(std::string_view field, std::string_view value) {
  if (!edited_) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  edited_->at(static_cast<std::size_t>(FieldIndex(field))) = value;
}

std::string MemoryDatabase::GetField(std::string_view field) {
  const auto column = static_cast<std::size_t>(FieldIndex(field));
  if (edited_) return edited_->at(column);
  if (current_ == 0) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  return records_.at(static_cast<std::size_t>(current_) - 1).at(column);
}

void MemoryDatabase::Update() {
  Reach();
  if (!edited_) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  before_write();
  ++writes;
  if (adding_) {
    records_.push_back(*edited_);
    ++added;
    current_ = RecordCount();
  } else {
    records_.at(static_cast<std::size_t>(current_) - 1) = *edited_;
  }
  edited_.reset();
}

void MemoryDatabase::Delete() {
  Reach();
  if (current_ == 0) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  before_write();
  Identities();
  identities_.erase(identities_.begin() + current_ - 1);
  records_.erase(records_.begin() + current_ - 1);
  current_ = 0;
}

void MemoryDatabase::DeleteFirst(std::int32_t number) {
  At(number);
  before_write();
  Identities();
  identities_.erase(identities_.begin(), identities_.begin() + number);
  records_.erase(records_.begin(), records_.begin() + number);
  current_ = 0;
}

void MemoryDatabase::DeleteAll() {
  Reach();
  before_write();
  identities_.clear();
  records_.clear();
  current_ = 0;
}

}  // namespace orven::test
