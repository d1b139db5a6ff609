// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orven {

/// The names that a list of sounds offers, and the selected one; empty for none.
struct SoundList {
  std::vector<std::string> names;
  std::string selected;
};

}  // namespace orven
