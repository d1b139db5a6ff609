// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "core/mdlReg.h"
#include "platform/registry.h"

namespace orven::test {

/// A registry in memory; keys and names compare exactly.
class MemoryRegistry : public Registry {
 public:
  bool refuse_writes = false;
  /// Asked before each change.
  std::function<bool()> writable = [] { return true; };

  void Set(const std::string& name, const std::string& text) {
    keys_[{RegistryRoot::LocalMachine, kSettingsKey}][name] = RegString(name, text).value;
  }
  std::string Text(const std::string& name, const std::string& key = kSettingsKey) {
    return GetRegValue(*this, RegistryRoot::LocalMachine, key, name);
  }
  void MakeKey(const std::string& key) { keys_[{RegistryRoot::LocalMachine, key}]; }

  bool KeyExists(RegistryRoot root, const std::string& key) override { return keys_.contains({root, key}); }
  std::optional<RegistryValue> Query(RegistryRoot root, const std::string& key,
                                     const std::string& name) override {
    const auto values = keys_.find({root, key});
    if (values == keys_.end() || !values->second.contains(name)) return std::nullopt;
    return values->second.at(name);
  }
  bool Write(RegistryRoot root, const std::string& key, std::span<const NamedRegistryValue> values) override {
    if (refuse_writes || !writable()) return false;
    for (const auto& [name, value] : values) keys_[{root, key}][name] = value;
    return true;
  }
  bool Delete(RegistryRoot root, const std::string& key, const std::string& name) override {
    return !refuse_writes && writable() && keys_[{root, key}].erase(name) > 0;
  }

 private:
  std::map<std::pair<RegistryRoot, std::string>, std::map<std::string, RegistryValue>> keys_;
};

}  // namespace orven::test
