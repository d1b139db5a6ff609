// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever stands in registry.reg: what was read is written and read again to the same values.
// Links: orven_registry orven_files orven_test_support
#include <set>
#include <string>
#include <vector>

#include "adapters/registry/registry_document.h"
#include "adapters/registry/registry_file.h"
#include "base/unicode.h"
#include "fuzz/input.h"
#include "support/scratch_folder.h"

namespace {

using namespace orven;
using namespace orven::fuzz;

/// Every key that `text` names, and one that it does not.
std::set<std::string> KeysIn(std::string_view text) {
  std::set<std::string> keys{"HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN"};
  while (!text.empty()) {
    const RegistryLine line = ParseRegistryLine(text, 1);
    Require(!line.raw.empty() && line.raw.size() <= text.size());
    if (line.kind == RegistryLine::Kind::Key) keys.insert(line.name);
    text.remove_prefix(line.raw.size());
  }
  return keys;
}

void RequireSame(const RegistryDocument& one, const RegistryDocument& other,
                 const std::set<std::string>& keys) {
  for (const std::string& key : keys) {
    Require(one.HasKey(key) == other.HasKey(key));
    const auto values = one.Values(key);
    const auto others = other.Values(key);
    Require(values.size() == others.size());
    for (std::size_t at = 0; at < values.size(); ++at) {
      Require(values[at].name == others[at].name && values[at].value == others[at].value);
      const RegistryValue* found = other.Find(key, values[at].name);
      Require(found != nullptr && *found == values[at].value);
    }
  }
}

/// The text of `document` reads as `document` does, without a fault, and stays as it is.
void RequireLasting(const RegistryDocument& document, const std::set<std::string>& keys) {
  const std::string text = document.Text();
  const RegistryDocument again(text);
  Require(again.Faults().empty() && again.Text() == text);
  RequireSame(document, again, keys);
}

RegistryValue ValueFrom(Choices& choices) {
  static constexpr std::uint32_t kTypes[] = {1, 1, 4, 3, 2, 7, 0, 0x80000001};
  RegistryValue value{kTypes[choices.Below(std::size(kTypes))], TextOf(choices.Piece())};
  if (value.type == 1 && choices.Below(2) == 0) value.data += '\0';
  return value;
}

void Change(RegistryDocument& document, std::set<std::string> keys, Choices& choices) {
  const bool own_key = choices.Below(2) == 0;
  auto known = keys.begin();
  if (own_key)
    std::advance(known, static_cast<std::ptrdiff_t>(choices.Below(std::min<std::size_t>(keys.size(), 256))));
  const std::string key = own_key ? *known : TextOf(choices.Piece());
  const auto present = document.Values(key);
  const NamedRegistryValue value{!present.empty() && choices.Below(2) == 0
                                     ? present[choices.Below(std::min<std::size_t>(present.size(), 256))].name
                                     : TextOf(choices.Piece()),
                                 ValueFrom(choices)};
  const std::string before = document.Text();
  if (choices.Below(4) == 0) {
    const bool there = document.Find(key, value.name) != nullptr;
    Require(document.Remove(key, value.name) == there);
    Require(document.Find(key, value.name) == nullptr);
    return;
  }
  if (!document.Set(key, std::span(&value, 1))) {
    Require(document.Text() == before);
    return;
  }
  const RegistryValue* found = document.Find(key, value.name);
  Require(found != nullptr && *found == value.value);
  keys.insert(key);
  RequireLasting(document, keys);
}

/// As the program has it: one key of the file, which is damaged or not.
void UseFile(const std::string& content) {
  static const test::ScratchFolder folder(MemoryFolder());
  const std::string path = folder / "registry.reg";
  test::PutFile(path, content);
  std::size_t reports = 0;
  RegistryFile file(path, [&reports](const std::string&) { ++reports; });
  const NamedRegistryValue value{"RingCount", {4, std::string("\4\0\0\0", 4)}};
  for (int write = 0; write < 2; ++write) {
    NamedRegistryValue other = value;
    other.value.data[1] = static_cast<char>(write);
    Require(file.Write(RegistryRoot::LocalMachine, "SOFTWARE\\ORVEN", std::span(&other, 1)));
    Require(RegistryFile(path, [](const std::string&) {
              std::abort();
            }).Query(RegistryRoot::LocalMachine, "SOFTWARE\\ORVEN", "RingCount") == other.value);
  }
  // What was damaged is kept as it was, once.
  const bool damaged = !RegistryDocument(content).Faults().empty();
  Require(folder.Count("registry.reg.damaged") == (damaged ? 1 : 0) && (reports > 0) == damaged);
  for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
    if (damaged && entry.path() != path && entry.path() != path + ".bak")
      Require(test::ContentOf(entry.path().string()) == content);
    std::filesystem::remove(entry.path());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto [content, choices] = ContentAndChoices(Bytes(data, size), "\xFF\xFF");
  Require(Utf8FromUtf16(Utf16FromUtf8(content)) == content);
  RegistryDocument document(content);
  const auto keys = KeysIn(document.Text());
  for (const RegistryFault& fault : document.Faults()) Require(fault.number > 0 && !fault.text.empty());
  RequireLasting(document, keys);
  for (int changes = 0; choices.Any() && changes < 8; ++changes) Change(document, keys, choices);
  UseFile(content);
  return 0;
}
