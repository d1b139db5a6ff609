// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orven {

/// A path as the program writes it ("\Greets\") in the platform's own separators ("/Greets/").
std::string NativePath(std::string_view text);

/// The part after the last separator.
std::string FileNamePart(std::string_view path);

/// The part up to and with the last separator.
std::string FolderPart(std::string_view path);

}  // namespace orven
