// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/autostart_registry.h"

#include <algorithm>
#include <exception>
#include <string_view>

namespace orven {
namespace {

constexpr std::string_view kRunKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kValueName = "ORVEN";
constexpr const char* kSettingsKey = "SOFTWARE\\ORVEN";

/// Keys and names compare without regard to the case of ASCII letters.
bool SameName(std::string_view left, std::string_view right) {
  const auto folded = [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [&](char one, char other) { return folded(one) == folded(other); });
}

bool IsAutostart(RegistryRoot root, std::string_view key, std::string_view name) {
  return root == RegistryRoot::LocalMachine && SameName(key, kRunKey) && SameName(name, kValueName);
}

}  // namespace

bool AutostartRegistry::KeyExists(RegistryRoot root, const std::string& key) {
  return stored_.KeyExists(root, key);
}

std::optional<RegistryValue> AutostartRegistry::Query(RegistryRoot root, const std::string& key,
                                                      const std::string& name) {
  if (!IsAutostart(root, key, name)) return stored_.Query(root, key, name);
  if (entry_.Look() != AutostartEntry::State::Enabled) return std::nullopt;
  if (auto stored = stored_.Query(root, key, name)) return stored;
  return RegistryValue{.data = entry_.Program() + " -st" + '\0'};
}

bool AutostartRegistry::Write(RegistryRoot root, const std::string& key,
                              std::span<const NamedRegistryValue> values) {
  const auto autostart = std::find_if(values.begin(), values.end(),
                                      [&](const auto& value) { return IsAutostart(root, key, value.name); });
  if (autostart == values.end()) return stored_.Write(root, key, values);
  const bool first_start = !stored_.KeyExists(RegistryRoot::LocalMachine, kSettingsKey);
  if (!stored_.Write(root, key, values)) return false;
  Attempt("written", [&] {
    const auto state = entry_.Look();
    const bool chosen_otherwise =
        state == AutostartEntry::State::Disabled || state == AutostartEntry::State::Foreign;
    if (!first_start || !chosen_otherwise) entry_.Enable();
  });
  return true;
}

bool AutostartRegistry::Delete(RegistryRoot root, const std::string& key, const std::string& name) {
  if (!IsAutostart(root, key, name)) return stored_.Delete(root, key, name);
  const auto state = entry_.Look();
  if (state == AutostartEntry::State::Disabled || state == AutostartEntry::State::Foreign) return false;
  if (!Attempt("removed", [this] { entry_.Remove(); })) return false;
  return stored_.Delete(root, key, name) || state == AutostartEntry::State::Enabled;
}

bool AutostartRegistry::Attempt(const char* what, const std::function<void()>& change) {
  try {
    change();
    return true;
  } catch (const std::exception& failure) {
    report_(std::string("The autostart entry cannot be ") + what + ": " + failure.what());
    return false;
  }
}

}  // namespace orven
