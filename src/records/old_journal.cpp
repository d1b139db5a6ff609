// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/old_journal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "records/call.h"
#include "records/open_calls.h"

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

template <class Number>
std::optional<Number> ToNumber(std::string_view text) {
  Number number{};
  const auto* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

Call CallOf(const std::vector<std::string>& fields) {
  Call call;
  auto field = fields.begin() + 2;
  for (const auto text : kTexts) {
    call.*text = PercentDecoded(*field).value_or(*field);
    ++field;
  }
  call.message_left = *field == "1";
  call.record = ToNumber<std::int64_t>(fields.back()).value_or(0);
  return call;
}

/// Applies one line; false when it is invalid.
bool TakeIn(std::string_view line, std::map<std::uint32_t, Call>& calls, std::set<std::uint32_t>& mails) {
  const auto fields = Split(line, '\t');
  const auto entry = fields.size() < 2 ? std::nullopt : ToNumber<std::uint32_t>(fields[1]);
  if (!entry) return false;
  const auto& word = fields.front();
  if (fields.size() == kFields && word == "call") return calls[*entry] = CallOf(fields), true;
  if (fields.size() != 2) return false;
  if (word == "mail") return mails.insert(*entry), true;
  if (word == "done") calls.erase(*entry);
  mails.erase(*entry);
  return word == "done" || word == "mailed";
}

std::string NameForDamaged(const Files& files, const std::string& path) {
  auto aside = path + ".damaged";
  for (int number = 2; files.Exists(aside); ++number) aside = path + ".damaged-" + std::to_string(number);
  return aside;
}

}  // namespace

void TakeOverJournal(const OldJournal& ports, const std::string& folder) {
  auto& [files, database, log] = ports;
  const auto path = folder + "Call.journal";
  if (!files.Exists(path)) return;
  // Their keys stay the same when this is done again.
  const auto begin =
      std::chrono::floor<std::chrono::microseconds>(files.LastModified(path).time_since_epoch());
  std::map<std::uint32_t, Call> calls;
  std::set<std::uint32_t> mails;
  auto lines = Split(files.Read(path), '\n');
  const bool torn = lines.size() == 1 && !lines.front().empty();
  lines.pop_back();  // empty, or what a crash leaves
  const auto invalid = [&](const auto& line) { return !line.empty() && !TakeIn(line, calls, mails); };
  const bool damaged = std::ranges::count_if(lines, invalid) > 0 || torn;
  for (auto& [entry, call] : calls) {
    call.key = begin.count() + entry;
    call.mail_due = mails.contains(entry);
    database.Keep(RowOf(call));
  }
  if (!damaged) return files.Delete(path);
  const auto aside = NameForDamaged(files, path);
  files.Rename(path, aside);
  log.WriteSystem("The journal of calls is damaged; it is kept as " + aside);
}

}  // namespace orven
