// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_store.h"

#include <algorithm>
#include <utility>

#include "base/paths.h"
#include "core/error_trap.h"
#include "records/call.h"
#include "records/message_files.h"

namespace orven {
void CallStore::MarkAsReadUnRead(std::int32_t index, bool read) {
  const ErrorTrap trap(ports_.log, "ErrMarkAsReadUnRead ");
  bool unread_now = false;
  if (!trap([&] {
        const auto icon = list_.Row(index).icon;
        unread_now = icon == kUnreadMessage || icon == kUnreadNoMessage;
      })) {
    return;
  }
  if (read != unread_now) return;
  bool has_message = false;
  if (!trap([&] { has_message = WriteReadFlag(index, read); })) return;
  trap([&] {
    if (read) {
      list_.Mark(index, has_message ? kReadMessage : kReadNoMessage, -1);
    } else {
      // A call without a message looks like an unread message until the next rebuild, to attract attention.
      list_.Mark(index, kUnreadMessage, +1);
    }
  });
}

/// Whether the record has a message.
bool CallStore::WriteReadFlag(std::int32_t index, bool read) {
  auto& database = ports_.DataBase1;
  const auto number = database.RecordCount() - index + 1;
  const bool has_message =
      database.Record(number).at(static_cast<std::size_t>(database.FieldIndex(kType))) != kNoMessageType;
  database.Change(database.Identity(number), {{kRead, read ? "1" : "0"}});
  return has_message;
}

void CallStore::DeleteItemIndex(std::int32_t index) {
  const ErrorTrap trap(ports_.log, "ErrDeleteItemIndex ");
  std::string key;
  if (!trap([&] { key = list_.Row(index).key; })) return;
  const bool deleted = trap([&] {
    auto& database = ports_.DataBase1;
    database.Remove(database.Identity(list_.RecordNumber(index)));
  });
  // A record that is still there keeps its message.
  if (!deleted) return;
  trap([&] { list_.Remove(index); });
  if (key.empty()) return;
  StopPlayerOn(key);
  trap([&] {
    if (!ports_.filing.ACallHas(key)) return DeleteMessage(key);
    ports_.log.WriteSystem("Another call has the message " + key + ", which is kept");
  });
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
  const ErrorTrap trap(ports_.log, "ErrClear ");
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
  return ports_.dialogs.SaveAs(Words("Save"), filter, FileNamePart(path));
}

void CallStore::CopyInBackground(const std::vector<std::string>& places, const std::string& target) {
  ports_.background.Run(
      [&files = ports_.files, places, target] { files.Copy(FirstThere(files, places), target); },
      LogFailure("ErrSaveFile "));
}

Background::Done CallStore::LogFailure(const std::string& label) {
  return [this, label](const std::exception_ptr& failure) {
    const ErrorTrap trap(ports_.log, label);
    trap([&] {
      if (failure) std::rethrow_exception(failure);
    });
  };
}

}  // namespace orven
