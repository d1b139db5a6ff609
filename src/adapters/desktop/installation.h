// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orven {

/// All folders here are absolute, UTF-8, without a trailing separator.

/// What determines the application folder; an empty text counts as missing.
struct FolderHints {
  std::string orven_home;         ///< $ORVEN_HOME; may be relative to the current folder
  std::string executable_folder;  ///< absolute
  std::string data_home;          ///< $XDG_DATA_HOME; ignored unless absolute (XDG base directories)
  std::string home;               ///< the user's home folder
};

/// The hints from this process's environment and executable. Needs a QCoreApplication.
FolderHints ProcessFolderHints();

/// `orven_home` if given, else the executable's folder if it holds beep.wav, else the folder "orven" in the
/// user's data folder (default ~/.local/share). The result may not exist yet.
std::string FindApplicationFolder(const FolderHints& hints);

/// The folder of the installed assets (beep.wav, Greets, Sound, Help), relative to the executable's:
/// ../share/orven in a build (bin), ../../share/orven in an installation (lib/orven). Empty if there is none.
std::string FindAssets(const std::string& executable_folder);

/// The installed assets, as a person with this language ("de") gets them.
struct Assets {
  std::string folder;  ///< empty if there are none
  std::string language = "en";

  /// The file of this name; the one in the language's own folder if it is there: de/Greets/Default.wav.
  std::string PathOf(const std::string& name) const;
};

/// What was copied, by names relative to the folder, and what failed: a file or folder and the reason.
struct SeedReport {
  std::vector<std::string> copied;
  std::vector<std::string> problems;
};

/// Makes `folder` if it does not exist, accessible to its user only: it will hold recorded messages and
/// passwords. Returns an error message or an empty text. To be called before the folder is claimed.
std::string MakeApplicationFolder(const std::string& folder);

/// Makes the folders Greets, Sound, Log and Messages and copies missing files from `assets`: beep.wav always,
/// greetings and sounds on the `first_start` or if their whole folder is missing, so that a sound that the
/// user has deleted does not come back. Never replaces a file. A copy appears complete or not at all.
SeedReport SeedApplicationFolder(const std::string& folder, const Assets& assets, bool first_start);

/// Makes the Help folder equal to that of `assets`: files that are missing or differ are copied, others are
/// removed. Any thread; slow on a slow disk.
SeedReport RefreshHelp(const std::string& folder, const Assets& assets);

/// Whether texts can be spoken: the speech helper is executable, and the data of its engine, espeak-ng, is
/// where the engine looks for it or where systems install it. Nothing is started.
bool SpeechInstalled(const std::string& helper_path);

}  // namespace orven
