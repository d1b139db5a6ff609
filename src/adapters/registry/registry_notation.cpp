// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/registry/registry_notation.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "adapters/registry/registry_line.h"
#include "base/unicode.h"

namespace orven {

namespace {

/// Exports break a row of bytes before it passes column 80.
constexpr std::size_t kLastColumn = 76;

std::string Hexadecimal(std::uint32_t number, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%0*x", digits, number);
  return text.data();
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char letter : text) {
    if (letter == '\\' || letter == '"') quoted += '\\';
    quoted += letter;
  }
  return quoted + '"';
}

bool FitsQuotes(const RegistryValue& value) {
  if (value.type != static_cast<std::uint32_t>(RegistryType::String) || !value.data.ends_with('\0'))
    return false;
  const std::string_view text(value.data.data(), value.data.size() - 1);
  const auto is_control = [](char letter) {
    return static_cast<unsigned char>(letter) < ' ' && letter != '\t';
  };
  return std::none_of(text.begin(), text.end(), is_control) && IsUtf8(text);
}

std::string Dword(std::string_view bytes) {
  std::uint32_t number = 0;
  for (std::size_t at = bytes.size(); at-- > 0;) {
    number = number << 8U | static_cast<unsigned char>(bytes[at]);
  }
  return "dword:" + Hexadecimal(number, 8);
}

std::string Bytes(const RegistryValue& value, std::size_t column, std::string_view line_end) {
  const bool binary = value.type == static_cast<std::uint32_t>(RegistryType::Binary);
  std::string text = binary ? "hex:" : "hex(" + Hexadecimal(value.type, 1) + "):";
  const std::string bytes = IsTextType(value.type) ? Utf16FromUtf8(value.data) : value.data;
  column += text.size();
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (at > 0) text += ',';
    if (at > 0 && column >= kLastColumn) {
      text.append("\\").append(line_end).append("  ");
      column = 2;
    }
    text += Hexadecimal(static_cast<unsigned char>(bytes[at]), 2);
    column += 3;
  }
  return text;
}

}  // namespace

bool IsRegistryName(std::string_view name) {
  return IsUtf8(name) && name.find('\n') == name.npos && name.find('\r') == name.npos &&
         name.find('\0') == name.npos;
}

std::string NotationOfName(std::string_view name) {
  return name.empty() ? "@" : Quoted(name);
}

std::string NotationOfValue(const RegistryValue& value, std::size_t column, std::string_view line_end) {
  if (FitsQuotes(value)) return Quoted(std::string_view(value.data).substr(0, value.data.size() - 1));
  const bool dword = value.type == static_cast<std::uint32_t>(RegistryType::Dword);
  if (dword && value.data.size() == 4) return Dword(value.data);
  return Bytes(value, column, line_end);
}

}  // namespace orven
