// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/error_trap.h"
#include "core/settings.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/call_journal.h"
#include "records/grown_recordings.h"

namespace orven {

/// Where a recording grows for which the messages folder has no place, below the application folder.
inline constexpr const char* kRescueFolder = "\\Rescued";

/// Files the calls that a crash interrupted, each with what was recorded of its message, exactly once however
/// often the program is killed meanwhile. Runs at a start, when the records are open and before a message can
/// be moved or recorded. What cannot be done then (a folder that is not there or takes nothing, records that
/// are not open) is tried again every few seconds: a call whose message is out of reach is filed without it,
/// where it is to be listed so, and its record completed later. User-interface thread.
///
/// A recording that no call in the journal knows completes the record that its name belongs to, else it
/// becomes a call of its own, from an unknown caller, at the time at which it began: nobody who left a
/// message is forgotten.
class CallRecovery {
 public:
  struct Parts {
    Files& files;
    Clock& clock;
    EventLoop& loop;
    const WaveControl& Wave1;  ///< measures sound files
    DatabaseControl& DataBase1;
    SystemLog& log;
    CallJournal& journal;
    const SharedOptions& shared;
    /// Whether the call is to have a record.
    std::function<bool(const Call& call)> is_listed;
    /// Files a call as calls are filed that end by themselves, and tells the journal unless its message is
    /// due.
    std::function<void(Call& call)> file;
    /// A record has changed.
    std::function<void()> show;
  };

  explicit CallRecovery(Parts parts);

  /// Once more than once in a run, it goes on with what is left.
  void Run();

 private:
  /// An interrupted call that is not done.
  struct Interrupted {
    Call call;
    bool handed_over = false;  ///< to be filed; that may have to wait for room
    bool told = false;         ///< the log tells of it
  };
  enum class Message { kThere, kNone, kOutOfReach };

  void Begin();
  void TryAgain();
  bool KnowNewestRecord();
  void RecoverCalls();
  bool Recover(Interrupted& interrupted);
  bool HandOver(Interrupted& interrupted);
  void Tell(Interrupted& interrupted, const std::string& what);
  bool Complete(Call& call, std::int32_t record);
  void SetMessage(const Call& call, std::int32_t record);
  std::int64_t NewestRecord();
  std::int32_t RecordOf(Call& call);
  bool IsRecordOf(const Call& call, std::int32_t number, bool by_message_too);
  std::int32_t RecordNaming(const std::string& message, bool has_it);
  std::string FieldOf(std::int32_t number, const char* field);

  Message FindMessage(Call& call);
  Message TakeGrown(Call& call, const std::vector<GrownRecording>& grown);
  std::string Mended(const std::string& path);
  Message TakeStored(Call& call, const std::string& path);
  void DeleteBeginnings(const Call& call);
  bool MoveTo(Call& call, const std::string& from);

  void RecoverStrays();
  bool RecoverStray(const GrownRecording& stray);
  bool TakeStray(const GrownRecording& stray, double length);

  std::vector<std::string> Folders() const;
  bool IsInPlace(const std::string& path) const;  ///< the path of a message in the messages folder
  std::string FreePath(const std::string& path) const;
  std::string Description(const Call& call) const;
  ErrorTrap Trap() const;

  Parts parts_;
  bool begun_ = false;
  bool again_ = false;  ///< failures are in the log already
  std::list<Interrupted> calls_;
  std::vector<GrownRecording> strays_;  ///< that were there at the start
  std::chrono::milliseconds strays_since_{0};
  GrownRecordings grown_;
  std::set<std::int64_t> taken_;     ///< records that are not the call that is looked for, but another
  std::unique_ptr<Timer> tmrAgain_;  ///< runs while anything is left
};

}  // namespace orven
