// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "platform/clock.h"
#include "platform/files.h"

namespace orven {

/// A path beside the message file `path` that no file has: its name, ".kept_" and the time now, as in
/// "12-31-2003_14-05-07.kept_12-31-2003_14-05-08.wav", with "_2", "_3" … behind it where that is taken, too.
std::string FreeNameBeside(const Files& files, Clock& clock, const std::string& path);

/// What the message file at `path` is called in the messages path `folder`, which it follows directly, also
/// where that has no separator at its end; the file's name when it is not there.
std::string NameInFolder(const std::string& path, const std::string& folder);

}  // namespace orven
