// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace orven {

/// The first line of every registry export in the format of Windows 2000 and later.
inline constexpr std::string_view kRegistryHeader = "Windows Registry Editor Version 5.00";

/// One logical line of a registry export: a physical line, or a value with its continuation lines.
struct RegistryLine {
  enum class Kind {
    Plain,         ///< empty, or a comment
    Header,        ///< kRegistryHeader
    Key,           ///< [name]
    DeletedKey,    ///< [-name]
    Value,         ///< "name"=value, or @=value (then the name is empty)
    DeletedValue,  ///< "name"=-
    Damaged,
  };
  Kind kind = Kind::Plain;
  std::string raw;   ///< as in the file, line ends included
  int number = 0;    ///< of its first physical line, from 1
  std::string name;  ///< of the key (with its root) or of the value
  RegistryValue value;
  std::size_t value_begin = 0;  ///< where the value's notation begins in `raw`
  std::size_t value_end = 0;
  std::string fault;     ///< of a damaged line: what is wrong, and what is expected
  int fault_number = 0;  ///< physical line of the fault
};

/// The logical line that `text` (UTF-8, not empty) begins with; `number` is its line number. Never
/// fails: what cannot be understood is a damaged line. A fault never quotes a value, which may be a
/// password.
RegistryLine ParseRegistryLine(std::string_view text, int number);

/// Whether the format can represent this name of a key or value: UTF-8 without line ends and zero bytes.
bool IsRegistryName(std::string_view name);

/// A value's name as written before the "=".
std::string NotationOfName(std::string_view name);

/// A value as written after the "=", wrapped with `line_end` as exports are; `column` is where it begins.
/// Texts that cannot be quoted, and those without exactly one terminating zero, become hexadecimal (UTF-16LE,
/// as in every export).
std::string NotationOfValue(const RegistryValue& value, std::size_t column, std::string_view line_end);

/// Whether values of this type are texts, whose hexadecimal notation is UTF-16LE: plain (1), with
/// environment variables (2), lists of texts (7).
constexpr bool IsTextType(std::uint32_t type) {
  return type == 1 || type == 2 || type == 7;
}

}  // namespace orven
