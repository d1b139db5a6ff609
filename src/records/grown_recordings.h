// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"

namespace orven {

/// The name of the recording of the message `message_file_name` while it grows: the message's name without
/// extension, "~" and the fraction of the current second. So calls within one second have different names,
/// also those of other programs that share the folder.
std::string RecordingName(const std::string& message_file_name, const Clock& clock);

/// A file that a recording grows in, ".recording-<name>-<process>-<n>.wav.part".
struct GrownRecording {
  std::string folder;  ///< ending in a separator
  std::string file;

  std::string Path() const { return folder + file; }
  /// The recording's name; empty when it had none.
  std::string Name() const;
  /// Name of the message that it was to become, without extension; empty when it had none.
  std::string MessageStem() const;
  /// Whether `recording` is its name, or the name of this file.
  bool Is(std::string_view recording) const { return recording == file || recording == Name(); }
};

/// Whether the audio in `whole` begins with all the audio in `part`, byte by byte. Throws what reading
/// throws.
bool IsBeginning(const Files& files, const std::string& part, const std::string& whole);

/// The content of the recording `path` with a corrected header, if an interrupted write left audio that the
/// header does not count; empty otherwise. Throws what reading throws.
std::string WithAllAudio(const Files& files, const std::string& path);

/// The growing files in a few folders at the time of the latest Look.
class GrownRecordings {
 public:
  /// Lists each of the folders once.
  void Look(const Files& files, const std::set<std::string>& folders);

  /// Whether `folder` was among them and could not be listed.
  bool CouldNotLook(const std::string& folder) const { return closed_.contains(folder); }

  std::vector<GrownRecording> All() const;

  /// Those for which Is(`recording`) holds; none when it is empty.
  std::vector<GrownRecording> Of(const std::string& recording) const;

 private:
  std::multimap<std::string, GrownRecording> by_name_;
  std::set<std::string> closed_;
};

}  // namespace orven
