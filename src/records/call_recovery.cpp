// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_recovery.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "core/conversions.h"
#include "core/error_trap.h"
#include "core/native_path.h"
#include "records/call_fields.h"
#include "records/message_name.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kGrownStart = ".recording-";
constexpr std::string_view kGrownEnd = ".wav.part";

/// A growing file is written four times a second. One that was changed within this time, and that the journal
/// does not know, may belong to another program that shares the folder; the next start looks again.
constexpr auto kMayBeGrowing = 10s;

/// The fields that tell one call from another, and what a call holds for each.
constexpr std::array<std::pair<const char*, std::string Call::*>, 5> kTelling{
    {{kCallName, &Call::caller_name},
     {kCallNumber, &Call::caller_number},
     {kCallTime, &Call::time},
     {kCallDate, &Call::date},
     {kCallMassageName, &Call::message_file_name}}};

/// The name in ".recording-<name>-<process>-<n>.wav.part"; empty when it has none.
std::string NameOfGrown(std::string_view file) {
  file.remove_prefix(kGrownStart.size());
  file.remove_suffix(kGrownEnd.size());
  for (int number = 0; number < 2; ++number) {
    const auto dash = file.rfind('-');
    if (dash == std::string_view::npos) return {};
    file = file.substr(0, dash);
  }
  return std::string(file);
}

}  // namespace

void CallRecovery::Run() {
  const ErrorTrap trap(parts_.log, "ErrRecoverCall ");
  std::vector<Call> calls;
  trap([&] { calls = parts_.journal.Unfinished(); });
  ErrorTrap::Silent()([&] { TellNewestRecord(); });  // records that are not open have been reported
  for (auto& call : calls) trap([&] { Recover(call); });
  trap([&] { RecoverStrays(); });
}

void CallRecovery::TellNewestRecord() {
  const auto count = parts_.DataBase1.RecordCount();
  parts_.journal.SetNewestRecord(count == 0 ? 0 : parts_.DataBase1.Identity(count));
}

void CallRecovery::Recover(Call& call) {
  if (IsFiled(call)) {
    parts_.journal.Done(call);
    return;
  }
  FindMessage(call);
  parts_.log.WriteSystem((parts_.is_listed(call) ? "Recovered call " : "Interrupted call, not listed: ") +
                         Description(call));
  parts_.file(call);
  if (const auto count = parts_.DataBase1.RecordCount(); count > 0)
    taken_.insert(parts_.DataBase1.Identity(count));
}

/// Whether the records got the call before the program ended: then it is among those that came after the one
/// which was the newest before. A loss of power may bring back a journal that was deleted or has lost its
/// last lines, which is why this is asked of every call.
bool CallRecovery::IsFiled(const Call& call) {
  if (!call.trail.filed_after) return false;
  auto& database = parts_.DataBase1;
  for (auto number = database.RecordCount(); number > 0; --number) {
    if (database.Identity(number) <= *call.trail.filed_after) return false;
    const auto record = database.Record(number);
    const auto same = [&](const auto& field) {
      return record.at(static_cast<std::size_t>(database.FieldIndex(field.first))) == call.*field.second;
    };
    // Calls of one second may be alike; each has a record of its own.
    if (std::ranges::all_of(kTelling, same) && taken_.insert(database.Identity(number)).second) return true;
  }
  return false;
}

void CallRecovery::FindMessage(Call& call) {
  const auto& trail = call.trail;
  if (!call.message_path.empty()) {
    if (!parts_.files.Exists(call.message_path))
      call.message_path = parts_.shared.messages_path + call.message_file_name;
    return;
  }
  if (trail.growing_folder.empty()) return;
  // An older message is where it was to be put; it was kept under a name that the log has told.
  if (call.message_left && trail.storing_path.empty()) return;
  if (!trail.storing_path.empty() && parts_.files.Exists(trail.storing_path))
    return TakeStored(call, trail.storing_path);
  const auto grown = Longest(GrownOf(call));
  if (!grown.empty()) TakeGrown(call, grown);
}

/// The recording got its name before the program ended. It may have been copied there: then the original is
/// still here.
void CallRecovery::TakeStored(Call& call, const std::string& path) {
  const auto originals = GrownOf(call);
  call.message_left = true;
  call.message_path = path;
  call.message_file_name = FileNamePart(path);
  parts_.journal.Note(call);
  const auto length = parts_.Wave1.FileLength(path);
  for (const auto& original : originals) {
    if (parts_.Wave1.FileLength(original) <= length) parts_.files.Delete(original);
  }
}

/// False when the recording stays where it is under the name that it has.
bool CallRecovery::TakeGrown(Call& call, const std::string& grown) {
  const auto path = FreePath(parts_.shared.messages_path + call.message_file_name);
  call.trail.storing_path = path;
  parts_.journal.Note(call);
  const ErrorTrap trap(parts_.log, "ErrRecoverCall ");
  if (!trap([&] { parts_.files.Rename(grown, path); })) return KeepWhereItIs(call, grown);
  TakeStored(call, path);
  return true;
}

