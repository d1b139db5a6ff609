// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/registry/installed_classes.h"

namespace orven {

bool InstalledClasses::Installed(const std::string& key) const {
  const auto found = classes_.find(key);
  return found != classes_.end() && found->second();
}

bool InstalledClasses::KeyExists(RegistryRoot root, const std::string& key) {
  return root == RegistryRoot::ClassesRoot ? Installed(key) : stored_.KeyExists(root, key);
}

std::optional<RegistryValue> InstalledClasses::Query(RegistryRoot root, const std::string& key,
                                                     const std::string& name) {
  if (root != RegistryRoot::ClassesRoot) return stored_.Query(root, key, name);
  if (!name.empty() || !Installed(key)) return std::nullopt;
  return RegistryValue{static_cast<std::uint32_t>(RegistryType::String), key + '\0'};
}

bool InstalledClasses::Write(RegistryRoot root, const std::string& key,
                             std::span<const NamedRegistryValue> values) {
  return root != RegistryRoot::ClassesRoot && stored_.Write(root, key, values);
}

bool InstalledClasses::Delete(RegistryRoot root, const std::string& key, const std::string& name) {
  return root != RegistryRoot::ClassesRoot && stored_.Delete(root, key, name);
}

}  // namespace orven
