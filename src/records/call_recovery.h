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
#include "records/message_files.h"

namespace orven {

/// Folder of recordings that the messages folder has no room for, below the application folder.
inline constexpr const char* kRescueFolder = "\\Rescued";

/// Files the calls that a crash interrupted, each with the recorded part of its message, and exactly once
/// even if the program is killed during the recovery. Runs at each start, when the records are open and
/// before a message can be moved or recorded. What fails (a folder is missing or read-only, the records are
/// not open) is tried again every few seconds. A call whose message cannot be reached is filed without it if
/// such calls are listed; its record is completed later. User-interface thread.
///
/// A recording that belongs to no call in the journal completes the record with its name. Without such a
/// record it becomes a call from an unknown caller at the time at which it began, so that no message is lost.
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
    const MessageFolders& folders;
    const SharedOptions& shared;
    /// Whether the call is to have a record.
    std::function<bool(const Call& call)> is_listed;
    /// Files a call like one that ended normally, and marks it done in the journal unless its message is due.
    std::function<void(Call& call)> file;
    /// A record has changed.
    std::function<void()> show;
  };

  explicit CallRecovery(Parts parts);

  /// Recovers what it can. A later call in the same run continues with the rest.
  void Run();

 private:
  /// An interrupted call that is not done.
  struct Interrupted {
    Call call;
    bool handed_over = false;  ///< passed on for filing, which may wait for disk space
    bool told = false;         ///< it is in the log
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
  std::vector<GrownRecording> strays_;  ///< found at the start
  std::chrono::milliseconds strays_since_{0};
  GrownRecordings grown_;
  std::set<std::int64_t> taken_;     ///< records that belong to other recovered calls
  std::unique_ptr<Timer> tmrAgain_;  ///< runs while anything is left
};

}  // namespace orven
