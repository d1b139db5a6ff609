// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/paths.h"
#include "core/activity_log.h"
#include "core/error_trap.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/call_list.h"
#include "records/message_files.h"
#include "records/message_recovery.h"
#include "records/open_calls.h"

namespace orven {

/// Makes the records of calls, each exactly once: of the calls that end, and of those that an earlier run
/// left when it was killed, with what was recorded of their messages. What fails (the records are locked, a
/// disk is full, a folder is missing) is tried again every few seconds, before the next call is filed and at
/// the exit, the oldest call first; the cause is logged once. A call whose message cannot be stored or
/// reached yet is filed without it, and its record is completed later. User-interface thread.
class CallFiling {
 public:
  struct Ports {
    Files& files;
    Clock& clock;
    EventLoop& loop;
    const WaveControl& Wave1;  ///< measures message files
    DatabaseControl& DataBase1;
    SystemLog& system_log;
    CallsLog& calls_log;
    OpenCalls& open;
    CallList& list;
    const MessageFolders& folders;
    const ApplicationFolder& home;
    const Call& current;  ///< the current call, or the latest
    /// Whether a call that was interrupted is to have a record.
    std::function<bool(const Call& call)> is_listed;
    /// A mail of a call of an earlier run is due.
    std::function<void()> mail_is_due;
  };

  explicit CallFiling(Ports ports);

  /// Files the calls that earlier runs left, as soon as the records are open. To be called once, before a
  /// message can be moved or recorded.
  void Start();

  /// Whether the records could be read.
  bool RecordsAreOpen() const { return loaded_; }

  /// Files the current call as the newest record and writes its line to the calls log. Sets the call's type
  /// text; its message is moved when the messages folder was changed since it was recorded. The caller
  /// rebuilds the list.
  void PutCallDetailsInDB(Call& call);

  /// The call is over and gets no record.
  void LeaveOut(Call& call);

  /// Tries again what failed. The caller rebuilds the list.
  void FileWaitingCalls();

  /// The calls of earlier runs whose mail is due.
  std::vector<Call> DueMails() const;

  /// The call's mail was passed to the mail control, or is no longer wanted.
  void MailHandedOver(const Call& call);

  /// The names of all messages, also of calls that wait to be filed. Throws when the records cannot be read.
  std::vector<std::string> MessageNames() const;

  /// Whether a call has the message of this name. Calls within one second share a name, and so may calls in
  /// the repeated hour at the end of summer time.
  bool ACallHas(const std::string& message) const;

 private:
  /// A call that is over but not finished.
  struct Entry {
    Call call;
    bool interrupted = false;  ///< an earlier run left it
    bool told = false;         ///< it is in the log
  };
  enum class Progress { kFinished, kLater, kRefused };

  void Load();
  void TryAgain();
  void LookForRecordings();
  Progress Settle(Entry& entry);
  MessageState Find(Entry& entry);
  MessageState FindOwn(Call& call);
  bool AwaitsRoom(const Call& call) const;
  void BringMessageAlong(Call& call);
  Progress PutOnRecord(Entry& entry, MessageState message);
  void AddRecord(Entry& entry, MessageState message);
  void AddMessage(Entry& entry);
  bool LacksMessage(std::int32_t number) const;
  std::string TypeText(const Call& call) const;
  void WriteCallsLog(const Call& call);
  void Tell(Entry& entry, const std::string& what);
  std::string Description(const Call& call) const;
  void RunTimer();

  Ports ports_;
  MessageRecovery recovery_;
  std::map<std::int64_t, Entry> entries_;  ///< by key, so the oldest first
  bool loaded_ = false;                    ///< the calls of earlier runs are among them
  bool late_ = false;                      ///< the records could not be read at the start
  bool refused_ = false;                   ///< filing one failed, and the cause is logged
  bool changed_ = false;                   ///< the list does not show the records as they are
  std::unique_ptr<Timer> tmrAgain_;        ///< runs while anything is left to do
};

}  // namespace orven
