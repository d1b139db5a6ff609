// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "adapters/line/service/lines_file.h"
#include "adapters/line/sip/sip_line_settings.h"

namespace orven {

/// What the driver of a SIP line is told of its section, for use as for a test; who listens to it comes
/// on top. A relative path of the section begins at `folder`, that of lines.ini, where our own certificate
/// is made, too. Nothing is read.
SipLineSettings SipSettingsOf(const LineSection& section, const std::filesystem::path& folder);

/// How long a call may be idle on any kind of line before the line ends it; 0: for ever.
std::chrono::seconds IdleLimitOf(const LineSection& section);

/// The path of a simulated line's script, relative to `folder` likewise; empty without one.
std::string ScriptOf(const LineSection& section, const std::filesystem::path& folder);

}  // namespace orven
