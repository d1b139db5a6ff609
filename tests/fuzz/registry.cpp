// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any registry.reg. Writing and reading it again must give the same values.
#include <set>
#include <string>
#include <vector>

#include "adapters/registry/registry_document.h"
#include "base/unicode.h"
#include "fuzz/fuzz.h"

namespace orven::fuzz {
namespace {

/// Returns every key in `text`, and the program's own key.
std::vector<std::string> KeysIn(std::string_view text) {
  std::set<std::string> keys{"HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN"};
  while (!text.empty()) {
    const RegistryLine line = ParseRegistryLine(text, 1);
    Require(!line.raw.empty() && line.raw.size() <= text.size());
    if (line.kind == RegistryLine::Kind::Key) keys.insert(line.name);
    text.remove_prefix(line.raw.size());
  }
  return {keys.begin(), keys.end()};
}

void RequireLasting(const RegistryDocument& document) {
  const std::string text = document.Text();
  const RegistryDocument again(text);
  Require(again.Faults().empty() && again.Text() == text);
  for (const std::string& key : KeysIn(text)) {
    const auto values = document.Values(key);
    Require(document.HasKey(key) == again.HasKey(key) && values.size() == again.Values(key).size());
    for (const auto& [name, value] : values)
      Require(*document.Find(key, name) == value && *again.Find(key, name) == value);
  }
}

void Change(RegistryDocument& document, Choices& choices) {
  static constexpr std::uint32_t kTypes[] = {1, 4, 3, 0x80000001};
  const auto keys = KeysIn(document.Text());
  const std::string key = choices.Below(2) == 0 ? choices.Text() : keys[choices.Byte() % keys.size()];
  const auto present = document.Values(key);
  const bool known = !present.empty() && choices.Below(2) == 0;
  NamedRegistryValue value{known ? present[choices.Byte() % present.size()].name : choices.Text(), {}};
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
