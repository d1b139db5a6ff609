// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/paths.h"
#include "platform/files.h"

namespace orven {

/// The file of the greeting `name` in an application folder.
inline std::string GreetingPath(const ApplicationFolder& home, const std::string& name) {
  return home.Path("\\Greets\\") + name + ".wav";
}

/// The greetings: WAV files in the folder "Greets" of the application folder. A greeting's name is its file's
/// name without ".wav" (in any letter case). All operations but Folder and PathOf throw as Files does.
/// User-interface thread.
class GreetingLibrary {
 public:
  GreetingLibrary(Files& files, const ApplicationFolder& home) : files_(files), home_(home) {}

  /// Ends in a separator.
  std::string Folder() const { return home_.Path("\\Greets\\"); }

  /// The file of the greeting `name`.
  std::string PathOf(const std::string& name) const { return GreetingPath(home_, name); }

  /// The sorted names of the greetings.
  std::vector<std::string> Names() const;

  /// Copies the sound file at `path` to the greeting `name`, which is replaced atomically. May be slow; any
  /// thread.
  void Add(const std::string& name, const std::string& path) const { files_.Copy(path, PathOf(name)); }

  void Delete(const std::string& name) const { files_.Delete(PathOf(name)); }

 private:
  Files& files_;
  const ApplicationFolder& home_;
};

/// Whether `name` is a file name on every platform: it has none of the characters ? \ / | * < > : ".
bool IsLegalGreetingName(std::string_view name);

}  // namespace orven
