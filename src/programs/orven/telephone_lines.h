// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/line/service/serviced_line.h"
#include "adapters/line/setup/file_telephone_lines.h"
#include "platform/clock.h"
#include "platform/event_loop.h"

namespace orven {

/// The telephone lines that the file at `path` (lines.ini) describes, in device-index order. What is
/// wrong in it is added to `problems`; the other lines still work. `report` takes what a line finds
/// wrong while it is open; it is called on the lines' threads and must not block. `states` becomes those of
/// these lines.
std::vector<TelephoneDevice> MakeTelephoneLines(const std::string& path, EventLoop& loop, const Clock& clock,
                                                std::vector<std::string>& problems,
                                                const std::function<void(const std::string&)>& report,
                                                LineStates& states);

}  // namespace orven
