// SPDX-License-Identifier: GPL-3.0-or-later
// Where the messages of interrupted calls are, and recordings that no call knows.
#include <algorithm>
#include <chrono>

#include "base/paths.h"
#include "records/call_fields.h"
#include "records/call_recovery.h"
#include "records/message_name.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// A growing file is written four times a second. One that was changed within this time, and that the journal
/// does not know, may belong to another program that shares the folder.
constexpr auto kMayBeGrowing = 10s;

/// One that still grows after this time does belong to another.
constexpr auto kStrayPatience = 15s;

/// Only while a recording is copied.
constexpr const char* kMended = ".mended-recording";

}  // namespace

CallRecovery::Message CallRecovery::FindMessage(Call& call) {
  const auto& trail = call.trail;
  const auto expected = parts_.shared.messages_path + call.message_file_name;
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
  // What has its name is another call's.
  if (call.message_left && trail.storing_path.empty()) return Message::kNone;
  if (is_there(trail.storing_path) &&
      RecordNaming(NameInFolder(trail.storing_path, parts_.shared.messages_path), true) == 0) {
    return TakeStored(call, trail.storing_path);
  }
  const auto grown = grown_.Of(trail.growing_name);
  if (!grown.empty()) return TakeGrown(call, grown);
  const bool hidden =
      grown_.CouldNotLook(trail.growing_folder) || grown_.CouldNotLook(FolderPart(trail.storing_path));
  return hidden ? Message::kOutOfReach : Message::kNone;
}

/// The longest of them becomes the message.
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

/// The path of a recording with all of its sound: that of a copy beside it where its header counts less and
/// there is room for one, else its own.
std::string CallRecovery::Mended(const std::string& path) {
  auto mended = FolderPart(path) + kMended;
  const bool written = Trap()([&] {
    if (parts_.files.Exists(mended)) parts_.files.Delete(mended);  // killed while it wrote this
    const auto content = WithAllSound(parts_.files, path);
    if (content.empty()) return mended.clear();
    parts_.files.Append(mended, content);
  });
  if (written) return mended.empty() ? path : mended;
  ErrorTrap::Silent()([&] { parts_.files.Delete(mended); });
  return path;
}

/// The message has its name. Where that is not in the messages folder, because another was chosen meanwhile,
/// it goes there. It may have been copied: then the original is still here.
CallRecovery::Message CallRecovery::TakeStored(Call& call, const std::string& path) {
  call.message_left = true;
  call.message_path = path;
  call.message_file_name = NameInFolder(path, parts_.shared.messages_path);
  parts_.journal.Note(call);
  if (!IsInPlace(path)) {
    if (!MoveTo(call, path)) return Message::kOutOfReach;
    call.message_path = call.trail.storing_path;
    call.message_file_name = NameInFolder(call.message_path, parts_.shared.messages_path);
    parts_.journal.Note(call);
  }
  DeleteBeginnings(call);
  return Message::kThere;
}

/// Moves a file to the messages folder, which may not take it. The journal knows its new path before.
bool CallRecovery::MoveTo(Call& call, const std::string& from) {
  auto& storing = call.trail.storing_path;
  if (!IsInPlace(storing) || parts_.files.Exists(storing)) {
    storing = FreePath(parts_.shared.messages_path + FileNamePart(call.message_file_name));
    parts_.journal.Note(call);
  }
  return Trap()([&] { parts_.files.Rename(from, storing); });
}

/// A recording that moved on to another folder was in both for a moment. What is not the beginning of this
/// message is somebody's, too.
void CallRecovery::DeleteBeginnings(const Call& call) {
  const auto& name = call.trail.growing_name;
  const GrownRecording stray{{}, name};
  for (const auto& grown : grown_.Of(stray.Name().empty() ? name : stray.Name())) {
    const auto path = grown.Path();
    Trap()([&] {
      if (!parts_.files.Exists(path) || !IsBeginning(parts_.files, path, call.message_path)) return;
      const auto age = parts_.clock.Now() - parts_.files.LastModified(path);
      // Only a call's own recording is surely nobody else's.
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

/// Whether the next look will find no more than this one.
bool CallRecovery::RecoverStray(const GrownRecording& stray) {
  const auto path = stray.Path();
  if (!parts_.files.Exists(path)) return true;
  // Beside the messages only what has a name is a caller's; takes from the microphone have none.
  if (stray.Name().empty() && stray.folder != FolderPart(parts_.shared.messages_path)) return true;
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
    parts_.journal.Done(call);  // it keeps its name and will be found again
    return false;
  }
  Interrupted interrupted{std::move(call)};
  if (!Recover(interrupted)) calls_.push_back(std::move(interrupted));
  return true;
}

std::vector<std::string> CallRecovery::Folders() const {
  std::vector<std::string> folders{FolderPart(parts_.shared.messages_path),
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
  const auto& folder = parts_.shared.messages_path;
  return path == folder + NameInFolder(path, folder);
}

std::string CallRecovery::FreePath(const std::string& path) const {
  return parts_.files.Exists(path) ? FreeNameBeside(parts_.files, parts_.clock, path) : path;
}

}  // namespace orven
