// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace orven {

/// A path as the program writes it ("\Greets\") in the platform's own separators ("/Greets/").
std::string NativePath(std::string_view text);

/// The application folder, where the program keeps everything that is its own.
class ApplicationFolder {
 public:
  /// `path` has no separator at its end.
  explicit ApplicationFolder(std::string path) : path_(std::move(path)) {}

  /// `below` ("\Greets\") in this folder, as NativePath gives it; without it the folder itself.
  std::string Path(std::string_view below = {}) const { return path_ + NativePath(below); }

 private:
  std::string path_;
};

/// The part after the last separator.
std::string FileNamePart(std::string_view path);

/// The part up to and including the last separator.
std::string FolderPart(std::string_view path);

/// The folder that holds the file at `path`, without a separator at its end; "." when `path` names none.
std::string FolderOf(const std::string& path);

/// Date and time as a part of a file name: in the date every "/" becomes "-"; a time that is not
/// empty follows after "_", every ":" as "-". 12/31/2003 and 14:05:07 give 12-31-2003_14-05-07.
std::string FileStamp(std::string date, std::string time);

}  // namespace orven
