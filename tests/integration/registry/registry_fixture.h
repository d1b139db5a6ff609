// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/registry/registry_file.h"
#include "support/scratch_folder.h"

namespace orven::test {

inline constexpr const char* kKey = "SOFTWARE\\ORVEN";
inline constexpr const char* kStart =
    "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN]\n";

/// A type-1 value as the program writes it.
inline RegistryValue Text(const std::string& text) {
  return {1, text + '\0'};
}

/// A settings file in a folder of its own, and what it reports.
class RegistryFileTest : public testing::Test {
 protected:
  std::optional<RegistryValue> Query(const std::string& name) {
    return registry_.Query(RegistryRoot::LocalMachine, kKey, name);
  }
  bool Write(const std::string& name, const RegistryValue& value) {
    const std::vector<NamedRegistryValue> values{{name, value}};
    return registry_.Write(RegistryRoot::LocalMachine, kKey, values);
  }
  std::string Stored() const { return ContentOf(path_); }

  ScratchFolder folder_;
  std::string path_ = folder_ / "registry.reg";
  std::vector<std::string> reports_;
  RegistryReport report_ = [this](const std::string& line) { reports_.push_back(line); };
  RegistryFile registry_{path_, report_};
};

}  // namespace orven::test
