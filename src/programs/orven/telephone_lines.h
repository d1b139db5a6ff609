// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {

/// The telephone lines that the file at `path` (lines.ini) describes, in device-index order. What is
/// wrong in it is added to `problems`; the other lines still work.
std::vector<std::unique_ptr<LineDriver>> MakeTelephoneLines(const std::string& path, EventLoop& loop,
                                                            std::vector<std::string>& problems);

}  // namespace orven
