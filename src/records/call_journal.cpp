// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_journal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "core/error_trap.h"

namespace orven {
namespace {

constexpr const char* kCallLine = "call";
constexpr const char* kDoneLine = "done";
constexpr const char* kMailLine = "mail";      ///< a mail is due
constexpr const char* kMailedLine = "mailed";  ///< it has been handed over
constexpr const char* kHexDigits = "0123456789ABCDEF";

/// The texts of a call that the journal keeps, in their order in a line.
constexpr std::array kTexts{&Call::date,
                            &Call::time,
                            &Call::caller_name,
                            &Call::caller_number,
                            &Call::ring_count_text,
                            &Call::message_file_name,
                            &Call::message_path};
constexpr std::array kTrailTexts{&CallTrail::growing_folder, &CallTrail::growing_name,
                                 &CallTrail::storing_path};

/// "call", number, the texts, message left, filed after, record.
constexpr std::size_t kFields = 2 + kTexts.size() + kTrailTexts.size() + 3;

/// Control characters and "%" become "%XX", so that the text fits in a field of a line.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (code >= 0x20 && code != 0x7F && character != '%') {
      escaped += character;
    } else {
      escaped += {'%', kHexDigits[code >> 4U], kHexDigits[code & 15U]};
    }
  }
  return escaped;
}

template <class Number>
std::optional<Number> ToNumber(std::string_view text, int base = 10) {
  Number number{};
  const auto* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::string Unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto code = text[i] == '%' ? ToNumber<unsigned char>(text.substr(i + 1, 2), 16) : std::nullopt;
    plain += code ? static_cast<char>(*code) : text[i];
    if (code) i += 2;
  }
  return plain;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t begin = 0;;) {
    const auto end = text.find(separator, begin);
    parts.emplace_back(text.substr(begin, end - begin));
    if (end == std::string_view::npos) return parts;
    begin = end + 1;
  }
}

std::string LineOf(const Call& call) {
  std::string line = kCallLine + ("\t" + std::to_string(call.trail.entry));
  for (const auto text : kTexts) line += "\t" + Escaped(call.*text);
  for (const auto text : kTrailTexts) line += "\t" + Escaped(call.trail.*text);
  line += call.message_left ? "\t1\t" : "\t0\t";
  if (call.trail.filed_after) line += std::to_string(*call.trail.filed_after);
  line += "\t";
  return call.trail.record ? line + std::to_string(*call.trail.record) : line;
}

std::optional<Call> CallOf(const std::vector<std::string>& fields, std::uint32_t entry) {
  if (fields.size() != kFields) return std::nullopt;
  Call call;
  call.trail.entry = entry;
  auto field = fields.begin() + 2;
  for (const auto text : kTexts) call.*text = Unescaped(*field++);
  for (const auto text : kTrailTexts) call.trail.*text = Unescaped(*field++);
  call.message_left = *field++ == "1";
  call.trail.filed_after = ToNumber<std::int64_t>(*field++);
  call.trail.record = ToNumber<std::int64_t>(*field);
  return call;
}

std::string LineOf(const char* word, const Call& call) {
  return word + ("\t" + std::to_string(call.trail.entry));
}

/// Applies one line; false when it is invalid.
bool TakeIn(std::string_view line, std::map<std::uint32_t, Call>& calls, std::set<std::uint32_t>& mails) {
  const auto fields = Split(line, '\t');
  const auto entry = fields.size() < 2 ? std::nullopt : ToNumber<std::uint32_t>(fields[1]);
  if (!entry) return false;
  if (fields.size() == 2) {
    const auto& word = fields.front();
    if (word == kMailLine) return mails.insert(*entry), true;
    if (word == kDoneLine) calls.erase(*entry);
    mails.erase(*entry);
    return word == kDoneLine || word == kMailedLine;
  }
  const auto call = fields.front() == kCallLine ? CallOf(fields, *entry) : std::nullopt;
  if (call) calls[*entry] = *call;
  return call.has_value();
}

}  // namespace

void CallJournal::Begin(Call& call) {
  call.trail.entry = ++last_;
  call.trail.filed_after = newest_record_;
  open_[call.trail.entry];
  Note(call);
}

void CallJournal::Note(const Call& call) {
  const auto entry = open_.find(call.trail.entry);
  if (entry == open_.end()) return;
  entry->second = call.trail.growing_name;
  Write(LineOf(call));
}

bool CallJournal::Claims(const GrownRecording& grown) const {
  return std::ranges::any_of(
      open_, [&](const auto& entry) { return !entry.second.empty() && grown.Is(entry.second); });
}

void CallJournal::AskForMail(const Call& call) {
  if (!open_.contains(call.trail.entry)) return;
  mail_asked_.insert(call.trail.entry);
  Write(LineOf(kMailLine, call));
}

void CallJournal::MailHandedOver(const Call& call) {
  if (mail_asked_.erase(call.trail.entry) == 0) return;
  if (awaiting_mail_.erase(call.trail.entry) > 0) return Done(call);
  Write(LineOf(kMailedLine, call));
}

std::vector<Call> CallJournal::AwaitingMail() const {
  std::vector<Call> calls;
  for (const auto& [entry, call] : awaiting_mail_) calls.push_back(call);
  return calls;
}

void CallJournal::Done(const Call& call) {
  if (mail_asked_.contains(call.trail.entry)) {
    awaiting_mail_[call.trail.entry] = call;
    return awaits_mail_();
  }
  if (open_.erase(call.trail.entry) == 0) return;
  // If the journal cannot be deleted, it at least says that the call is done.
  if (open_.empty() && ErrorTrap::Silent()([&] { files_.Delete(Path()); })) {
    last_line_.clear();
    torn_ = false;
    return;
  }
  if (files_.Exists(Path())) Write(LineOf(kDoneLine, call));
}

std::vector<Call> CallJournal::Unfinished() {
  if (!files_.Exists(Path())) return {};
  const auto lines = Split(files_.Read(Path()), '\n');
  torn_ = !lines.back().empty();  // the program ended, or the disk was full, while it was written
  std::map<std::uint32_t, Call> calls;
  std::set<std::uint32_t> mails;
  bool damaged = false;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    if (!lines[i].empty() && !TakeIn(lines[i], calls, mails)) damaged = true;
  }
  if (damaged || (torn_ && lines.size() == 1)) KeepDamaged();
  std::vector<Call> unfinished;
  for (const auto& [entry, call] : calls) {
    unfinished.push_back(call);
    open_[entry] = call.trail.growing_name;
    if (mails.contains(entry)) mail_asked_.insert(entry);
    last_ = std::max(last_, entry);
  }
  if (unfinished.empty()) files_.Delete(Path());
  return unfinished;
}

void CallJournal::KeepDamaged() {
  const ErrorTrap trap(log_, "ErrCallJournal ");
  trap([&] {
    auto aside = Path() + ".damaged";
    for (int number = 2; files_.Exists(aside); ++number)
      aside = Path() + ".damaged-" + std::to_string(number);
    files_.Copy(Path(), aside);
    log_.WriteSystem("The journal of calls is damaged; it is kept as " + aside);
  });
}

void CallJournal::Write(const std::string& line) {
  if (line == last_line_) return;
  const auto statement = [&] { Append(line); };
  const bool written = failing_ ? ErrorTrap::Silent()(statement)  // its cause is in the log
                                : ErrorTrap(log_, "ErrCallJournal ")(statement);
  failing_ = !written;
}

void CallJournal::Append(const std::string& line) {
  files_.Append(Path(), (torn_ ? "\n" : "") + line + "\n");
  torn_ = false;
  last_line_ = line;
}

}  // namespace orven
