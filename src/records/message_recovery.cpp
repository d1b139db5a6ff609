// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/message_recovery.h"

#include <utility>

#include "base/paths.h"
#include "records/message_files.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// A growing file is written four times a second. One that was changed within this time and is no open call's
/// may belong to another program that shares the folder.
constexpr auto kMayBeGrowing = 10s;

/// One that still grows after this time belongs to another program.
constexpr auto kStrayPatience = 15s;

/// Only while a recording is copied.
constexpr const char* kMended = ".mended-recording";

}  // namespace

std::set<std::string> MessageRecovery::Folders() const {
  return {FolderPart(ports_.folders.Serving()), ports_.home.Path(kRescueFolder) + NativePath("\\")};
}

void MessageRecovery::FindStrays() {
  Trap()([&] {
    grown_.Look(ports_.files, Folders());
    strays_ = grown_.All();
  });
  strays_since_ = ports_.clock.Uptime();
}

void MessageRecovery::Look(const std::vector<const Call*>& calls) {
  auto folders = Folders();
  for (const auto* call : calls) {
    for (const auto& folder :
         {call->recording_folder, FolderPart(call->place), FolderPart(call->message_path)}) {
      if (!folder.empty()) folders.insert(folder);
    }
  }
  grown_.Look(ports_.files, folders);
}

MessageState MessageRecovery::Find(Call& call) {
  const auto expected = ports_.folders.Serving() + call.message_file_name;
  // What was kept may be damaged and name a folder.
  const auto is_there = [this](const std::string& path) {
    return !FileNamePart(path).empty() && ports_.files.Exists(path);
  };
  if (!call.message_path.empty()) {
    for (const auto& path : {call.place, call.message_path, expected}) {
      if (is_there(path)) return TakeStored(call, path);
    }
    if (grown_.CouldNotLook(FolderPart(call.message_path))) return MessageState::kLater;
    call.message_path.clear();
    return MessageState::kNone;
  }
  if (call.recording_folder.empty() || FileNamePart(call.message_file_name).empty())
    return MessageState::kNone;
  // A file with its name belongs to another call.
  if (call.message_left && call.place.empty()) return MessageState::kNone;
  if (is_there(call.place) && !ports_.a_call_has(NameInFolder(call.place, ports_.folders.Serving())))
    return TakeStored(call, call.place);
  const auto grown = grown_.Of(call.recording);
  if (!grown.empty()) return TakeGrown(call, grown);
  const bool hidden =
      grown_.CouldNotLook(call.recording_folder) || grown_.CouldNotLook(FolderPart(call.place));
  return hidden ? MessageState::kLater : MessageState::kNone;
}

/// The longest of the recordings becomes the message.
MessageState MessageRecovery::TakeGrown(Call& call, const std::vector<GrownRecording>& grown) {
  std::string longest;
  double most = -1;
  for (const auto& one : grown) {
    const auto length = ports_.Wave1.FileLength(one.Path());
    if (length > most) longest = one.Path();
    most = std::max(most, length);
  }
  if (longest.empty()) return MessageState::kNone;
  return MoveTo(call, Mended(longest)) ? TakeStored(call, call.place) : MessageState::kLater;
}

/// The path of the recording with all of its audio: a corrected copy if its header counts too little and the
/// copy can be written, else the file itself.
std::string MessageRecovery::Mended(const std::string& path) {
  auto mended = FolderPart(path) + kMended;
  const bool written = Trap()([&] {
    if (ports_.files.Exists(mended))
      ports_.files.Delete(mended);  // left by a program that was killed meanwhile
    const auto content = WithAllAudio(ports_.files, path);
    if (content.empty()) return mended.clear();
    ports_.files.Append(mended, content);
  });
  if (written) return mended.empty() ? path : mended;
  ErrorTrap::Silent()([&] { ports_.files.Delete(mended); });
  return path;
}

/// The message has its final name. It is moved if the messages folder was changed meanwhile. If it was
/// copied, the original is deleted.
MessageState MessageRecovery::TakeStored(Call& call, const std::string& path) {
  const auto is_at = [&](const std::string& place) {
    call.message_path = place;
    call.message_file_name = NameInFolder(place, ports_.folders.Serving());
    ports_.open.Note(call);
  };
  call.message_left = true;
  is_at(path);
  if (!IsInPlace(path)) {
    if (!MoveTo(call, path)) return MessageState::kLater;
    is_at(call.place);
  }
  DeleteBeginnings(call);
  return MessageState::kThere;
}

