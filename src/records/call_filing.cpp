// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_filing.h"

#include <algorithm>
#include <utility>

#include "base/conversions.h"
#include "base/paths.h"
#include "records/message_files.h"
#include "records/old_journal.h"

namespace orven {
namespace {

/// Interval at which what failed is tried again.
constexpr std::chrono::seconds kTryAgain{5};

}  // namespace

CallFiling::CallFiling(Ports ports)
    : ports_(std::move(ports)),
      recovery_({ports_.files, ports_.clock, ports_.Wave1, ports_.system_log, ports_.open, ports_.folders,
                 ports_.home, [this](const std::string& message) { return ACallHas(message); }}),
      tmrAgain_(ports_.loop.MakeTimer([this] { TryAgain(); })) {}

void CallFiling::Start() {
  TryAgain();
  late_ = !loaded_;
  recovery_.BeQuiet();
}

/// Takes over the calls of earlier runs. Throws while the records are not open: it is unknown what was filed.
void CallFiling::Load() {
  if (loaded_) return;
  recovery_.Trap()([&] {
    TakeOverJournal({ports_.files, ports_.DataBase1, ports_.system_log, ports_.open}, ports_.home.Path("\\"));
  });
  for (auto& call : ports_.open.Load()) entries_[call.key] = {call, true};
  recovery_.FindStrays();
  loaded_ = true;
  if (!late_) return;
  changed_ = true;
  ports_.system_log.WriteSystem("The call records can be read now");
}

void CallFiling::TryAgain() {
  FileWaitingCalls();
  if (const auto strays = recovery_.TakeStrays(); !strays.empty()) {
    for (const auto& call : strays) entries_[call.key] = {call, true};
    FileWaitingCalls();
  }
  if (std::exchange(changed_, false)) ports_.list.makeList();
  RunTimer();
}

void CallFiling::RunTimer() {
  const bool done = loaded_ && entries_.empty() && !recovery_.StraysAreLeft();
  if (done) return tmrAgain_->Stop();
  if (!tmrAgain_->Enabled()) tmrAgain_->Start(kTryAgain);
}

void CallFiling::PutCallDetailsInDB(Call& call) {
  const ErrorTrap trap(ports_.system_log, "ErrPutCallDetailsInDB ");
  call.type_text = TypeText(call);
  trap([&] { BringMessageAlong(call); });
  ports_.open.Note(call);  // the records may not be writable any more
  entries_[call.key] = {call};
  FileWaitingCalls();
  RunTimer();
  WriteCallsLog(call);
}

void CallFiling::WriteCallsLog(const Call& call) {
  ports_.calls_log.WriteCalls("Ring:" + call.ring_count_text + " [" + call.caller_name + ":" +
                              call.caller_number + "]");
}

void CallFiling::LeaveOut(Call& call) {
  call.record = kNoRecord;
  if (!call.mail_due && ports_.open.Close(call)) return;
  ports_.open.Note(call);
  entries_[call.key] = {call};
  RunTimer();
}

void CallFiling::FileWaitingCalls() {
  ErrorTrap::Silent()([&] { Load(); });  // opening the records has logged why they cannot be read
  const bool had_refused = refused_;
  recovery_.Trap()([&] { LookForRecordings(); });
  bool blocked = false;
  for (const bool interrupted : {true, false}) {  // the oldest first, even if the clock was set back
    for (auto at = entries_.begin(); at != entries_.end();) {
      auto& entry = at->second;
      const bool now = entry.interrupted == interrupted && !(blocked && entry.call.record == 0);
      const auto progress = now ? Settle(entry) : Progress::kLater;
      blocked = blocked || progress == Progress::kRefused;
      at = progress == Progress::kFinished ? entries_.erase(at) : std::next(at);
    }
  }
  if (had_refused && !refused_)
    ports_.system_log.WriteSystem("The calls that could not be filed are filed now");
}

void CallFiling::LookForRecordings() {
  std::vector<const Call*> interrupted;
  for (const auto& [key, entry] : entries_) {
    if (entry.interrupted) interrupted.push_back(&entry.call);
  }
  if (!interrupted.empty()) recovery_.Look(interrupted);
}

CallFiling::Progress CallFiling::Settle(Entry& entry) {
  auto& call = entry.call;
  auto message = MessageState::kLater;
  const ErrorTrap trap = entry.interrupted ? recovery_.Trap() : ErrorTrap::Silent();
  trap([&] { message = Find(entry); });
  if (call.record == 0) {
    if (const auto put = PutOnRecord(entry, message); put != Progress::kFinished) return put;
  } else if (message == MessageState::kThere && !trap([&] { AddMessage(entry); })) {
    return Progress::kLater;
  }
  if (entry.interrupted && call.mail_due) ports_.mail_is_due();
  const bool finished = message != MessageState::kLater && !call.mail_due && ports_.open.Close(call);
  return finished ? Progress::kFinished : Progress::kLater;
}

/// A message whose record was deleted is still brought to its place: else the next start would take its
/// recording for another call.
MessageState CallFiling::Find(Entry& entry) {
  const auto& call = entry.call;
  const auto number = call.record > 0 ? ports_.DataBase1.Locate(call.record) : 0;
  const bool complete = number > 0 && !LacksMessage(number);
  const bool deleted = call.record > 0 && number == 0;
  if (call.record == kNoRecord || complete || (deleted && !entry.interrupted)) return MessageState::kNone;
  return entry.interrupted ? recovery_.Find(entry.call) : FindOwn(entry.call);
}

bool CallFiling::LacksMessage(std::int32_t number) const {
  const auto type = static_cast<std::size_t>(ports_.DataBase1.FieldIndex(kType));
  return ports_.DataBase1.Record(number).at(type) == kNoMessageType;
}

/// A message of this run that did not fit on the disk is stored at its place as soon as it fits.
MessageState CallFiling::FindOwn(Call& call) {
  if (!call.message_path.empty()) return MessageState::kThere;
  if (!call.message_left || call.place.empty()) return MessageState::kNone;
  if (!ports_.files.Exists(call.place) || ACallHas(NameInFolder(call.place, ports_.folders.Serving())))
    return AwaitsRoom(call) ? MessageState::kLater : MessageState::kNone;
  auto complete = call;  // a step that fails leaves the call awaiting its message
  complete.message_path = call.place;
  ports_.open.Note(complete);
  BringMessageAlong(complete);
  complete.type_text = TypeText(complete);
  call = std::move(complete);
  return MessageState::kThere;
}

/// Whether the message may still be stored; one that was kept under another name will not be.
bool CallFiling::AwaitsRoom(const Call& call) const {
  const auto stem = call.message_file_name.substr(0, call.message_file_name.rfind('.'));
  bool kept = false;
  for (const auto& folder : {call.recording_folder, ports_.home.Path(kRescueFolder) + NativePath("\\")}) {
    // A folder that cannot be listed counts as empty.
    ErrorTrap::Silent()([&] { kept = kept || !ports_.files.List(folder, stem + ".unsaved-*.wav").empty(); });
  }
  return !kept;
}

void CallFiling::BringMessageAlong(Call& call) {
  const auto& folder = ports_.folders.Serving();
  auto path = folder + call.message_file_name;
  if (call.message_path.empty() || call.message_path == path) return;
  if (ports_.files.Exists(path)) path = FreeNameBeside(ports_.files, ports_.clock, path);
  ports_.files.Rename(call.message_path, path);
  call.message_path = path;
  call.message_file_name = NameInFolder(path, folder);
}

CallFiling::Progress CallFiling::PutOnRecord(Entry& entry, MessageState message) {
  auto& call = entry.call;
  if (entry.interrupted && !ports_.is_listed(call)) {
    const bool later = message == MessageState::kLater;
    Tell(entry,
         later ? "Interrupted call whose message cannot be reached: " : "Interrupted call, not listed: ");
    if (later) return Progress::kLater;
    call.record = kNoRecord;
    return ports_.open.Note(call) ? Progress::kFinished : Progress::kLater;
  }
  const auto add = [&] { AddRecord(entry, message); };
  const ErrorTrap loud(ports_.system_log, "ErrPutCallDetailsInDB ");
  refused_ = refused_ ? !ErrorTrap::Silent()(add) : !loud(add);
  if (refused_) return Progress::kRefused;
  ports_.open.DropNote(call);
  changed_ = true;
  if (entry.interrupted) {
    WriteCallsLog(call);
    Tell(entry, "Recovered call ");
  }
  return Progress::kFinished;
}

void CallFiling::AddRecord(Entry& entry, MessageState message) {
  auto& call = entry.call;
  Load();
  const bool later = message == MessageState::kLater;
  // A message of this run may have been moved since its length was measured.
  if (entry.interrupted) call.type_text = later ? kNoMessageType : TypeText(call);
  call.record = ports_.DataBase1.Add({{kCallName, call.caller_name},
                                      {kCallNumber, call.caller_number},
                                      {kCallTime, call.time},
                                      {kCallDate, call.date},
                                      {kCallMassageName, call.message_file_name},
                                      {kType, call.type_text},
                                      {kRead, "0"}},
                                     ports_.open.RowFor(call, !later && !call.mail_due));
}

/// The message that the call's record lacked is there. The record may have been deleted.
void CallFiling::AddMessage(Entry& entry) {
  auto& call = entry.call;
  if (entry.interrupted) call.type_text = TypeText(call);
  if (call.type_text == kNoMessageType || ports_.DataBase1.Locate(call.record) == 0) return;
  ports_.DataBase1.Change(call.record, {{kCallMassageName, call.message_file_name}, {kType, call.type_text}},
                          ports_.open.RowFor(call, !call.mail_due));
  changed_ = true;
  ports_.system_log.WriteSystem(entry.interrupted ? "Recovered the message of the call " + Description(call)
                                                  : "Record Message: " + call.message_file_name +
                                                        " did not fit on the disk before and is filed now");
}

std::string CallFiling::TypeText(const Call& call) const {
  // A recording that could not be stored has no file to play.
  if (!call.message_left || call.message_path.empty()) return kNoMessageType;
  const double length = ports_.Wave1.FileLength(call.message_path);
  return length < 0 ? kNoMessageType : ToText(length);
}

void CallFiling::Tell(Entry& entry, const std::string& what) {
  if (!std::exchange(entry.told, true)) ports_.system_log.WriteSystem(what + Description(entry.call));
}

std::string CallFiling::Description(const Call& call) const {
  auto text = call.date + " " + call.time + " [" + call.caller_name + ":" + call.caller_number + "]";
  if (call.message_path.empty()) return text + ", without a message";
  return text + ", message " + call.message_file_name + " (" +
         ToText(ports_.Wave1.FileLength(call.message_path)) + " s)";
}

std::vector<Call> CallFiling::DueMails() const {
  std::vector<Call> calls;
  for (const auto& [key, entry] : entries_) {
    if (!entry.interrupted || !entry.call.mail_due || entry.call.record == 0) continue;
    auto& call = calls.emplace_back(entry.call);
    call.type_text = TypeText(call);  // is not kept with the call
  }
  return calls;
}

void CallFiling::MailHandedOver(const Call& call) {
  const auto entry = entries_.find(call.key);
  if (entry == entries_.end()) return;
  entry->second.call.mail_due = false;
  ports_.open.Note(entry->second.call);
  if (entry->second.call.record != 0 && Settle(entry->second) == Progress::kFinished) entries_.erase(entry);
}

std::vector<std::string> CallFiling::MessageNames() const {
  auto& database = ports_.DataBase1;
  const auto type = static_cast<std::size_t>(database.FieldIndex(kType));
  const auto name = static_cast<std::size_t>(database.FieldIndex(kCallMassageName));
  std::vector<std::string> names;
  for (auto& record : database.Query(kGetAll).records) {
    if (record.at(type) != kNoMessageType && !record.at(name).empty()) names.push_back(record.at(name));
  }
  for (const auto& [key, entry] : entries_) {
    if (entry.call.record == 0 && !entry.call.message_path.empty())
      names.push_back(entry.call.message_file_name);
  }
  return names;
}

bool CallFiling::ACallHas(const std::string& message) const {
  const auto has_it = [&](const Call& call) {
    return !call.message_path.empty() && call.message_file_name == message;
  };
  const auto waits_with_it = [&](const auto& entry) {
    return entry.second.call.record == 0 && has_it(entry.second.call);
  };
  if (std::ranges::any_of(entries_, waits_with_it)) return true;
  if (ports_.current.InProgress() && has_it(ports_.current)) return true;
  if (ports_.DataBase1.CountRecords(kCallMassageName, message) == 0) return false;
  return std::ranges::count(MessageNames(), message) > 0;
}

}  // namespace orven
