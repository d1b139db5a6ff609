// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "base/paths.h"
#include "base/words.h"
#include "core/activity_log.h"
#include "platform/clock.h"
#include "platform/files.h"

namespace orven {

/// The first of these paths at which a file exists; the first path when none does. Any thread.
std::string FirstThere(const Files& files, const std::vector<std::string>& paths);

/// Whether two files are the same byte by byte; throws what reading throws. Any thread.
bool SameContent(const Files& files, const std::string& one, const std::string& other);

/// Deletes the first of these files that exists, and identical copies among the others, which a killed
/// program may leave; throws 53 when none exists. Any thread.
void DeleteEverywhere(Files& files, const std::vector<std::string>& paths);

/// Knows where message files are. They are in the messages folder; during a move, which may last several
/// starts, also in the next folder; some may be in the application folder's own, which is used while the
/// messages folder is missing. User-interface thread.
class MessageFolders {
 public:
  MessageFolders(const Files& files, SystemLog& log, const ApplicationFolder& home)
      : files_(files), log_(log), home_(home) {}

  /// Chooses the messages folder when the setting `MassagesPath` is `stored`. It is the application folder's
  /// own when the setting is missing or not a full path (it would depend on where the program was started),
  /// and when the stored folder does not exist (a copied application folder, an unplugged disk), unless
  /// messages are `moving` from it. The log tells when it is not the stored one.
  void Serve(const std::string& stored, bool moving);

  /// The messages folder: what a message's file name directly follows.
  const std::string& Serving() const { return serving_; }

  /// For the status bar: why it was not the stored one at the start; empty when it was.
  const Words& Note() const { return note_; }

  /// The folder that messages move to, ending in a separator; empty while none do.
  const std::string& Next() const { return next_; }
  void SetNext(const std::string& folder) { next_ = folder; }

  /// `folder` is the messages folder from now on, and no message moves.
  void Moved(const std::string& folder);

  /// The current path of the message file of this name.
  std::string PathOf(const std::string& name) const { return FirstThere(files_, PlacesOf(name)); }

  /// All paths that it can have, for work that runs later.
  std::vector<std::string> PlacesOf(const std::string& name) const;

 private:
  std::string Own() const { return home_.Path("\\Messages\\"); }

  const Files& files_;
  SystemLog& log_;
  const ApplicationFolder& home_;
  std::string serving_, next_;
  Words note_;
};

/// An unused path in the folder of the message file `path`: its name, ".kept_" and the time now, as in
/// "12-31-2003_14-05-07.kept_12-31-2003_14-05-08.wav", followed by "_2", "_3" … if that exists, too.
std::string FreeNameBeside(const Files& files, Clock& clock, const std::string& path);

/// The name of the message file at `path` relative to the messages path `folder`, which it follows directly
/// even without a separator at the end; the plain file name when it is not in that folder.
std::string NameInFolder(const std::string& path, const std::string& folder);

}  // namespace orven
