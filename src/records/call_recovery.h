// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/call_journal.h"

namespace orven {

/// Where a recording grows for which the messages folder has no place, below the application folder.
inline constexpr const char* kRescueFolder = "\\Rescued";

/// Files the calls that a crash interrupted, each with what was recorded of its message, exactly once however
/// often the program is killed meanwhile. Runs once at a start, when the records are open and before a
/// message can be moved or recorded. User-interface thread.
///
/// A recording that no call in the journal knows becomes a call of its own, from an unknown caller, at the
/// time at which it began: nobody who left a message is forgotten.
class CallRecovery {
 public:
  struct Parts {
    Files& files;
    Clock& clock;
    const WaveControl& Wave1;  ///< measures sound files
    DatabaseControl& DataBase1;
    SystemLog& log;
    CallJournal& journal;
    const SharedOptions& shared;
    /// Whether the call is to have a record.
    std::function<bool(const Call& call)> is_listed;
    /// Files a call as calls are filed that end by themselves, and tells the journal.
    std::function<void(Call& call)> file;
  };

  explicit CallRecovery(Parts parts) : parts_(std::move(parts)) {}

  void Run();

 private:
  void TellNewestRecord();
  void Recover(Call& call);
  bool IsFiled(const Call& call);
  void FindMessage(Call& call);
  void TakeStored(Call& call, const std::string& path);
  bool TakeGrown(Call& call, const std::string& grown);
  bool KeepWhereItIs(Call& call, const std::string& grown);
  void RecoverStrays();
  void RecoverStray(const std::string& folder, const std::string& name);
  std::vector<std::string> Folders() const;
  std::vector<std::string> Grown(const std::string& folder, const std::string& name) const;
  std::vector<std::string> GrownOf(const Call& call) const;
  std::string Longest(const std::vector<std::string>& paths) const;
  std::string FreePath(const std::string& path) const;
  std::string Description(const Call& call) const;

  Parts parts_;
  std::set<std::int64_t> taken_;  ///< records that are not the call that is looked for, but another
};

}  // namespace orven
