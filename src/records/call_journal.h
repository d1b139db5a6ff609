// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/files.h"
#include "records/call.h"
#include "records/grown_recordings.h"

namespace orven {

/// Remembers on disk the calls that are not filed yet, so that a crash loses none: `Call.journal` in the
/// application folder. Each step of a call appends one line with the whole state of the call; the last line
/// of a call counts. The file is deleted when every call in it is done. It is not synced: that survives a
/// crash of the program, and a call never waits for the disk. A step that cannot be written is logged; of
/// several in a row, only the first. User-interface thread.
class CallJournal {
 public:
  CallJournal(Files& files, SystemLog& log, const SharedOptions& shared)
      : files_(files), log_(log), shared_(shared) {}

  /// Identity of the newest record (0: there is none): it precedes all calls from now on.
  void SetNewestRecord(std::int64_t identity) { newest_record_ = identity; }

  /// Adds a call.
  void Begin(Call& call);

  /// Writes the call's present state; does nothing for a call that was not added or is done.
  void Note(const Call& call);

  /// The call is filed, or is not to be filed. It stays in the journal while its mail is due.
  void Done(const Call& call);

  /// Whether the call was added and is not done.
  bool IsOpen(const Call& call) const { return open_.contains(call.trail.entry); }

  /// Whether the recording belongs to a call that is not done.
  bool Claims(const GrownRecording& grown) const;

  /// A mail about the call is due.
  void AskForMail(const Call& call);

  /// That mail was passed to the mail control, or is no longer wanted.
  void MailHandedOver(const Call& call);

  /// The calls that wait only for their mail; the listener is called for each new one.
  std::vector<Call> AwaitingMail() const;
  void SetMailListener(std::function<void()> listener) { awaits_mail_ = std::move(listener); }

  /// The unfinished calls of an earlier run, the oldest first; from now on they belong to this run. A journal
  /// with invalid lines is first copied to "Call.journal.damaged", and the log says so.
  std::vector<Call> Unfinished();

 private:
  std::string Path() const { return shared_.InApplicationFolder("\\Call.journal"); }
  void Append(const std::string& line);
  void Write(const std::string& line);
  void KeepDamaged();

  Files& files_;
  SystemLog& log_;
  const SharedOptions& shared_;
  std::uint32_t last_ = 0;                       ///< number of the newest entry
  std::map<std::uint32_t, std::string> open_;    ///< entries that are not done, and their recordings
  std::set<std::uint32_t> mail_asked_;           ///< those of them whose mail is due
  std::map<std::uint32_t, Call> awaiting_mail_;  ///< those of them that are done but for it
  std::function<void()> awaits_mail_ = [] {};
  std::optional<std::int64_t> newest_record_;
  std::string last_line_;  ///< what was written last, so that nothing is written twice
  bool torn_ = false;      ///< the file ends within a line
  bool failing_ = false;   ///< the latest step could not be written
};

}  // namespace orven
