// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "base/words.h"

namespace orven {

/// In the language of the desktop; in English where there is no translation. User-interface thread.
QString Shown(const Words& words);

}  // namespace orven
