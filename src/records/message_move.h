// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "records/call_filing.h"
#include "records/message_files.h"

namespace orven {

/// Progress of a move of the messages.
struct RelocationProgress {
  std::size_t done = 0;
  std::size_t total = 0;
};

/// Moves the messages to another folder, one by one in the background, and stores that as the messages path.
/// Nothing is overwritten, and every file is in exactly one of the two folders, also after a failure; a
/// duplicate left by a killed program is removed when the move continues. Before the first message moves, the
/// new folder is stored in addition to the old one until the move is complete and stored: so the settings
/// always name every folder that can have messages. A box and the log name the messages that stayed behind. A
/// folder that cannot be written is refused with a box before anything moves. When this object is destroyed,
/// the move stops after the current file. User-interface thread.
class MessageMove {
 public:
  struct Parts {
    Registry& registry;
    Dialogs& dialogs;
    SystemLog& log;
    Files& files;
    Background& background;
    const CallFiling& filing;
    MessageFolders& folders;
    Settings& settings;
  };

  explicit MessageMove(Parts parts) : parts_(parts) {}

  /// A person chose `folder` (ending in a separator). While an earlier move waits to continue, any folder but
  /// that move's needs the person's consent, because messages may be left behind there. Does nothing while
  /// messages move.
  void Begin(const std::string& folder);

  /// The folder of a move that the end of the program interrupted; empty for none.
  std::string Interrupted() const;

  /// Continues that move. If this fails, the next start tries again.
  void GoOn();

  /// The progress of the move; nothing when there is none.
  std::optional<RelocationProgress> Relocating() const;

 private:
  /// A move in progress. Folders end in a separator.
  struct Move {
    std::string from, to;
    std::set<std::string> known;      ///< every name that was ever waiting
    std::deque<std::string> waiting;  ///< names in the order in which they are moved
    std::vector<std::string> stayed;  ///< messages that could not be moved
  };

  bool MayLeave(const std::string& folder);
  void Try(const std::string& folder, bool old_needed);
  void Tried(bool same_folder, const std::exception_ptr& failure);
  Words ReasonAgainst();
  bool CollectNames();
  void MoveNext();
  void Moved(bool gone, const std::exception_ptr& failure);
  void Refuse(const Words& reason);
  void End();
  bool Store(const std::string& name, const std::string& folder);
  void StoreEnd();
  Background::Done Bound(std::function<void(const std::exception_ptr& failure)> done) const;

  Parts parts_;
  std::unique_ptr<Move> move_;
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);  ///< background work outlives this object
};

}  // namespace orven
