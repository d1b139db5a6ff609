// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "base/words.h"

namespace orven {

/// What is wrong with a line; both texts are empty when all is well.
struct LineTrouble {
  Words owner{};  ///< for the line's owner, as of LineEvent::Kind::Trouble: "cause: remedy", without a full
                  ///< stop
  std::string log{};  ///< for the log
};

}  // namespace orven
