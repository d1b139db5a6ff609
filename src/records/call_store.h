// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "platform/database.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "records/call_filing.h"
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
    Dialogs& dialogs;
    MessagePlayer& player;
    SystemLog& log;
    const CallFiling& filing;
  };

  CallStore(Ports ports, CallList& list) : ports_(ports), list_(list) {}

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

 private:
  bool WriteReadFlag(std::int32_t index, bool read);
  void DeleteMessage(const std::string& name);
  std::optional<std::string> AskForTarget(const std::string& path);
  void CopyInBackground(const std::vector<std::string>& places, const std::string& target);
  Background::Done LogFailure(const std::string& label);
  void StopPlayerOn(const std::string& key);

  Ports ports_;
  CallList& list_;
};

}  // namespace orven
