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

/// A section of `lines.ini` for the dialog; `origin` is its line number.
TelephoneLine LineOf(const LineSection& section);

/// The section to write for `line`. `before` is the section that it replaces, or nullptr for a new line. A
/// value that equals the default is written only if `before` has that key. Keys that the dialog does not show
/// stay.
LineSection EditOf(const TelephoneLine& line, const LineSection* before);

/// Why `line` cannot be stored or used. What is stored must be read back unchanged.
std::optional<LineFault> FaultOf(const TelephoneLine& line);

/// The settings of a SIP line's driver, without its listeners. Relative paths begin at `folder`, the folder
/// of lines.ini, which also gets the certificate that the program makes. No file is read.
SipLineSettings SipSettingsOf(const LineSection& section, const std::filesystem::path& folder);

/// How long a call may be idle before a line of any kind ends it; 0: for ever.
std::chrono::seconds IdleLimitOf(const LineSection& section);

/// The path of a simulated line's script, relative to `folder` likewise; empty without one.
std::string ScriptOf(const LineSection& section, const std::filesystem::path& folder);

}  // namespace orven
