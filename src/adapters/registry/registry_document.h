// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/registry/registry_notation.h"
#include "platform/registry.h"

namespace orven {

/// A fault in a line of a registry text.
struct RegistryFault {
  int number = 0;
  std::string text;
};

/// A registry text in memory: its lines as they are, and the values that importing it from top to bottom
/// would give. Keys are whole paths with their root ("HKEY_LOCAL_MACHINE\SOFTWARE\ORVEN"); they and value
/// names compare without regard to the case of ASCII letters. A change affects only its own lines.
class RegistryDocument {
 public:
  /// An empty text, which gets its header when it is written.
  RegistryDocument() = default;

  /// Parses the content of a file: UTF-8 with or without a byte order mark, or UTF-16LE with one.
  explicit RegistryDocument(std::string_view content);

  /// Damaged lines in their order; they contribute no values.
  const std::vector<RegistryFault>& Faults() const { return faults_; }

  /// Whether the key, or one below it, exists.
  bool HasKey(const std::string& key) const;

  /// The value, or nullptr; valid until the next change.
  const RegistryValue* Find(const std::string& key, const std::string& name) const;

  /// Creates the key if it is missing and sets its values, existing ones in place. False, without any change,
  /// when the format cannot represent one of the names.
  bool Set(const std::string& key, std::span<const NamedRegistryValue> values);

  /// There are no keys.
  bool IsEmpty() const { return keys_.empty(); }

  /// Copies the values of `other` that are missing here; returns how many.
  std::size_t FillFrom(const RegistryDocument& other);

  /// Removes a value; false when it did not exist.
  bool Remove(const std::string& key, const std::string& name);

  /// The text in UTF-8, without damaged lines and with a header.
  std::string Text() const;

 private:
  struct Key {
    std::size_t last_line = 0;                  ///< of its latest section
    std::map<std::string, std::size_t> values;  ///< lines by folded name
  };

  void ReadLines(std::string_view text);
  void CheckHeader();
  void DropStrayValues();
  void Interpret();
  void SetValue(const std::string& key, const NamedRegistryValue& value);
  void AddKey(const std::string& key);
  void Insert(std::size_t at, const std::string& raw);

  bool byte_order_mark_ = false;
  std::string line_end_ = "\n";
  std::vector<RegistryLine> lines_;
  std::vector<RegistryFault> faults_;
  std::map<std::string, Key> keys_;  ///< by folded path
};

}  // namespace orven
