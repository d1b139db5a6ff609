// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/mdlReg.h"

#include <array>

#include "base/conversions.h"

namespace orven {
namespace {

/// The longest value that can be read, in bytes.
constexpr std::size_t kBufferSize = kLongestText + 1;

std::string Hexadecimal(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xFU];
  }
  return text;
}

std::string LittleEndian(std::int32_t number) {
  const auto bits = static_cast<std::uint32_t>(number);
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((bits >> shift) & 0xFFU);
  return bytes;
}

}  // namespace

std::string GetRegValue(Registry& registry, RegistryRoot root, const std::string& key,
                        const std::string& name) {
  const auto value = registry.Query(root, key, name);
  if (!value || value->data.size() > kBufferSize) return kNotFound;
  if (value->type == static_cast<std::uint32_t>(RegistryType::Binary)) return Hexadecimal(value->data);
  return value->data.substr(0, value->data.empty() ? 0 : value->data.size() - 1);
}

void SetRegValue(Registry& registry, RegistryRoot root, const std::string& key, const std::string& name,
                 std::int32_t type, const std::string& value) {
  NamedRegistryValue stored{name, {static_cast<std::uint32_t>(RegistryType::String), value}};
  if (type == static_cast<std::int32_t>(RegistryType::Dword)) {
    stored.value = {static_cast<std::uint32_t>(RegistryType::Dword), LittleEndian(ToInt32(value))};
  } else if (type == kRegString) {
    stored.value.data += '\0';
  }
  registry.Write(root, key, std::array{stored});
}

void DeleteRegValue(Registry& registry, RegistryRoot root, const std::string& key, const std::string& name) {
  registry.Delete(root, key, name);
}

NamedRegistryValue RegString(std::string_view name, std::string_view text) {
  std::string data(text);
  data += '\0';
  return {std::string(name), {static_cast<std::uint32_t>(RegistryType::String), std::move(data)}};
}

}  // namespace orven
