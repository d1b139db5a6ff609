// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call_recovery.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "base/conversions.h"
#include "base/paths.h"
#include "records/call_fields.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// What could not be done is tried again so often.
constexpr auto kTryAgain = 5s;

/// The fields that tell one call from another, and what a call holds for each.
constexpr std::array<std::pair<const char*, std::string Call::*>, 5> kTelling{
    {{kCallName, &Call::caller_name},
     {kCallNumber, &Call::caller_number},
     {kCallTime, &Call::time},
     {kCallDate, &Call::date},
     {kCallMassageName, &Call::message_file_name}}};

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
  } else {  // whoever opened them has reported it; nobody can tell what has been filed
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

/// Whether nothing is left to be done for the call.
bool CallRecovery::Recover(Interrupted& interrupted) {
  auto& call = interrupted.call;
  if (interrupted.handed_over && !parts_.journal.IsOpen(call)) {
    Tell(interrupted, "Recovered call ");  // there was room at last
    return true;
  }
  const auto record = RecordOf(call);
  if (record == 0 && call.trail.record && parts_.DataBase1.Locate(*call.trail.record) == 0) {
    parts_.journal.Done(call);  // somebody has deleted it
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
    Tell(interrupted, "Interrupted call, its message is out of reach: ");
    return false;
  }
  if (message == Message::kNone) call.trail.storing_path.clear();  // nothing is to come
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

/// The records have the call. It may lack its message.
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

/// The record that the call got before the program ended, or 0: it is among those that came after the one
/// which was the newest before. A loss of power may bring back a journal that was deleted or has lost its
/// last lines, which is why this is asked of every call.
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
    // Calls of one second may be alike; each has a record of its own.
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

/// The newest record with this message's name that has it, or has not got it; 0 when there is none.
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

}  // namespace orven
