// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "records/call.h"
#include "records/grown_recordings.h"

namespace orven {

/// Keeps every call on disk from its first ring until nothing is left to do for it, so that a crash loses
/// none: as a row beside the records. While the records cannot be written, the call is kept in a file of its
/// own, its note: ".call-<key>" in the application folder, one line for each step. Neither is synced: both
/// outlive a crash of the program, and a call never waits for the disk. A step that cannot be kept at all is
/// logged; of several in a row, only the first. User-interface thread.
class OpenCalls {
 public:
  /// `folder` is the application folder, ending in a separator.
  OpenCalls(DatabaseControl& database, Files& files, Clock& clock, EventLoop& loop, SystemLog& log,
            std::string folder);

  /// Adds a call: gives it a key, and keeps it.
  void Begin(Call& call);

  /// Keeps the call's present state; does nothing for a call that was not added or is closed. False when it
  /// is not on disk now.
  bool Note(Call& call);

  /// The call's row names its record: its note is out of date.
  void DropNote(const Call& call);

  /// Nothing is left to do for the call, whose record is set. False when the disk cannot say so yet.
  bool Close(Call& call);

  /// The call gets no record.
  void LeaveOut(Call& call);

  /// What is kept of a call, as kOpenCallFields names it.
  OpenCall RowOf(const Call& call) const;

  /// The call as its record is to be stored with: closed at once, or kept.
  OpenCall RowFor(const Call& call, bool finished);

  /// The open calls of earlier runs, the oldest first; from now on they belong to this run. Throws while the
  /// records cannot be read. A damaged note is set aside. The calls of another application folder that uses
  /// the same records are left to it.
  std::vector<Call> Load();

  /// Whether the recording belongs to an open call.
  bool Claims(const GrownRecording& grown) const;

  /// Whether an open call has chosen this path for its message, which may not be there yet.
  bool IsChosen(const std::string& path) const;

 private:
  /// Where the message of an open call is, or will be.
  struct Message {
    std::string recording;
    std::string place;
  };

  void KeepRow(const Call& call);
  void Watch();
  std::string NotePath(std::int64_t key) const;
  void WriteNote(const OpenCall& row);
  std::optional<Call> ReadNote(const std::string& path) const;
  void LoadNote(const std::string& name, std::map<std::int64_t, Call>& calls);

  DatabaseControl& database_;
  Files& files_;
  Clock& clock_;
  SystemLog& log_;
  std::string folder_;
  std::int64_t last_ = 0;                 ///< the newest key
  std::map<std::int64_t, Message> open_;  ///< the open calls, by key
  std::set<std::int64_t> noted_;          ///< the calls that have a note
  OpenCall newest_;                       ///< the row of the newest call, until it gets a record
  std::unique_ptr<Timer> tmrWatch_;       ///< runs while that call is open
  bool failing_ = false;                  ///< the latest step could not be kept
};

}  // namespace orven
