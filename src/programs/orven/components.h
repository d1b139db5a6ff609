// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "shell/frmAbout.h"

namespace orven {

/// The libraries that this program is made with; the versions are those that run now, where a library
/// tells its own.
std::vector<Component> ProgramComponents();

}  // namespace orven
