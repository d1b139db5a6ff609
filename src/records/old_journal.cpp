// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/old_journal.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "base/conversions.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "records/call.h"

namespace orven {
namespace {

/// "call", number, these texts, message left, newest record before it, its record.
constexpr std::array kTexts{&Call::date,
                            &Call::time,
                            &Call::caller_name,
                            &Call::caller_number,
                            &Call::ring_count_text,
                            &Call::message_file_name,
                            &Call::message_path,
                            &Call::recording_folder,
                            &Call::recording,
                            &Call::place};
constexpr std::size_t kFields = 2 + kTexts.size() + 3;

struct OldCall {
  Call call;
  std::optional<std::int64_t> filed_after;  ///< identity of the newest record before it
};

OldCall CallOf(const std::vector<std::string>& fields) {
  OldCall old;
  auto field = fields.begin() + 2;
  for (const auto text : kTexts) {
    old.call.*text = PercentDecoded(*field).value_or(*field);
    ++field;
  }
  old.call.message_left = *field++ == "1";
  old.filed_after = WholeNumber<std::int64_t>(*field++);
  old.call.record = WholeNumber<std::int64_t>(*field).value_or(0);
  return old;
}

/// Applies one line; false when it is invalid.
bool TakeIn(std::string_view line, std::map<std::uint32_t, OldCall>& calls, std::set<std::uint32_t>& mails) {
  const auto fields = Split(line, '\t');
  const auto entry = fields.size() < 2 ? std::nullopt : WholeNumber<std::uint32_t>(fields[1]);
  if (!entry) return false;
  const auto& word = fields.front();
  if (fields.size() == kFields && word == "call") return calls[*entry] = CallOf(fields), true;
  if (fields.size() != 2) return false;
  if (word == "mail") return mails.insert(*entry), true;
  if (word == "done") calls.erase(*entry);
  mails.erase(*entry);
  return word == "done" || word == "mailed";
}

/// Whether the record has the call's texts.
bool IsRecordOf(const Call& call, std::int32_t number, DatabaseControl& database) {
  const auto record = database.Record(number);
  const auto same = [&](const char* field, const std::string& text) {
    return record.at(static_cast<std::size_t>(database.FieldIndex(field))) == text;
  };
  return same(kCallName, call.caller_name) && same(kCallNumber, call.caller_number) &&
         same(kCallTime, call.time) && same(kCallDate, call.date) &&
         same(kCallMassageName, call.message_file_name);
}

/// The record that the call got before version 1.0 was killed, which may not have come to writing it down:
/// one that is newer than the newest before the call, and no other call's.
std::int64_t RecordOf(const OldCall& old, DatabaseControl& database, std::set<std::int64_t>& taken) {
  if (old.call.record != 0 || !old.filed_after) return old.call.record;
  for (auto number = database.RecordCount(); number > 0; --number) {
    const auto identity = database.Identity(number);
    if (identity <= *old.filed_after) return 0;
    if (IsRecordOf(old.call, number, database) && taken.insert(identity).second) return identity;
  }
  return 0;
}

std::string NameForDamaged(const Files& files, const std::string& path) {
  auto aside = path + ".damaged";
  for (int number = 2; files.Exists(aside); ++number) aside = path + ".damaged-" + std::to_string(number);
  return aside;
}

}  // namespace

void TakeOverJournal(const OldJournal& ports, const std::string& folder) {
  auto& [files, database, log, open] = ports;
  const auto path = folder + "Call.journal";
  if (!files.Exists(path)) return;
  // Their keys stay the same when this is done again.
  const auto begin =
      std::chrono::floor<std::chrono::microseconds>(files.LastModified(path).time_since_epoch());
  std::map<std::uint32_t, OldCall> calls;
  std::set<std::uint32_t> mails;
  auto lines = Split(files.Read(path), '\n');
  const bool torn = lines.size() == 1 && !lines.front().empty();
  lines.pop_back();  // empty, or what a crash leaves
  const auto invalid = [&](const auto& line) { return !line.empty() && !TakeIn(line, calls, mails); };
  const bool damaged = std::ranges::count_if(lines, invalid) > 0 || torn;
  std::set<std::int64_t> taken;
  for (auto& [entry, old] : calls) {
    old.call.key = begin.count() + entry;
    old.call.record = RecordOf(old, database, taken);
    old.call.mail_due = mails.contains(entry);
    database.Keep(open.RowOf(old.call));
  }
  try {
    if (!damaged) return files.Delete(path);
    const auto aside = NameForDamaged(files, path);
    files.Rename(path, aside);
    log.WriteSystem("The journal of calls is damaged; it is kept as " + aside);
  } catch (const RuntimeError&) {
    for (const auto& [entry, old] : calls) database.Close(old.call.key);  // the next start tries again
    throw;
  }
}

}  // namespace orven
