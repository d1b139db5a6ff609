// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/registry/registry_document.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/text.h"
#include "base/unicode.h"

namespace orven {

namespace {

using Kind = RegistryLine::Kind;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

std::string HeadOf(const std::string& key) {
  return "[" + key + "]";
}

/// Whether the format can represent this key: it must not look like a deletion or contain a comment.
bool IsKeyName(const std::string& key) {
  const RegistryLine line = ParseRegistryLine(HeadOf(key), 0);
  return line.kind == Kind::Key && line.name == key && line.raw == HeadOf(key);
}

bool IsBelow(std::string_view key, std::string_view parent) {
  return key.size() > parent.size() && key.starts_with(parent) && key[parent.size()] == '\\';
}

}  // namespace

RegistryDocument::RegistryDocument(std::string_view content) {
  std::string converted;
  bool cut = false;
  if (content.starts_with(kUtf8Mark)) {
    byte_order_mark_ = true;
    content.remove_prefix(kUtf8Mark.size());
  } else if (content.starts_with(kUtf16Mark)) {
    content.remove_prefix(kUtf16Mark.size());
    cut = content.size() % 2 != 0;
    converted = Utf8FromUtf16(content.substr(0, content.size() - (cut ? 1 : 0))).value_or("");
    content = converted;
  }
  const std::size_t first_end = content.find('\n');
  if (first_end != content.npos && first_end > 0 && content[first_end - 1] == '\r') line_end_ = "\r\n";
  ReadLines(content);
  CheckHeader();
  DropStrayValues();
  for (const RegistryLine& line : lines_) {
    if (!line.fault.empty()) faults_.push_back({line.fault_number, line.fault});
  }
  if (cut) faults_.push_back({lines_.empty() ? 1 : lines_.back().number, "the file ends within a character"});
  Interpret();
}

void RegistryDocument::ReadLines(std::string_view text) {
  int number = 1;
  while (!text.empty()) {
    lines_.push_back(ParseRegistryLine(text, number));
    const std::string& raw = lines_.back().raw;
    number += static_cast<int>(std::count(raw.begin(), raw.end(), '\n'));
    text.remove_prefix(raw.size());
  }
}

void RegistryDocument::CheckHeader() {
  const auto first = std::find_if(lines_.begin(), lines_.end(),
                                  [](const RegistryLine& line) { return line.kind != Kind::Plain; });
  const std::string expected = "expected \"" + std::string(kRegistryHeader) + "\" as the first line";
  if (first == lines_.end()) {
    faults_.push_back({1, expected});
  } else if (first->kind != Kind::Header) {
    first->fault = expected;
    first->fault_number = first->number;
  }
}

// A damaged key line leaves the values below it without a key; they must not be assigned to the key above.
void RegistryDocument::DropStrayValues() {
  enum class Where { BeforeKeys, InKey, BelowDamagedKey } where = Where::BeforeKeys;
  for (RegistryLine& line : lines_) {
    const bool is_value = line.kind == Kind::Value || line.kind == Kind::DeletedValue;
    if (line.kind == Kind::Key || line.kind == Kind::DeletedKey) {
      where = Where::InKey;
    } else if (line.kind == Kind::Damaged &&
               line.raw.find_first_of('[') == line.raw.find_first_not_of(" \t")) {
      where = Where::BelowDamagedKey;
    } else if (is_value && where != Where::InKey) {
      line.kind = Kind::Damaged;
      if (where == Where::BelowDamagedKey || !line.fault.empty()) continue;
      line.fault = "a value before the first [key]";
      line.fault_number = line.number;
    }
  }
}

void RegistryDocument::Interpret() {
  keys_.clear();
  Key* current = nullptr;
  for (std::size_t at = 0; at < lines_.size(); ++at) {
    const RegistryLine& line = lines_[at];
    const std::string name = Lower(line.name);
    if (line.kind == Kind::Key) {
      current = &keys_[name];
    } else if (line.kind == Kind::DeletedKey) {
      std::erase_if(keys_, [&](const auto& key) { return key.first == name || IsBelow(key.first, name); });
      current = nullptr;
    } else if (line.kind == Kind::Value && current != nullptr) {
      current->values[name] = at;
    } else if (line.kind == Kind::DeletedValue && current != nullptr) {
      current->values.erase(name);
    } else {
      continue;
    }
    if (current != nullptr) current->last_line = at;
  }
}

bool RegistryDocument::HasKey(const std::string& key) const {
  const std::string folded = Lower(key);
  return std::any_of(keys_.begin(), keys_.end(), [&](const auto& entry) {
    return entry.first == folded || IsBelow(entry.first, folded);
  });
}

const RegistryValue* RegistryDocument::Find(const std::string& key, const std::string& name) const {
  const auto found = keys_.find(Lower(key));
  if (found == keys_.end()) return nullptr;
  const auto value = found->second.values.find(Lower(name));
  return value == found->second.values.end() ? nullptr : &lines_[value->second].value;
}

bool RegistryDocument::Set(const std::string& key, std::span<const NamedRegistryValue> values) {
  const auto can_be_written = [](const NamedRegistryValue& value) { return IsRegistryName(value.name); };
  if (!IsKeyName(key) || !std::all_of(values.begin(), values.end(), can_be_written)) return false;
  if (!keys_.contains(Lower(key))) AddKey(key);
  for (const NamedRegistryValue& value : values) SetValue(key, value);
  return true;
}

std::size_t RegistryDocument::FillFrom(const RegistryDocument& other) {
  std::size_t count = 0;
  std::string key;
  for (const RegistryLine& line : other.lines_) {
    if (line.kind == Kind::Key || line.kind == Kind::DeletedKey) key = line.name;
    const bool counts = line.kind == Kind::Value && other.Find(key, line.name) == &line.value;
    if (!counts || Find(key, line.name) != nullptr) continue;
    const NamedRegistryValue value{line.name, line.value};
    if (Set(key, std::span(&value, 1))) ++count;
  }
  return count;
}

void RegistryDocument::SetValue(const std::string& key, const NamedRegistryValue& value) {
  const Key& section = keys_.at(Lower(key));
  const auto existing = section.values.find(Lower(value.name));
  if (existing == section.values.end()) {
    const std::string start = NotationOfName(value.name) + "=";
    Insert(section.last_line + 1, start + NotationOfValue(value.value, start.size(), line_end_) + line_end_);
    return;
  }
  RegistryLine& line = lines_[existing->second];
  const std::string after = line.raw.substr(line.value_end);
  line.raw.resize(line.value_begin);
  line.raw += NotationOfValue(value.value, line.value_begin, line_end_) + after;
  line = ParseRegistryLine(line.raw, line.number);
}

void RegistryDocument::AddKey(const std::string& key) {
  if (!lines_.empty()) Insert(lines_.size(), line_end_);
  Insert(lines_.size(), HeadOf(key) + line_end_);
}

void RegistryDocument::Insert(std::size_t at, const std::string& raw) {
  if (at > 0 && !lines_[at - 1].raw.ends_with('\n')) {
    lines_[at - 1].raw += lines_[at - 1].raw.ends_with('\r') ? "\n" : line_end_;
  }
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), ParseRegistryLine(raw, 0));
  Interpret();
}

bool RegistryDocument::Remove(const std::string& key, const std::string& name) {
  if (Find(key, name) == nullptr) return false;
  // Removes all lines that set it, or an earlier one would become effective.
  std::string current;
  std::erase_if(lines_, [&, folded = Lower(key), value = Lower(name)](const RegistryLine& line) {
    if (line.kind == Kind::Key || line.kind == Kind::DeletedKey) current = Lower(line.name);
    return line.kind == Kind::Value && current == folded && Lower(line.name) == value;
  });
  Interpret();
  return true;
}

std::string RegistryDocument::Text() const {
  std::string text(byte_order_mark_ ? kUtf8Mark : "");
  const auto first = std::find_if(lines_.begin(), lines_.end(), [](const RegistryLine& line) {
    return line.kind != Kind::Plain && line.kind != Kind::Damaged;
  });
  const bool headed = first != lines_.end() && first->kind == Kind::Header;
  if (!headed) text.append(kRegistryHeader).append(line_end_).append(line_end_);
  for (const RegistryLine& line : lines_) {
    const bool strays = line.kind == Kind::Header && !headed;
    if (line.kind != Kind::Damaged && !strays) text += line.raw;
  }
  return text;
}

}  // namespace orven
