// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_recovery.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "base/conversions.h"
#include "base/paths.h"
#include "records/call.h"
#include "records/message_files.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// Interval at which a failed step is tried again.
constexpr auto kTryAgain = 5s;

/// The fields that tell one call from another, and what a call holds for each.
constexpr std::array<std::pair<const char*, std::string Call::*>, 5> kTelling{
    {{kCallName, &Call::caller_name},
     {kCallNumber, &Call::caller_number},
     {kCallTime, &Call::time},
     {kCallDate, &Call::date},
     {kCallMassageName, &Call::message_file_name}}};

/// A growing file is written four times a second. One that was changed within this time and is not in the
/// journal may belong to another program that shares the folder.
constexpr auto kMayBeGrowing = 10s;

/// One that still grows after this time belongs to another program.
constexpr auto kStrayPatience = 15s;

/// Only while a recording is copied.
constexpr const char* kMended = ".mended-recording";

}  // namespace

CallRecovery::CallRecovery(Parts parts)
    : parts_(std::move(parts)), tmrAgain_(parts_.loop.MakeTimer([this] { TryAgain(); })) {}

ErrorTrap CallRecovery::Trap() const {
  return again_ ? ErrorTrap::Silent() : ErrorTrap(parts_.log, "ErrRecoverCall ");
}

void CallRecovery::Run() {
  if (!std::exchange(begun_, true)) Begin();
  TryAgain();
  again_ = true;
}

void CallRecovery::Begin() {
  Trap()([&] {
    for (auto& call : parts_.journal.Unfinished()) calls_.push_back({std::move(call)});
  });
  Trap()([&] {
    const auto folders = Folders();
    grown_.Look(parts_.files, {folders.begin(), folders.end()});
    strays_ = grown_.All();
  });
  strays_since_ = parts_.clock.Uptime();
}

void CallRecovery::TryAgain() {
  if (KnowNewestRecord()) {
    RecoverCalls();
    RecoverStrays();
  } else {  // opening them has reported why; it is unknown what has been filed
    strays_since_ = parts_.clock.Uptime();
  }
  const bool done = calls_.empty() && strays_.empty();
  if (done) tmrAgain_->Stop();
  if (!done && !tmrAgain_->Enabled()) tmrAgain_->Start(kTryAgain);
}

/// False while the records are not open.
bool CallRecovery::KnowNewestRecord() {
  return ErrorTrap::Silent()([&] { parts_.journal.SetNewestRecord(NewestRecord()); });
}

void CallRecovery::RecoverCalls() {
  if (calls_.empty() && strays_.empty()) return;
  const auto look = [&] {
    const auto folders = Folders();
    grown_.Look(parts_.files, {folders.begin(), folders.end()});
  };
  if (!Trap()(look)) return;
  for (auto call = calls_.begin(); call != calls_.end();) {
    bool over = false;
    Trap()([&] { over = Recover(*call); });
    call = over ? calls_.erase(call) : std::next(call);
  }
}

/// True when the call is done.
bool CallRecovery::Recover(Interrupted& interrupted) {
  auto& call = interrupted.call;
  if (interrupted.handed_over && !parts_.journal.IsOpen(call)) {
    Tell(interrupted, "Recovered call ");  // it was filed as soon as there was disk space
    return true;
  }
  const auto record = RecordOf(call);
  if (record == 0 && call.trail.record && parts_.DataBase1.Locate(*call.trail.record) == 0) {
    parts_.journal.Done(call);  // the record was deleted
    return true;
  }
  if (record == 0) return !interrupted.handed_over && HandOver(interrupted);
  if (interrupted.handed_over) Tell(interrupted, "Recovered call ");
  return Complete(call, record);
}

bool CallRecovery::HandOver(Interrupted& interrupted) {
  auto& call = interrupted.call;
  const auto message = FindMessage(call);
  const bool listed = parts_.is_listed(call);
  call.trail.message_due = message == Message::kOutOfReach;
  if (call.trail.message_due && !listed) {
    Tell(interrupted, "Interrupted call whose message cannot be reached: ");
    return false;
  }
  if (message == Message::kNone) call.trail.storing_path.clear();  // no message will follow
  const auto newest = NewestRecord();
  interrupted.handed_over = true;
  parts_.file(call);
  if (const auto filed = NewestRecord(); filed != newest) {
    call.trail.record = filed;
    taken_.insert(filed);
    Tell(interrupted, "Recovered call ");
  }
  if (!listed) Tell(interrupted, "Interrupted call, not listed: ");
  return !parts_.journal.IsOpen(call);
}

