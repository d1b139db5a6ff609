// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/settings.h"
#include "platform/files.h"

namespace orven {

/// The greetings: one WAV file each in the folder "Greets" of the application folder. A greeting's name is
/// its file's without ".wav", in whatever case. User-interface thread; all of it but Folder and PathOf
/// throws as Files does.
class GreetingLibrary {
 public:
  GreetingLibrary(Files& files, const SharedOptions& shared) : files_(files), shared_(shared) {}

  /// With a separator at its end.
  std::string Folder() const { return shared_.InApplicationFolder("\\Greets\\"); }

  /// The file of the greeting `name`.
  std::string PathOf(const std::string& name) const { return Folder() + name + ".wav"; }

  /// The greetings' names, in order.
  std::vector<std::string> Names() const;

  /// Makes a copy of the sound file at `path` the greeting `name`, replacing one of that name whole or not
  /// at all. May take long; any thread.
  void Add(const std::string& name, const std::string& path) const { files_.Copy(path, PathOf(name)); }

  void Delete(const std::string& name) const { files_.Delete(PathOf(name)); }

 private:
  Files& files_;
  const SharedOptions& shared_;
};

/// Whether `name` can be a greeting's on every platform: none of the characters ? \ / | * < > : " is in it.
bool IsLegalGreetingName(std::string_view name);

}  // namespace orven
