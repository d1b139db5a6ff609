// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace orven {

/// The registry's roots that the program knows.
enum class RegistryRoot { LocalMachine, CurrentUser, ClassesRoot };

/// The registry's value types that the program knows, with the numbers that Windows gives them.
enum class RegistryType : std::uint32_t { String = 1, Binary = 3, Dword = 4 };

/// One stored value as the registry holds it: the type's number and the raw bytes. A String's bytes
/// are its UTF-8 text followed, in a well-formed value, by one terminating zero byte; a Dword's are
/// four, least significant first.
struct RegistryValue {
  std::uint32_t type = static_cast<std::uint32_t>(RegistryType::String);
  std::string data;
  bool operator==(const RegistryValue&) const = default;
};

struct NamedRegistryValue {
  std::string name;
  RegistryValue value;
};

/// Named values under keys. Key paths are backslash-separated without the root ("SOFTWARE\ORVEN");
/// keys and value names compare without regard to the case of ASCII letters; a key's default value has the
/// empty name. User-interface thread.
class Registry {
 public:
  virtual ~Registry() = default;

  virtual bool KeyExists(RegistryRoot root, const std::string& key) = 0;

  /// The value, or nothing when the key or the value does not exist or cannot be read.
  virtual std::optional<RegistryValue> Query(RegistryRoot root, const std::string& key,
                                             const std::string& name) = 0;

  /// Creates the key if it is missing and writes `values`, all or none, durable on return; the last one of a
  /// name counts. False when that fails; the old values stay.
  virtual bool Write(RegistryRoot root, const std::string& key,
                     std::span<const NamedRegistryValue> values) = 0;

  /// Removes one value. False when it did not exist or could not be removed.
  virtual bool Delete(RegistryRoot root, const std::string& key, const std::string& name) = 0;
};

}  // namespace orven
