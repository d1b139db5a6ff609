// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace orven {

/// What a missing value reads as.
inline constexpr const char* kNotFound = "Not Found";

/// Key of all settings, under RegistryRoot::LocalMachine.
inline constexpr const char* kSettingsKey = "SOFTWARE\\ORVEN";

/// Key of the programs that start with the desktop.
inline constexpr const char* kAutostartKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

/// Bytes of the longest text that can be read back.
inline constexpr std::size_t kLongestText = 2047;

/// Type that every caller writes with: a string with its terminating zero.
inline constexpr std::int32_t kRegString = 1;

/// The value as text. A string loses its terminating zero; binary bytes become upper-case hexadecimal text,
/// two digits each; any other type gives its raw bytes without the last one. A key or value that is missing
/// gives kNotFound.
std::string GetRegValue(Registry& registry, RegistryRoot root, const std::string& key,
                        const std::string& name);

/// Creates the key if it is absent and writes one value: type 4 as a 32-bit number (the text must be one,
/// else RuntimeError), any other type as a string, which gets a terminating zero only for type 1. Failures
/// are not reported.
void SetRegValue(Registry& registry, RegistryRoot root, const std::string& key, const std::string& name,
                 std::int32_t type, const std::string& value);

/// Removes one value, if it exists.
void DeleteRegValue(Registry& registry, RegistryRoot root, const std::string& key, const std::string& name);

/// `text` as a stored string, terminating zero included.
NamedRegistryValue RegString(std::string_view name, std::string_view text);

}  // namespace orven
