// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// A voice of the speech engine.
struct Voice {
  std::string description;             ///< as a person chooses it, "English (America)"
  std::string identifier;              ///< as the engine finds it
  std::vector<std::string> languages;  ///< in small letters with hyphens, "en-us"
};

/// The voices as they are offered: those for the language of `locale` ("de_AT") first, of these the ones for
/// exactly that, then for a part of it, then for the language as such; the others follow as they were.
/// Descriptions are made unique and free of line breaks. The locales "C" and "POSIX" count as American
/// English.
std::vector<Voice> VoicesFor(std::string_view locale, std::vector<Voice> voices);

/// The voices' descriptions, one a line, with "\r\n" between them.
std::string JoinedDescriptions(const std::vector<Voice>& voices);

}  // namespace orven
