// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any registry.reg. Writing and reading it again must give the same values.
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "adapters/registry/registry_document.h"
#include "base/unicode.h"
#include "fuzz/fuzz.h"

namespace orven::fuzz {
namespace {

using Kind = RegistryLine::Kind;

/// Returns the names of the values in `text` by their keys. The program's own key is always there.
std::map<std::string, std::vector<std::string>> NamesIn(std::string_view text) {
  std::map<std::string, std::vector<std::string>> names{{"HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN", {}}};
  auto key = names.begin();
  while (!text.empty()) {
    const RegistryLine line = ParseRegistryLine(text, 1);
    Require(!line.raw.empty() && line.raw.size() <= text.size());
    if (line.kind == Kind::Key || line.kind == Kind::DeletedKey) key = names.try_emplace(line.name).first;
    if (line.kind == Kind::Value) key->second.push_back(line.name);
    text.remove_prefix(line.raw.size());
  }
  return names;
}

void RequireLasting(const RegistryDocument& document) {
  const std::string text = document.Text();
  const RegistryDocument again(text);
  Require(again.Faults().empty() && again.Text() == text);
  for (const auto& [key, names] : NamesIn(text)) {
    Require(document.HasKey(key) == again.HasKey(key));
    for (const std::string& name : names) {
      const RegistryValue *value = document.Find(key, name), *read = again.Find(key, name);
      Require(value == nullptr || read == nullptr ? value == read : *value == *read);
    }
  }
}

void Change(RegistryDocument& document, Choices& choices) {
  static constexpr std::uint32_t kTypes[] = {1, 4, 3, 0x80000001};
  const auto present = NamesIn(document.Text());
  const std::string key = choices.Below(2) == 0
                              ? choices.Text()
                              : std::next(present.begin(), choices.Byte() % std::ssize(present))->first;
  const auto names = present.contains(key) ? present.at(key) : std::vector<std::string>();
  const bool known = !names.empty() && choices.Below(2) == 0;
  NamedRegistryValue value{known ? names[choices.Byte() % names.size()] : choices.Text(), {}};
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
