// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "adapters/line/config/lines_ini.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "platform/telephone_lines.h"

namespace orven {

/// A section of `lines.ini` as a person knows it; `origin` is its line number.
TelephoneLine LineOf(const LineSection& section);

/// The same backwards: the values that `line` shall have in the file. A value that is the default is
/// written only where `before`, the section that it changes, has it; nullptr for a new one.
LineEdit EditOf(const TelephoneLine& line, const LineSection* before);

/// What keeps `line` from being stored or used. What is stored must be read again as it was given.
std::optional<LineFault> FaultOf(const TelephoneLine& line);

/// What the driver of a SIP line is told of its section, for use as for a test; who listens to it comes
/// on top. A relative path of the section begins at `folder`, that of lines.ini, where our own certificate
/// is made, too. Nothing is read.
SipLineSettings SipSettingsOf(const LineSection& section, const std::filesystem::path& folder);

/// How long a call may be idle on any kind of line before the line ends it; 0: for ever.
std::chrono::seconds IdleLimitOf(const LineSection& section);

/// The path of a simulated line's script, relative to `folder` likewise; empty without one.
std::string ScriptOf(const LineSection& section, const std::filesystem::path& folder);

}  // namespace orven
