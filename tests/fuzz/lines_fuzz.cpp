// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever stands in lines.ini: it is read, and what an edit asks for is what is read afterwards.
// Links: orven_line_config
#include <algorithm>
#include <string>
#include <vector>

#include "adapters/line/config/line_keys.h"
#include "adapters/line/config/lines_ini.h"
#include "base/unicode.h"
#include "fuzz/input.h"

namespace {

using namespace orven;
using namespace orven::fuzz;

/// The one with this name; it must be there.
template <typename Items>
const auto& Named(const Items& items, std::string_view name) {
  const auto found =
      std::find_if(items.begin(), items.end(), [name](const auto& one) { return one.name == name; });
  Require(found != items.end());
  return *found;
}

/// What a section's reader may rely on.
void RequireUsable(const LineSection& section, std::size_t lines) {
  Require(!section.name.empty() && IsUtf8(section.name));
  Require(section.line_number > 0 && static_cast<std::size_t>(section.line_number) <= lines);
  const LineType& type = Named(LineTypes(), section.type);
  for (const auto& [key, value] : section.values)
    Require(Named(type.keys, key).valid(value) && IsUtf8(value));
  for (const LineKey& key : type.keys)
    Require(!key.required || section.values.contains(std::string(key.name)));
}

LinesFile Read(const std::string& text) {
  LinesFile file = ParseLines(text, "lines.ini");
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  for (const LineSection& section : file.sections) RequireUsable(section, lines);
  Require(file.complaints.size() <= 3 * lines);
  for (const std::string& complaint : file.complaints)
    Require(complaint.starts_with("lines.ini:") && IsUtf8(complaint));
  return file;
}

/// As the dialog asks: what no section can hold is not let in.
bool CanBeHeld(const LineEdit& edit) {
  const LinesFile alone = ParseLines(SectionText(edit), "lines.ini");
  return alone.sections.size() == 1 && alone.complaints.empty() && alone.sections[0].name == edit.name &&
         alone.sections[0].type == edit.type && alone.sections[0].values == edit.values;
}

LineEdit NewLine(Choices& choices) {
  const auto types = LineTypes();
  const LineType& type = types[choices.Below(types.size())];
  LineEdit edit{0, TextOf(choices.Piece()), std::string(type.name), {}};
  for (const LineKey& key : type.keys) {
    if (key.required || choices.Below(4) == 0) edit.values[std::string(key.name)] = TextOf(choices.Piece());
  }
  if (!type.keys.empty() && type.keys[0].name == "listen" && choices.Below(2) == 0)
    edit.values["listen"] = "0.0.0.0:5060";
  return edit;
}

/// Each section as it is, changed, or gone; and perhaps new ones.
std::vector<LineEdit> EditsOf(const std::vector<LineSection>& sections, Choices& choices) {
  std::vector<LineEdit> edits;
  for (const LineSection& section : sections) {
    LineEdit edit{section.line_number, section.name, section.type, section.values};
    const std::size_t what = choices.Below(5);
    const auto keys = Named(LineTypes(), section.type).keys;
    const std::string key(keys[choices.Below(keys.size())].name);
    if (what == 1) continue;
    if (what == 2) edit.name = TextOf(choices.Piece());
    if (what == 3) edit.values[key] = TextOf(choices.Piece());
    if (what == 4) edit.values.erase(key);
    if (!CanBeHeld(edit)) edit = {section.line_number, section.name, section.type, section.values};
    edits.push_back(std::move(edit));
  }
  for (int added = 0; choices.Any() && added < 4; ++added) {
    LineEdit edit = NewLine(choices);
    if (CanBeHeld(edit)) edits.push_back(std::move(edit));
  }
  return edits;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto [text, choices] = ContentAndChoices(Bytes(data, size), std::string_view("\0", 1));
  const LinesFile before = Read(text);
  const auto edits = EditsOf(before.sections, choices);
  const std::string edited = EditLines(text, before.sections, edits);
  const LinesFile after = Read(edited);
  Require(after.sections.size() == edits.size());
  for (std::size_t at = 0; at < edits.size(); ++at) {
    const LineSection& section = after.sections[at];
    Require(section.name == edits[at].name && section.type == edits[at].type &&
            section.values == edits[at].values);
  }
  // What nobody understood stays: nothing is complained about that was not before.
  Require(after.complaints.size() <= before.complaints.size() + 1);
  return 0;
}
