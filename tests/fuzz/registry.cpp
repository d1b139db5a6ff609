// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any registry.reg. Writing and reading it again must give the same values.
#include <string>
#include <utility>
#include <vector>

#include "adapters/registry/registry_document.h"
#include "base/unicode.h"
#include "fuzz/fuzz.h"

namespace orven::fuzz {
namespace {

/// Returns the key and name of each value in `text`; for a key itself, and for the program's own, without
/// name.
std::vector<std::pair<std::string, std::string>> NamesIn(std::string_view text) {
  std::vector<std::pair<std::string, std::string>> names{{"HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN", ""}};
  for (std::string key; !text.empty();) {
    const RegistryLine line = ParseRegistryLine(text, 1);
    Require(!line.raw.empty() && line.raw.size() <= text.size());
    if (line.kind == RegistryLine::Kind::Key) names.emplace_back(key = line.name, "");
    if (line.kind == RegistryLine::Kind::Value) names.emplace_back(key, line.name);
    text.remove_prefix(line.raw.size());
  }
  return names;
}

void RequireLasting(const RegistryDocument& document) {
  const std::string text = document.Text();
  const RegistryDocument again(text);
  Require(again.Faults().empty() && again.Text() == text);
  for (const auto& [key, name] : NamesIn(text)) {
    const RegistryValue *value = document.Find(key, name), *read = again.Find(key, name);
    Require(value == nullptr || read == nullptr ? value == read : *value == *read);
    Require(document.HasKey(key) == again.HasKey(key));
  }
}

void Change(RegistryDocument& document, Choices& choices) {
  static constexpr std::uint32_t kTypes[] = {1, 4, 3, 0x80000001};
  const auto present = NamesIn(document.Text());
  const auto& known = present[choices.Byte() % present.size()];
  const std::string key = choices.Below(2) == 0 ? choices.Text() : known.first;
  NamedRegistryValue value{choices.Below(2) == 0 ? known.second : choices.Text(), {}};
  value.value = {kTypes[choices.Below(std::size(kTypes))], choices.Text()};
  if (value.value.type == 1) value.value.data += '\0';
  const std::string before = document.Text();
  const RegistryValue* found = document.Find(key, value.name);
  if (choices.Below(4) == 0) {
    Require(document.Remove(key, value.name) == (found != nullptr) &&
            document.Find(key, value.name) == nullptr);
  } else if (document.Set(key, std::span(&value, 1))) {
    Require(*document.Find(key, value.name) == value.value);
    RequireLasting(document);
  } else {
    Require(document.Text() == before);
  }
}

}  // namespace

void Registry(Bytes input) {
  auto [content, choices] = ContentAndChoices(input, "\xFF\xFF");
  Require(Utf8FromUtf16(Utf16FromUtf8(content)) == content);
  RegistryDocument document(content);
  for (const RegistryFault& fault : document.Faults()) Require(fault.number > 0 && !fault.text.empty());
  RequireLasting(document);
  for (int changes = 0; choices.Any() && changes < 8; ++changes) Change(document, choices);
}

}  // namespace orven::fuzz
