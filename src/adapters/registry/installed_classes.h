// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "platform/registry.h"

namespace orven {

/// A registry whose RegistryRoot::ClassesRoot shows what is installed on this machine now; nothing is stored
/// there. All other roots are those of the underlying registry. User-interface thread.
class InstalledClasses : public Registry {
 public:
  /// Tells whether one class is installed.
  using Presence = std::function<bool()>;

  /// `stored` outlives this object. `classes` are the names of classes that can be installed
  /// ("SAPI.SpVoice"); the default value of an installed one is its name.
  InstalledClasses(Registry& stored, std::map<std::string, Presence> classes)
      : stored_(stored), classes_(std::move(classes)) {}

  bool KeyExists(RegistryRoot root, const std::string& key) override;
  std::optional<RegistryValue> Query(RegistryRoot root, const std::string& key,
                                     const std::string& name) override;
  bool Write(RegistryRoot root, const std::string& key, std::span<const NamedRegistryValue> values) override;
  bool Delete(RegistryRoot root, const std::string& key, const std::string& name) override;

 private:
  bool Installed(const std::string& key) const;

  Registry& stored_;
  std::map<std::string, Presence> classes_;
};

}  // namespace orven
