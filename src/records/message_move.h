// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/registry.h"
#include "records/call_store.h"
#include "records/message_files.h"

namespace orven {

/// Moves the messages to another folder and stores that as the messages path. Before the first message moves
/// the new folder is stored beside the old one, and stays so until the move has come to its end and that is
/// stored: at any time what is stored tells where every message can be. User-interface thread.
class MessageMove {
 public:
  struct Parts {
    Registry& registry;
    Dialogs& dialogs;
    SystemLog& log;
    CallStore& calls;
    MessageFolders& folders;
    const SharedOptions& shared;
  };

  explicit MessageMove(Parts parts) : parts_(parts) {}

  /// A person chose `folder` (ending in a separator). While an earlier move waits to go on, another folder
  /// than that move's needs his consent, for messages may be left behind there. Nothing while messages move.
  void Begin(const std::string& folder);

  /// Goes on with a move that the program's end broke off. One that cannot go on now waits for the next
  /// start.
  void GoOn();

 private:
  bool MayLeave(const std::string& folder);
  void Run(const std::string& folder, bool going_on);
  bool Store(const std::string& name, const std::string& folder);
  void Finish();

  Parts parts_;
};

}  // namespace orven