void CallRecovery::Tell(Interrupted& interrupted, const std::string& what) {
  if (!std::exchange(interrupted.told, true)) parts_.log.WriteSystem(what + Description(interrupted.call));
}

/// The call has a record, perhaps without its message.
bool CallRecovery::Complete(Call& call, std::int32_t record) {
  if (FieldOf(record, kType) == kNoMessageType) {
    const auto message = FindMessage(call);
    if (message == Message::kOutOfReach) return false;
    if (message == Message::kThere) SetMessage(call, record);
  }
  parts_.journal.Done(call);
  return true;
}

void CallRecovery::SetMessage(const Call& call, std::int32_t record) {
  const auto length = parts_.Wave1.FileLength(call.message_path);
  if (length < 0) return;
  auto& database = parts_.DataBase1;
  database.MoveTo(record);
  database.Edit();
  database.SetField(kCallMassageName, call.message_file_name);
  database.SetField(kType, ToText(length));
  database.Update();
  parts_.log.WriteSystem("Recovered the message of the call " + Description(call));
  parts_.show();
}

std::int64_t CallRecovery::NewestRecord() {
  const auto count = parts_.DataBase1.RecordCount();
  return count == 0 ? 0 : parts_.DataBase1.Identity(count);
}

/// Number of the record that the call got before the program ended, or 0. It is newer than the record that
/// was the newest before the call. After a loss of power a deleted journal may be back, or its last lines may
/// be lost, so every call is checked.
std::int32_t CallRecovery::RecordOf(Call& call) {
  auto& database = parts_.DataBase1;
  auto& trail = call.trail;
  if (trail.record) {
    const auto number = database.Locate(*trail.record);
    if (number > 0 && IsRecordOf(call, number, false)) return number;
  }
  if (!trail.filed_after) return 0;
  for (auto number = database.RecordCount(); number > 0; --number) {
    const auto identity = database.Identity(number);
    if (identity <= *trail.filed_after) return 0;
    // Calls of one second may have the same texts, but each has its own record.
    if (!IsRecordOf(call, number, true) || !taken_.insert(identity).second) continue;
    trail.record = identity;
    return number;
  }
  return 0;
}

bool CallRecovery::IsRecordOf(const Call& call, std::int32_t number, bool by_message_too) {
  const auto record = parts_.DataBase1.Record(number);
  const auto same = [&](const auto& field) {
    return record.at(static_cast<std::size_t>(parts_.DataBase1.FieldIndex(field.first))) ==
           call.*field.second;
  };
  return std::all_of(kTelling.begin(), kTelling.end() - (by_message_too ? 0 : 1), same);
}

/// Number of the newest record with this message name that has its message (or lacks it); 0 for none.
std::int32_t CallRecovery::RecordNaming(const std::string& message, bool has_it) {
  auto& database = parts_.DataBase1;
  if (database.CountRecords(kCallMassageName, message) == 0) return 0;
  for (auto number = database.RecordCount(); number > 0; --number) {
    if (FieldOf(number, kCallMassageName) == message && (FieldOf(number, kType) != kNoMessageType) == has_it)
      return number;
  }
  return 0;
}

std::string CallRecovery::FieldOf(std::int32_t number, const char* field) {
  return parts_.DataBase1.Record(number).at(static_cast<std::size_t>(parts_.DataBase1.FieldIndex(field)));
}

std::string CallRecovery::Description(const Call& call) const {
  auto text = call.date + " " + call.time + " [" + call.caller_name + ":" + call.caller_number + "]";
  if (call.message_path.empty()) return text + ", without a message";
  return text + ", message " + call.message_file_name + " (" +
         ToText(parts_.Wave1.FileLength(call.message_path)) + " s)";
}

