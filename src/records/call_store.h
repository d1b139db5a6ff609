// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/call_journal.h"
#include "records/call_list.h"
#include "records/message_files.h"

namespace orven {

/// The player of messages on the computer, as the records see it.
class MessagePlayer {
 public:
  virtual ~MessagePlayer() = default;
  virtual bool IsPlaying() const = 0;
  virtual void Stop() = 0;
  /// Full path of the loaded file, playing or not; empty for none.
  virtual std::string HeldFile() const = 0;
};

/// The call records and what happens to their message files. Row indexes are the call list's,
/// 1-based, newest first. A failing step is logged and the operation goes on; nothing is rolled back.
/// User-interface thread.
class CallStore {
 public:
  struct Ports {
    DatabaseControl& DataBase1;
    Files& files;
    MessageFolders& folders;
    Background& background;
    const WaveControl& Wave1;  ///< measures message files
    Dialogs& dialogs;
    MessagePlayer& player;
    SystemLog& system_log;
    CallsLog& calls_log;
    CallJournal& journal;
    EventLoop& loop;
    Clock& clock;
    const Call& current;  ///< the current call, or the latest
  };

  CallStore(Ports ports, CallList& list, const SharedOptions& shared)
      : ports_(ports), list_(list), shared_(shared), tmrRoom_(ports.loop.MakeTimer([this] { TryAgain(); })) {}

  /// Files the current call as the newest record and writes its line to the calls log. Sets the call's type
  /// text; its message is moved when the messages folder was changed since it was recorded. A call that
  /// cannot be filed now is kept and filed as soon as possible, before any later one; a message that does not
  /// fit on the disk is kept likewise. The caller rebuilds the list.
  void PutCallDetailsInDB(Call& call);

  /// The call is over and gets no record.
  void LeaveOut(Call& call) { ports_.journal.Done(call); }

  /// Retries the calls that could not be filed, the oldest first, and the messages that did not fit on the
  /// disk. The cause is logged once. The caller rebuilds the list.
  void FileWaitingCalls();

  /// Marks the call behind a row read or unread, unless it is so already.
  void MarkAsReadUnRead(std::int32_t index, bool read);

  /// Deletes the record behind a row and, when the row has a message that no other record names, the message
  /// file (in the background while a move to another folder is unfinished). The caller rebuilds the list.
  void DeleteItemIndex(std::int32_t index);

  /// Deletes the record with this identity and all older ones, and rebuilds the list. Message files
  /// stay where they are.
  void ClearUpTo(std::int64_t newest);

  /// Copies the file at `path` to a place that the user chooses, in the background.
  void SaveFile(const std::string& path);
  /// The same with the message file of this name.
  void SaveMessage(const std::string& name);

  /// The names of all messages, also of calls that wait to be filed. Throws when the records cannot be read.
  std::vector<std::string> MessageNames() const;

 private:
  /// A call that is filed without its message, which waits for disk space.
  struct Late {
    std::int64_t record;  ///< its identity
    Call call;
  };

  std::string TypeText(const Call& call) const;
  void BringMessageAlong(Call& call);
  void AddRecord(Call& call);
  void TryAgain();
  bool TakeLateMessage(Call& call);
  bool Awaits(const Call& call) const;
  void FileLateMessages();
  bool IsOver(const Late& late);
  void FileLateMessage(const Call& call, std::int32_t record);
  void WriteReadFlag(std::int32_t index, bool read, bool& has_message);
  bool AnotherCallHas(const std::string& message) const;
  void DeleteMessage(const std::string& name);
  std::optional<std::string> AskForTarget(const std::string& path);
  void CopyInBackground(const std::vector<std::string>& places, const std::string& target);
  Background::Done LogFailure(const std::string& label);
  void StopPlayerOn(const std::string& key);

  Ports ports_;
  CallList& list_;
  const SharedOptions& shared_;
  std::deque<Call> waiting_;  ///< not filed yet, oldest first
  bool refused_ = false;      ///< filing the first one failed, and the reason is logged
  std::vector<Late> late_;
  std::unique_ptr<Timer> tmrRoom_;  ///< runs while anything waits
};

}  // namespace orven
