// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_store.h"

#include <algorithm>
#include <utility>

#include "base/conversions.h"
#include "base/paths.h"
#include "base/runtime_error.h"
#include "core/error_trap.h"
#include "records/call.h"
#include "records/call_recovery.h"
#include "records/message_files.h"

namespace orven {
namespace {

/// Interval at which filing is tried again while a disk is full.
constexpr std::chrono::seconds kTryAgain{5};

}  // namespace

void CallStore::PutCallDetailsInDB(Call& call) {
  const ErrorTrap trap(ports_.system_log, "ErrPutCallDetailsInDB ");
  call.type_text = TypeText(call);
  if (!call.trail.message_due) trap([&] { BringMessageAlong(call); });
  waiting_.push_back(call);
  FileWaitingCalls();
  if (!tmrRoom_->Enabled() && (!waiting_.empty() || !late_.empty())) tmrRoom_->Start(kTryAgain);
  ports_.calls_log.WriteCalls("Ring:" + call.ring_count_text + " [" + call.caller_name + ":" +
                              call.caller_number + "]");
}

void CallStore::FileWaitingCalls() {
  FileLateMessages();
  const ErrorTrap loud(ports_.system_log, "ErrPutCallDetailsInDB ");
  const bool had_refused = refused_;
  while (!waiting_.empty()) {
    auto& call = waiting_.front();
    ErrorTrap::Silent()([&] { TakeLateMessage(call); });
    const auto add = [&] { AddRecord(call); };
    refused_ = refused_ ? !ErrorTrap::Silent()(add) : !loud(add);
    if (refused_) return;
    if (!call.trail.record) ports_.journal.Done(call);
    waiting_.pop_front();
  }
  if (had_refused) ports_.system_log.WriteSystem("The calls that could not be filed are filed now");
}

void CallStore::TryAgain() {
  const std::pair before(waiting_.size(), late_.size());
  FileWaitingCalls();
  if (before != std::pair(waiting_.size(), late_.size())) list_.makeList();
  if (waiting_.empty() && late_.empty()) tmrRoom_->Stop();
}

/// True when the message that did not fit is stored now, and the file with its name is not another call's.
bool CallStore::TakeLateMessage(Call& call) {
  const auto& path = call.trail.storing_path;
  if (!call.message_left || !call.message_path.empty() || path.empty() || call.trail.message_due)
    return false;
  if (!ports_.files.Exists(path) || AnotherCallHas(NameInFolder(path, ports_.folders.Serving())))
    return false;
  auto complete = call;  // a step that fails leaves the call awaiting its message
  complete.message_path = path;
  ports_.journal.Note(complete);
  BringMessageAlong(complete);
  complete.type_text = TypeText(complete);
  call = std::move(complete);
  return true;
}

/// Whether the message may still be stored; one that was kept under another name will not be.
bool CallStore::Awaits(const Call& call) const {
  if (!call.message_left || !call.message_path.empty() || call.trail.storing_path.empty()) return false;
  const auto stem = call.message_file_name.substr(0, call.message_file_name.rfind('.'));
  bool kept = false;
  for (const auto& folder :
       {call.trail.growing_folder, shared_.InApplicationFolder(kRescueFolder) + NativePath("\\")}) {
    // A folder that cannot be listed counts as empty.
    ErrorTrap::Silent()([&] { kept = kept || !ports_.files.List(folder, stem + ".unsaved-*.wav").empty(); });
  }
  return !kept;
}

void CallStore::FileLateMessages() {
  std::erase_if(late_, [&](const Late& late) {
    bool over = false;
    ErrorTrap::Silent()([&] { over = IsOver(late); });
    if (over) ports_.journal.Done(late.call);
    return over;
  });
}

/// Whether the record has its message now, or will never have it.
bool CallStore::IsOver(const Late& late) {
  const auto record = ports_.DataBase1.Locate(late.record);
  if (record == 0 || !Awaits(late.call)) return true;
  auto call = late.call;
  if (!TakeLateMessage(call)) return false;
  FileLateMessage(call, record);
  return true;
}

void CallStore::FileLateMessage(const Call& call, std::int32_t record) {
  auto& database = ports_.DataBase1;
  database.MoveTo(record);
  database.Edit();
  database.SetField(kType, call.type_text);
  database.Update();
  ports_.system_log.WriteSystem("Record Message: " + call.message_file_name +
                                " did not fit on the disk before and is filed now");
}

void CallStore::AddRecord(Call& call) {
  auto& database = ports_.DataBase1;
  const auto count = database.RecordCount();
  call.trail.filed_after = count == 0 ? 0 : database.Identity(count);
  call.trail.record.reset();
  ports_.journal.Note(call);
  database.AddNew();
  database.SetField(kCallName, call.caller_name);
  database.SetField(kCallNumber, call.caller_number);
  database.SetField(kCallTime, call.time);
  database.SetField(kCallDate, call.date);
  database.SetField(kCallMassageName, call.message_file_name);
  database.SetField(kType, call.type_text);
  database.SetField(kRead, 0);
  database.Update();
  // The call is filed, even if a later step fails.
  ErrorTrap::Silent()([&] {
    const auto identity = database.Identity(database.RecordCount());
    ports_.journal.SetNewestRecord(identity);
    if (!call.trail.message_due && !Awaits(call)) return;
    call.trail.record = identity;
    ports_.journal.Note(call);
    if (!call.trail.message_due) late_.push_back({identity, call});
  });
}

std::string CallStore::TypeText(const Call& call) const {
  // A recording that could not be stored has no file to play.
  if (!call.message_left || call.message_path.empty() || call.trail.message_due) return kNoMessageType;
  const double length = ports_.Wave1.FileLength(call.message_path);
  return length < 0 ? kNoMessageType : ToText(length);
}

void CallStore::BringMessageAlong(Call& call) {
  auto path = ports_.folders.Serving() + call.message_file_name;
  if (call.message_path.empty() || call.message_path == path) return;
  if (ports_.files.Exists(path)) path = FreeNameBeside(ports_.files, ports_.clock, path);
  ports_.files.Rename(call.message_path, path);
  call.message_path = path;
  call.message_file_name = NameInFolder(path, ports_.folders.Serving());
}

void CallStore::MarkAsReadUnRead(std::int32_t index, bool read) {
  const ErrorTrap trap(ports_.system_log, "ErrMarkAsReadUnRead ");
  bool unread_now = false;
  if (!trap([&] {
        const auto icon = list_.Row(index).icon;
        unread_now = icon == kUnreadMessage || icon == kUnreadNoMessage;
      })) {
    return;
  }
  if (read != unread_now) return;
  bool has_message = false;
  if (!trap([&] { WriteReadFlag(index, read, has_message); })) return;
  trap([&] {
    if (read) {
      list_.Mark(index, has_message ? kReadMessage : kReadNoMessage, -1);
    } else {
      // A call without a message looks like an unread message until the next rebuild, to attract attention.
      list_.Mark(index, kUnreadMessage, +1);
    }
  });
}

void CallStore::WriteReadFlag(std::int32_t index, bool read, bool& has_message) {
  auto& database = ports_.DataBase1;
  database.MoveTo(database.RecordCount() - index + 1);
  database.Edit();
  for (const char* field : {kCallName, kCallNumber, kCallTime, kCallDate, kCallMassageName, kType}) {
    database.SetField(field, database.GetField(field));
  }
  has_message = database.GetField(kType) != kNoMessageType;
  database.SetField(kRead, read ? "1" : "0");
  database.Update();
}

void CallStore::DeleteItemIndex(std::int32_t index) {
  const ErrorTrap trap(ports_.system_log, "ErrDeleteItemIndex ");
  std::string key;
  if (!trap([&] { key = list_.Row(index).key; })) return;
  const bool deleted = trap([&] {
    ports_.DataBase1.MoveTo(list_.RecordNumber(index));
    ports_.DataBase1.Delete();
  });
  // A record that is still there keeps its message.
  if (!deleted) return;
  trap([&] { list_.Remove(index); });
  if (key.empty()) return;
  StopPlayerOn(key);
  trap([&] {
    if (!AnotherCallHas(key)) return DeleteMessage(key);
    ports_.system_log.WriteSystem("Another call has the message " + key + ", which is kept");
  });
}

/// Calls within one second share a name, and so may calls in the repeated hour at the end of summer time.
bool CallStore::AnotherCallHas(const std::string& message) const {
  const auto has_it = [&](const Call& call) {
    return !call.message_path.empty() && call.message_file_name == message;
  };
  if (std::ranges::any_of(waiting_, has_it)) return true;
  if (ports_.current.InProgress() && has_it(ports_.current)) return true;
  if (ports_.DataBase1.CountRecords(kCallMassageName, message) == 0) return false;
  return std::ranges::count(MessageNames(), message) > 0;
}

void CallStore::DeleteMessage(const std::string& name) {
  const auto places = ports_.folders.PlacesOf(name);
  if (places.size() == 1) return ports_.files.Delete(places.front());
  // In the background, after the message that is being moved now, which may be this one.
  ports_.background.Run([&files = ports_.files, places] { DeleteEverywhere(files, places); },
                        LogFailure("ErrDeleteItemIndex "));
}

void CallStore::StopPlayerOn(const std::string& key) {
  if (FileNamePart(ports_.player.HeldFile()) == key) ports_.player.Stop();
}

void CallStore::ClearUpTo(std::int64_t newest) {
  const ErrorTrap trap(ports_.system_log, "ErrClear ");
  if (ports_.player.IsPlaying()) ports_.player.Stop();
  trap([&] {
    auto& database = ports_.DataBase1;
    const auto number = database.Locate(newest);
    number == database.RecordCount() ? database.DeleteAll() : database.DeleteFirst(number);
  });
  list_.makeList();
}

void CallStore::SaveFile(const std::string& path) {
  if (const auto target = AskForTarget(path)) CopyInBackground({path}, *target);
}

void CallStore::SaveMessage(const std::string& name) {
  // The message may move while the user chooses a place.
  if (const auto target = AskForTarget(name)) CopyInBackground(ports_.folders.PlacesOf(name), *target);
}

std::optional<std::string> CallStore::AskForTarget(const std::string& path) {
  StopPlayerOn(FileNamePart(path));
  const auto extension = path.size() < 3 ? path : path.substr(path.size() - 3);
  const auto filter =
      extension + " (*." + extension + ")" + std::string(1, '\0') + "*." + extension + std::string(1, '\0');
  return ports_.dialogs.SaveAs("Save", filter, FileNamePart(path));
}

void CallStore::CopyInBackground(const std::vector<std::string>& places, const std::string& target) {
  ports_.background.Run(
      [&files = ports_.files, places, target] { files.Copy(FirstThere(files, places), target); },
      LogFailure("ErrSaveFile "));
}

Background::Done CallStore::LogFailure(const std::string& label) {
  return [this, label](const std::exception_ptr& failure) {
    const ErrorTrap trap(ports_.system_log, label);
    trap([&] {
      if (failure) std::rethrow_exception(failure);
    });
  };
}

std::vector<std::string> CallStore::MessageNames() const {
  auto& database = ports_.DataBase1;
  const auto type = static_cast<std::size_t>(database.FieldIndex(kType));
  const auto name = static_cast<std::size_t>(database.FieldIndex(kCallMassageName));
  std::vector<std::string> names;
  for (auto& record : database.Query("Get *").records) {
    if (record.at(type) != kNoMessageType && !record.at(name).empty()) names.push_back(record.at(name));
  }
  for (const auto& call : waiting_) {
    if (!call.message_path.empty()) names.push_back(call.message_file_name);
  }
  return names;
}

}  // namespace orven