CallRecovery::Message CallRecovery::FindMessage(Call& call) {
  const auto& trail = call.trail;
  const auto expected = parts_.folders.Serving() + call.message_file_name;
  // A damaged journal may name a folder.
  const auto is_there = [this](const std::string& path) {
    return !FileNamePart(path).empty() && parts_.files.Exists(path);
  };
  if (!call.message_path.empty()) {
    for (const auto& path : {trail.storing_path, call.message_path, expected}) {
      if (is_there(path)) return TakeStored(call, path);
    }
    if (grown_.CouldNotLook(FolderPart(call.message_path))) return Message::kOutOfReach;
    call.message_path.clear();
    return Message::kNone;
  }
  if (trail.growing_folder.empty() || FileNamePart(call.message_file_name).empty()) return Message::kNone;
  // A file with its name belongs to another call.
  if (call.message_left && trail.storing_path.empty()) return Message::kNone;
  if (is_there(trail.storing_path) &&
      RecordNaming(NameInFolder(trail.storing_path, parts_.folders.Serving()), true) == 0) {
    return TakeStored(call, trail.storing_path);
  }
  const auto grown = grown_.Of(trail.growing_name);
  if (!grown.empty()) return TakeGrown(call, grown);
  const bool hidden =
      grown_.CouldNotLook(trail.growing_folder) || grown_.CouldNotLook(FolderPart(trail.storing_path));
  return hidden ? Message::kOutOfReach : Message::kNone;
}

/// The longest of the recordings becomes the message.
CallRecovery::Message CallRecovery::TakeGrown(Call& call, const std::vector<GrownRecording>& grown) {
  std::string longest;
  double most = -1;
  for (const auto& one : grown) {
    const auto length = parts_.Wave1.FileLength(one.Path());
    if (length > most) longest = one.Path();
    most = std::max(most, length);
  }
  if (longest.empty()) return Message::kNone;
  return MoveTo(call, Mended(longest)) ? TakeStored(call, call.trail.storing_path) : Message::kOutOfReach;
}

/// The path of the recording with all of its audio: a corrected copy if its header counts too little and the
/// copy can be written, else the file itself.
std::string CallRecovery::Mended(const std::string& path) {
  auto mended = FolderPart(path) + kMended;
  const bool written = Trap()([&] {
    if (parts_.files.Exists(mended))
      parts_.files.Delete(mended);  // left by a program that was killed meanwhile
    const auto content = WithAllAudio(parts_.files, path);
    if (content.empty()) return mended.clear();
    parts_.files.Append(mended, content);
  });
  if (written) return mended.empty() ? path : mended;
  ErrorTrap::Silent()([&] { parts_.files.Delete(mended); });
  return path;
}

/// The message has its final name. It is moved if the messages folder was changed meanwhile. If it was
/// copied, the original is deleted.
CallRecovery::Message CallRecovery::TakeStored(Call& call, const std::string& path) {
  call.message_left = true;
  call.message_path = path;
  call.message_file_name = NameInFolder(path, parts_.folders.Serving());
  parts_.journal.Note(call);
  if (!IsInPlace(path)) {
    if (!MoveTo(call, path)) return Message::kOutOfReach;
    call.message_path = call.trail.storing_path;
    call.message_file_name = NameInFolder(call.message_path, parts_.folders.Serving());
    parts_.journal.Note(call);
  }
  DeleteBeginnings(call);
  return Message::kThere;
}

/// Moves a file to the messages folder; false when that fails. The new path is journalled first.
bool CallRecovery::MoveTo(Call& call, const std::string& from) {
  auto& storing = call.trail.storing_path;
  if (!IsInPlace(storing) || parts_.files.Exists(storing)) {
    storing = FreePath(parts_.folders.Serving() + FileNamePart(call.message_file_name));
    parts_.journal.Note(call);
  }
  return Trap()([&] { parts_.files.Rename(from, storing); });
}

