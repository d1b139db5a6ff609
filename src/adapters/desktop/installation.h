// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orven {

/// Folder texts here are absolute, UTF-8, without a trailing separator.

/// What decides where the application folder is; empty texts count as not given.
struct FolderHints {
  std::string orven_home;         ///< $ORVEN_HOME; a relative one counts from the current folder
  std::string executable_folder;  ///< absolute
  std::string data_home;          ///< $XDG_DATA_HOME; ignored unless absolute (XDG base directories)
  std::string home;               ///< the user's home folder
};

/// The hints of this process: its environment and its executable. Needs a QCoreApplication.
FolderHints ProcessFolderHints();

/// `orven_home` when given; else the executable's folder when it holds beep.wav; else the folder
/// "orven" in the user's data folder (by default ~/.local/share). It need not exist yet.
std::string FindApplicationFolder(const FolderHints& hints);

/// The folder of the installed assets (beep.wav, Greets, Sound, defaults.reg): ../share/orven seen from
/// the executable in a build folder (bin), ../../share/orven in an installation (lib/orven). Empty when
/// there is none.
std::string FindAssets(const std::string& executable_folder);

/// What SeedApplicationFolder did. A problem names the file or folder and the reason.
struct SeedReport {
  std::vector<std::string> copied;
  std::vector<std::string> problems;
};

/// Makes `folder`, readable by its user only when it is new: it will hold recorded messages and
/// passwords. Returns one sentence on what failed, or an empty text. Needed before the folder can be
/// claimed.
std::string MakeApplicationFolder(const std::string& folder);

/// Makes the Greets, Sound, Log and Messages folders and copies what is missing from `assets`:
/// beep.wav always; greetings and sounds on the `first_start` or when their whole folder is gone, so
/// that a sound which the user deleted does not come back. Never replaces a file; a copy appears
/// whole or not at all.
SeedReport SeedApplicationFolder(const std::string& folder, const std::string& assets, bool first_start);

/// Brings the Help folder up to what `assets` has: a file that is missing or differs is copied, one that
/// `assets` has no more is removed. Any thread; on a slow disk it takes its time.
SeedReport RefreshHelp(const std::string& folder, const std::string& assets);

/// Whether texts can be spoken here: the speech helper is a program that may be executed, and the data of its
/// engine, espeak-ng, are where that looks for them or where systems install them. Nothing is started.
bool SpeechInstalled(const std::string& helper_path);

}  // namespace orven