/// The messages folder does not take it. The record says that there is no message, the log where it is.
bool CallRecovery::KeepWhereItIs(Call& call, const std::string& grown) {
  const auto folder = grown.substr(0, grown.size() - FileNamePart(grown).size());
  const auto stem = call.message_file_name.substr(0, call.message_file_name.rfind('.'));
  const auto path = FreePath(folder + stem + ".unsaved-1.wav");
  const ErrorTrap trap(parts_.log, "ErrRecoverCall ");
  const bool renamed = trap([&] { parts_.files.Rename(grown, path); });
  call.message_left = true;
  parts_.journal.Note(call);
  parts_.log.WriteSystem("Record Message: the recording was kept as \"" + (renamed ? path : grown) + "\".");
  return renamed;
}

void CallRecovery::RecoverStrays() {
  const ErrorTrap trap(parts_.log, "ErrRecoverCall ");
  for (const auto& folder : Folders()) {
    std::vector<std::string> names;
    // A folder that is not there holds nothing.
    ErrorTrap::Silent()([&] { names = Grown(folder, ""); });
    for (const auto& name : names) trap([&] { RecoverStray(folder, name); });
  }
}

void CallRecovery::RecoverStray(const std::string& folder, const std::string& name) {
  const auto path = folder + name;
  const auto now = parts_.clock.Now();
  const auto ended = parts_.files.LastModified(path);
  if (ended <= now && now - ended < kMayBeGrowing) return;
  const auto stem = NameOfGrown(name);
  // Beside the messages only what has a name is a caller's; takes from the microphone have none.
  if (stem.empty() && folder != parts_.shared.messages_path) return;
  const auto length = parts_.Wave1.FileLength(path);
  if (length < 0) {
    parts_.files.Rename(path, FreePath(path + ".damaged"));
    parts_.log.WriteSystem("Recovered nothing: \"" + path + "\" holds no sound; it is kept as .damaged");
    return;
  }
  const auto began =
      ended - std::chrono::duration_cast<Clock::WallTime::duration>(std::chrono::duration<double>(length));
  Call call;
  call.date = parts_.clock.DateText(began);
  call.time = parts_.clock.TimeText(began);
  call.message_file_name = stem.empty() ? MessageFileName(call.date, call.time) : stem + ".wav";
  call.trail.growing_folder = folder;
  parts_.journal.Begin(call);
  // It will be found again when it keeps its name; it must not be filed each time.
  if (!TakeGrown(call, path)) return parts_.journal.Done(call);
  parts_.log.WriteSystem("Recovered message of an unknown call " + Description(call));
  parts_.file(call);
}

std::vector<std::string> CallRecovery::Folders() const {
  return {parts_.shared.messages_path, parts_.shared.InApplicationFolder(kRescueFolder) + NativePath("\\")};
}

/// Growing files in `folder` of recordings with this name, any if it is empty.
std::vector<std::string> CallRecovery::Grown(const std::string& folder, const std::string& name) const {
  auto files = parts_.files.List(folder, std::string(kGrownStart) + "*" + std::string(kGrownEnd));
  if (!name.empty()) std::erase_if(files, [&](const auto& file) { return NameOfGrown(file) != name; });
  return files;
}

/// A recording that moves on to another folder is in both for a moment.
std::vector<std::string> CallRecovery::GrownOf(const Call& call) const {
  auto folders = Folders();
  if (std::ranges::find(folders, call.trail.growing_folder) == folders.end())
    folders.push_back(call.trail.growing_folder);
  const auto stem = call.message_file_name.substr(0, call.message_file_name.rfind('.'));
  if (stem.empty()) return {};  // a damaged line; it would claim everybody's
  std::vector<std::string> paths;
  for (const auto& folder : folders) {
    ErrorTrap::Silent()([&] {
      for (const auto& name : Grown(folder, stem)) paths.push_back(folder + name);
    });
  }
  return paths;
}

/// The path of the longest sound; empty when none of the files can be played.
std::string CallRecovery::Longest(const std::vector<std::string>& paths) const {
  std::string longest;
  double most = -1;
  for (const auto& path : paths) {
    const auto length = parts_.Wave1.FileLength(path);
    if (length > most) longest = path;
    most = std::max(most, length);
  }
  return longest;
}

std::string CallRecovery::FreePath(const std::string& path) const {
  return parts_.files.Exists(path) ? FreeNameBeside(parts_.files, parts_.clock, path) : path;
}

std::string CallRecovery::Description(const Call& call) const {
  auto text = call.date + " " + call.time + " [" + call.caller_name + ":" + call.caller_number + "]";
  if (call.message_path.empty()) return text + ", without a message";
  return text + ", message " + call.message_file_name + " (" +
         ToText(parts_.Wave1.FileLength(call.message_path)) + " s)";
}

}  // namespace orven