/// Deletes partial copies of the message: a recording that moved to another folder was in both for a moment.
/// A file that is not the beginning of this message belongs to another call and stays.
void CallRecovery::DeleteBeginnings(const Call& call) {
  const auto& name = call.trail.growing_name;
  const GrownRecording stray{{}, name};
  for (const auto& grown : grown_.Of(stray.Name().empty() ? name : stray.Name())) {
    const auto path = grown.Path();
    Trap()([&] {
      if (!parts_.files.Exists(path) || !IsBeginning(parts_.files, path, call.message_path)) return;
      const auto age = parts_.clock.Now() - parts_.files.LastModified(path);
      // A recording without a name may still be growing for another program.
      if (stray.Name().empty() || age < 0s || age >= kMayBeGrowing) parts_.files.Delete(path);
    });
  }
}

void CallRecovery::RecoverStrays() {
  const bool last = parts_.clock.Uptime() - strays_since_ >= kStrayPatience;
  std::vector<GrownRecording> left;
  for (const auto& stray : std::exchange(strays_, {})) {
    bool over = false;
    Trap()([&] { over = RecoverStray(stray); });
    if (!over && !last) left.push_back(stray);
  }
  strays_ = std::move(left);
}

/// True when the recording needs no further look.
bool CallRecovery::RecoverStray(const GrownRecording& stray) {
  const auto path = stray.Path();
  if (!parts_.files.Exists(path)) return true;
  // Outside the messages folder only a named recording is a caller's; takes from the microphone have no name.
  if (stray.Name().empty() && stray.folder != FolderPart(parts_.folders.Serving())) return true;
  if (parts_.journal.Claims(stray)) return false;
  const auto age = parts_.clock.Now() - parts_.files.LastModified(path);
  if (age >= 0s && age < kMayBeGrowing) return false;
  const auto length = parts_.Wave1.FileLength(path);
  if (length > 0) return TakeStray(stray, length);
  parts_.files.Rename(path, FreePath(path + ".damaged"));
  parts_.log.WriteSystem("Recovered nothing: \"" + path + "\" holds no sound; it is kept as .damaged");
  return true;
}

bool CallRecovery::TakeStray(const GrownRecording& stray, double length) {
  const auto began =
      parts_.files.LastModified(stray.Path()) -
      std::chrono::duration_cast<Clock::WallTime::duration>(std::chrono::duration<double>(length));
  Call call;
  call.date = parts_.clock.DateText(began);
  call.time = parts_.clock.TimeText(began);
  const auto stem = stray.MessageStem();
  call.message_file_name = stem.empty() ? MessageFileName(call.date, call.time) : stem + ".wav";
  call.trail.growing_folder = stray.folder;
  call.trail.growing_name = stray.file;
  if (const auto record = stem.empty() ? 0 : RecordNaming(call.message_file_name, false); record > 0) {
    call.trail.record = parts_.DataBase1.Identity(record);
    call.caller_name = FieldOf(record, kCallName);
    call.caller_number = FieldOf(record, kCallNumber);
    call.date = FieldOf(record, kCallDate);
    call.time = FieldOf(record, kCallTime);
  }
  parts_.journal.Begin(call);
  if (TakeGrown(call, {stray}) != Message::kThere) {
    parts_.journal.Done(call);  // the file keeps its name and is found again later
    return false;
  }
  Interrupted interrupted{std::move(call)};
  if (!Recover(interrupted)) calls_.push_back(std::move(interrupted));
  return true;
}

std::vector<std::string> CallRecovery::Folders() const {
  std::vector<std::string> folders{FolderPart(parts_.folders.Serving()),
                                   parts_.shared.InApplicationFolder(kRescueFolder) + NativePath("\\")};
  for (const auto& [call, handed_over, told] : calls_) {
    for (const auto& folder :
         {call.trail.growing_folder, FolderPart(call.trail.storing_path), FolderPart(call.message_path)}) {
      if (!folder.empty()) folders.push_back(folder);
    }
  }
  return folders;
}

bool CallRecovery::IsInPlace(const std::string& path) const {
  const auto& folder = parts_.folders.Serving();
  return path == folder + NameInFolder(path, folder);
}

std::string CallRecovery::FreePath(const std::string& path) const {
  return parts_.files.Exists(path) ? FreeNameBeside(parts_.files, parts_.clock, path) : path;
}

}  // namespace orven