/// Moves a file to the messages folder; false when that fails.
bool MessageRecovery::MoveTo(Call& call, const std::string& from) {
  if (!IsInPlace(call.place) || ports_.files.Exists(call.place)) {
    call.place = FreePath(ports_.folders.Serving() + FileNamePart(call.message_file_name));
    if (!ports_.open.Note(call)) return false;
  }
  return Trap()([&] { ports_.files.Rename(from, call.place); });
}

/// Deletes partial copies of the message: a recording that moved to another folder was in both for a moment.
/// A file that is not the beginning of this message belongs to another call and stays.
void MessageRecovery::DeleteBeginnings(const Call& call) {
  const GrownRecording stray{{}, call.recording};
  for (const auto& grown : grown_.Of(stray.Name().empty() ? call.recording : stray.Name())) {
    const auto path = grown.Path();
    Trap()([&] {
      if (!ports_.files.Exists(path) || !IsBeginning(ports_.files, path, call.message_path)) return;
      const auto age = ports_.clock.Now() - ports_.files.LastModified(path);
      // A recording without a name may still be growing for another program.
      if (stray.Name().empty() || age < 0s || age >= kMayBeGrowing) ports_.files.Delete(path);
    });
  }
}

std::vector<Call> MessageRecovery::TakeStrays() {
  const bool last = ports_.clock.Uptime() - strays_since_ >= kStrayPatience;
  std::vector<Call> calls;
  std::vector<GrownRecording> left;
  for (const auto& stray : std::exchange(strays_, {})) {
    bool over = false;
    Trap()([&] { over = LookAtStray(stray, calls); });
    if (!over && !last) left.push_back(stray);
  }
  strays_ = std::move(left);
  return calls;
}

/// True when the recording needs no further look.
bool MessageRecovery::LookAtStray(const GrownRecording& stray, std::vector<Call>& calls) {
  const auto path = stray.Path();
  if (!ports_.files.Exists(path)) return true;
  // Outside the messages folder only a named recording is a caller's; takes from the microphone have no name.
  if (stray.Name().empty() && stray.folder != FolderPart(ports_.folders.Serving())) return true;
  if (ports_.open.Claims(stray)) return false;
  const auto age = ports_.clock.Now() - ports_.files.LastModified(path);
  if (age >= 0s && age < kMayBeGrowing) return false;
  const auto length = ports_.Wave1.FileLength(path);
  if (length > 0) return TakeStray(stray, length, calls);
  ports_.files.Rename(path, FreePath(path + ".damaged"));
  ports_.log.WriteSystem("Recovered nothing: \"" + path + "\" holds no sound; it is kept as .damaged");
  return true;
}

bool MessageRecovery::TakeStray(const GrownRecording& stray, double length, std::vector<Call>& calls) {
  const auto began =
      ports_.files.LastModified(stray.Path()) -
      std::chrono::duration_cast<Clock::WallTime::duration>(std::chrono::duration<double>(length));
  Call call;
  call.date = ports_.clock.DateText(began);
  call.time = ports_.clock.TimeText(began);
  const auto stem = stray.MessageStem();
  call.message_file_name = stem.empty() ? MessageFileName(call.date, call.time) : stem + ".wav";
  call.recording_folder = stray.folder;
  call.recording = stray.file;
  ports_.open.Begin(call);
  if (TakeGrown(call, {stray}) == MessageState::kThere) return calls.push_back(std::move(call)), true;
  ports_.open.LeaveOut(call);  // the file keeps its name and is found again later
  return false;
}

bool MessageRecovery::IsInPlace(const std::string& path) const {
  const auto& folder = ports_.folders.Serving();
  return path == folder + NameInFolder(path, folder);
}

std::string MessageRecovery::FreePath(const std::string& path) const {
  return ports_.files.Exists(path) ? FreeNameBeside(ports_.files, ports_.clock, path) : path;
}

}  // namespace orven
