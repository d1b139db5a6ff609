// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any lines.ini. After an edit, reading it again must give what the edit asked for.
#include <string>
#include <vector>

#include "adapters/line/config/line_keys.h"
#include "adapters/line/config/lines_ini.h"
#include "base/unicode.h"
#include "fuzz/fuzz.h"

namespace orven::fuzz {
namespace {

template <typename Items>
const auto& Named(const Items& items, std::string_view name) {
  const auto found =
      std::find_if(items.begin(), items.end(), [name](const auto& one) { return one.name == name; });
  Require(found != items.end());
  return *found;
}

LinesFile Read(const std::string& text) {
  LinesFile file = ParseLines(text, "lines.ini");
  for (const LineSection& section : file.sections) {
    const LineType& type = Named(LineTypes(), section.type);
    Require(!section.name.empty() && IsUtf8(section.name) && section.line_number > 0);
    for (const auto& [name, value] : section.values) {
      const LineKey* const key = FindKey(type, name);  // the numbered ones of further accounts, too
      Require(key != nullptr && key->valid(value) && IsUtf8(value));
    }
    for (const LineKey& key : type.keys)
      Require(!key.required || section.values.contains(std::string(key.name)));
  }
  for (const std::string& complaint : file.complaints)
    Require(complaint.starts_with("lines.ini:") && IsUtf8(complaint));
  return file;
}

bool Same(const LineSection& section, const LineSection& edit) {
  return section.name == edit.name && section.type == edit.type && section.values == edit.values;
}

/// Returns whether the dialog would store this edit: its section reads back unchanged.
bool CanBeStored(const LineSection& edit) {
  const LinesFile alone = ParseLines(SectionText(edit), "lines.ini");
  return alone.sections.size() == 1 && alone.complaints.empty() && Same(alone.sections[0], edit);
}

}  // namespace

void Lines(Bytes input) {
  auto [text, choices] = ContentAndChoices(input, std::string_view("\0", 1));
  const LinesFile before = Read(text);
  std::vector<LineSection> edits;
  for (const LineSection& section : before.sections) {
    LineSection edit = section;
    const std::size_t what = choices.Below(5);
    const auto keys = Named(LineTypes(), section.type).keys;
    const std::string key(keys[choices.Below(keys.size())].name);
    if (what == 2) edit.name = choices.Text();
    if (what == 3) edit.values[key] = choices.Text();
    if (what == 4) edit.values.erase(key);
    if (what != 1) edits.push_back(CanBeStored(edit) ? edit : section);
  }
  LineSection added{choices.Text(), 0, "sim", {{"script", choices.Text()}}};
  if (CanBeStored(added)) edits.push_back(added);
  const LinesFile after = Read(EditLines(text, before.sections, edits));
  Require(after.sections.size() == edits.size());
  for (std::size_t at = 0; at < edits.size(); ++at) Require(Same(after.sections[at], edits[at]));
  Require(after.complaints.size() <= before.complaints.size() + 1);  // text that was not understood is kept
}

}  // namespace orven::fuzz
