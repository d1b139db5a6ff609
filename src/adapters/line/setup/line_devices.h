// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/line/config/lines_ini.h"
#include "adapters/line/setup/latest.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/line_driver.h"

namespace orven {

/// One line that the program has a device for, and the state that its driver reported last. The driver's
/// threads report it, so it outlives the driver.
struct LineState {
  LineSection section;
  std::shared_ptr<Latest<RegistrationNews>> registration = std::make_shared<Latest<RegistrationNews>>();
  std::shared_ptr<Latest<std::string>> modem = std::make_shared<Latest<std::string>>();  ///< for the user
};

/// The states of all lines, in device-index order. User-interface thread.
using LineStates = std::vector<LineState>;

/// Makes the telephone lines that the file at `path` (lines.ini) describes, in device-index order. Faults of
/// the file are added to `problems`; the other lines still work. `report` takes the faults of open lines; it
/// is called on the lines' threads and must not block. `states` is replaced by the states of these lines.
std::vector<TelephoneDevice> MakeTelephoneLines(const std::string& path, EventLoop& loop, const Clock& clock,
                                                std::vector<std::string>& problems,
                                                const std::function<void(const std::string&)>& report,
                                                LineStates& states);

}  // namespace orven
