// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/open_calls.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <utility>

#include "base/text.h"
#include "core/error_trap.h"

namespace orven {
namespace {

constexpr std::string_view kNoteStart = ".call-";

/// Interval at which a call's row is looked after.
constexpr std::chrono::seconds kLook{1};

/// Ends each complete line of a note.
constexpr std::string_view kComplete = "\t.";

/// The texts that are kept of a call, as the first fields. After them: a message was left, a mail is due, and
/// how often the call was kept, and the application folder.
constexpr std::array kTexts{
    &Call::caller_name,     &Call::caller_number,    &Call::time,      &Call::date,  &Call::message_file_name,
    &Call::ring_count_text, &Call::recording_folder, &Call::recording, &Call::place, &Call::message_path};

std::int64_t ToNumber(std::string_view text) {
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

Call CallOf(const OpenCall& row) {
  Call call;
  call.key = row.key;
  call.record = row.record;
  auto field = row.fields.begin();
  for (const auto text : kTexts) call.*text = *field++;
  call.message_left = *field++ == "1";
  call.mail_due = *field++ == "1";
  call.step = ToNumber(*field);
  return call;
}

std::int64_t KeyOf(std::string_view note) {
  return ToNumber(note.substr(kNoteStart.size()));
}

bool IsPlain(unsigned char byte) {
  return byte >= 0x20 && byte != 0x7F && byte != '%';
}

}  // namespace

OpenCall OpenCalls::RowOf(const Call& call) const {
  OpenCall row{call.key, call.record, {}};
  row.fields.reserve(kOpenCallFields.size());
  for (const auto text : kTexts) row.fields.push_back(call.*text);
  row.fields.emplace_back(call.message_left ? "1" : "0");
  row.fields.emplace_back(call.mail_due ? "1" : "0");
  row.fields.push_back(std::to_string(call.step));
  row.fields.push_back(folder_);
  return row;
}

OpenCalls::OpenCalls(DatabaseControl& database, Files& files, Clock& clock, EventLoop& loop, SystemLog& log,
                     std::string folder)
    : database_(database),
      files_(files),
      clock_(clock),
      log_(log),
      folder_(std::move(folder)),
      tmrWatch_(loop.MakeTimer([this] { Watch(); })) {}

void OpenCalls::Begin(Call& call) {
  using std::chrono::microseconds;
  const auto now = std::chrono::floor<microseconds>(clock_.Now().time_since_epoch());
  last_ = std::max<std::int64_t>(last_ + 1, now.count());
  call.key = last_;
  open_[call.key];
  Note(call);
  tmrWatch_->Start(kLook);
}

bool OpenCalls::Note(Call& call) {
  const auto open = open_.find(call.key);
  if (open == open_.end()) return true;
  open->second = {call.recording, call.place};
  ++call.step;
  const ErrorTrap trap = failing_ ? ErrorTrap::Silent() : ErrorTrap(log_, "ErrKeepCall ");
  if (!ErrorTrap::Silent()([&] { KeepRow(call); })) {
    failing_ = !trap([&] { WriteNote(RowOf(call)); });
    return !failing_;
  }
  failing_ = false;
  DropNote(call);
  return true;
}

void OpenCalls::DropNote(const Call& call) {
  if (!noted_.contains(call.key)) return;
  ErrorTrap::Silent()([&] { files_.Delete(NotePath(call.key)); });
  if (!files_.Exists(NotePath(call.key))) noted_.erase(call.key);
}

void OpenCalls::KeepRow(const Call& call) {
  auto row = RowOf(call);
  database_.Keep(row);
  if (row.key == last_) newest_ = std::move(row);
}

/// A call may last for minutes without a step. If the records are replaced by another file meanwhile, its row
/// has to follow; if they are gone, it becomes a note.
void OpenCalls::Watch() {
  if (!open_.contains(last_)) return tmrWatch_->Stop();
  if (newest_.key != last_) return;  // it is being filed, or has a note
  if (ErrorTrap::Silent()([&] { database_.Keep(newest_); }) || noted_.contains(newest_.key)) return;
  ErrorTrap::Silent()([&] { WriteNote(newest_); });
}

/// A row that says what became of the call is there before its note goes, and until then.
bool OpenCalls::Close(Call& call) {
  if (!open_.contains(call.key)) return true;
  const bool noted = noted_.contains(call.key);
  if (noted && (!Note(call) || noted_.contains(call.key))) return false;
  if (!ErrorTrap::Silent()([&] { database_.Close(call.key); })) return Note(call), false;
  open_.erase(call.key);
  return true;
}

void OpenCalls::LeaveOut(Call& call) {
  call.record = kNoRecord;
  Close(call);
}

OpenCall OpenCalls::RowFor(const Call& call, bool finished) {
  if (newest_.key == call.key) newest_ = {};  // it is changed together with the record
  return finished && !noted_.contains(call.key) ? OpenCall{call.key, 0, {}} : RowOf(call);
}

bool OpenCalls::Claims(const GrownRecording& grown) const {
  return std::ranges::any_of(open_, [&](const auto& call) {
    return !call.second.recording.empty() && grown.Is(call.second.recording);
  });
}

bool OpenCalls::IsChosen(const std::string& path) const {
  return std::ranges::any_of(open_, [&](const auto& call) { return call.second.place == path; });
}

std::string OpenCalls::NotePath(std::int64_t key) const {
  return folder_ + std::string(kNoteStart) + std::to_string(key);
}

/// A line that was torn by a crash or a full disk does not harm the next one.
void OpenCalls::WriteNote(const OpenCall& row) {
  auto line = "\n" + std::to_string(row.record);
  for (const auto& field : row.fields) line += "\t" + PercentEncoded(field, IsPlain);
  noted_.insert(row.key);
  files_.Append(NotePath(row.key), line + std::string(kComplete));
}

/// The call as the last complete line has it.
std::optional<Call> OpenCalls::ReadNote(const std::string& path) const {
  std::optional<Call> call;
  const auto content = files_.Read(path);
  for (const auto& line : Split(content, '\n')) {
    auto parts = Split(line, '\t');
    if (parts.size() != kOpenCallFields.size() + 2 || !line.ends_with(kComplete)) continue;
    OpenCall row{0, ToNumber(parts.front()), {}};
    for (std::size_t part = 1; part <= kOpenCallFields.size(); ++part)
      row.fields.push_back(PercentDecoded(parts[part]).value_or(parts[part]));
    call = CallOf(row);
  }
  return call;
}

void OpenCalls::LoadNote(const std::string& name, std::map<std::int64_t, Call>& calls) {
  const auto key = KeyOf(name);
  if (open_.contains(key)) return;  // a call of this run
  auto note = ReadNote(folder_ + name);
  if (!note || NotePath(key) != folder_ + name) {
    files_.Rename(folder_ + name, folder_ + name.substr(1) + ".damaged");
    log_.WriteSystem("The note of a call is damaged; it is kept as " + name.substr(1) + ".damaged");
    return;
  }
  noted_.insert(key);
  auto& call = calls[key];
  note->key = key;
  // What the row says of the record holds: it was written together with that.
  if (call.key == 0 || (call.record == 0 && note->step > call.step)) call = *note;
}

std::vector<Call> OpenCalls::Load() {
  std::map<std::int64_t, Call> calls;
  for (const auto& row : database_.OpenCalls()) {
    const auto& home = row.fields.back();
    const bool is_ours = home.empty() || home == folder_ || !files_.Exists(home);
    if (is_ours && !open_.contains(row.key)) calls[row.key] = CallOf(row);
  }
  const ErrorTrap trap(log_, "ErrRecoverCall ");
  for (const auto& name : files_.List(folder_, std::string(kNoteStart) + "*")) {
    // Without its note a call may be filed twice: then it waits for the next start.
    if (!trap([&] { LoadNote(name, calls); })) calls.erase(KeyOf(name));
  }
  std::vector<Call> loaded;
  for (auto& [key, call] : calls) {
    open_[key] = {call.recording, call.place};
    last_ = std::max(last_, key);
    loaded.push_back(std::move(call));
  }
  return loaded;
}

}  // namespace orven
