// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/lines_ini.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

#include "adapters/line/config/line_keys.h"
#include "base/text.h"
#include "base/unicode.h"

namespace orven {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The line without its comment: a line that begins with ";" or "#" is all comment, and so is the rest of a
/// line after a blank and ";". A "#" within a line is part of the value, as passwords may contain it.
std::string_view WithoutComment(std::string_view line) {
  const std::string_view text = Trimmed(line);
  if (text.starts_with(';') || text.starts_with('#')) return {};
  for (std::size_t at = text.find(';'); at != text.npos; at = text.find(';', at + 1)) {
    if (at > 0 && kBlanks.find(text[at - 1]) != kBlanks.npos) return Trimmed(text.substr(0, at));
  }
  return text;
}

struct Entry {
  std::string key;
  std::string value;
  int line_number = 0;
};

template <typename Items>
std::string NamesOf(const Items& items) {
  std::string names;
  for (std::size_t at = 0; at < items.size(); ++at) {
    if (at > 0) names += at + 1 == items.size() ? " or " : ", ";
    names += items[at].name;
  }
  return names;
}

/// Reads section by section. A section is checked when it is complete, because what a key means depends on
/// the type.
class LinesReader {
 public:
  explicit LinesReader(const std::string& file_name) : file_name_(file_name) {}

  LinesFile Read(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    for (int number = 1; !text.empty(); ++number) {
      const std::size_t end = text.find('\n');
      ReadLine(text.substr(0, end), number);
      text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    FinishSection();
    if (heads_ == 0) Complain(1, "there is no line here: expected a section like [Home]");
    return std::move(result_);
  }

 private:
  void Complain(int line_number, const std::string& text) {
    result_.complaints.push_back(file_name_ + ":" + std::to_string(line_number) + ": " + text);
  }

  void ReadLine(std::string_view line, int number) {
    const std::string_view text = WithoutComment(line);
    const bool head = text.starts_with('[');
    if (head) {
      FinishSection();
      ++heads_;
    }
    if (text.empty()) return;
    const auto is_control = [](char letter) {
      return (static_cast<unsigned char>(letter) < ' ' && letter != '\t') || letter == '\x7F';
    };
    if (!IsUtf8(text) || std::any_of(text.begin(), text.end(), is_control)) {
      Complain(number, "the line holds control characters or is not UTF-8: expected plain UTF-8 text");
    } else if (head) {
      ReadHead(text, number);
    } else {
      ReadEntry(text, number);
    }
  }

  void ReadHead(std::string_view text, int number) {
    const std::string_view name = text.ends_with(']') ? Trimmed(text.substr(1, text.size() - 2)) : "";
    if (name.empty()) {
      Complain(number, "the section is left out: expected its name in brackets, like [Home]");
      return;
    }
    section_ = LineSection{std::string(name), number, "", {}};
  }

  void ReadEntry(std::string_view text, int number) {
    if (!section_ && heads_ > 0) return;  // of a section that was reported as invalid
    const std::size_t equals = text.find('=');
    const std::string key = Lower(Trimmed(text.substr(0, equals)));
    if (equals == text.npos || key.empty()) {
      Complain(number, "expected [section], key = value or ; comment");
    } else if (!section_) {
      Complain(number, "\"" + key + "\" comes before any section: expected a section like [Home] first");
    } else {
      entries_.push_back({key, std::string(Trimmed(text.substr(equals + 1))), number});
    }
  }

  void FinishSection() {
    auto section = std::exchange(section_, std::nullopt);
    const auto entries = std::exchange(entries_, {});
    if (!section) return;
    const LineType* type = FindType(*section, entries);
    if (type == nullptr) return;
    section->type = type->name;
    bool usable = true;
    for (const Entry& entry : entries) {
      if (entry.key != "type") usable = TakeEntry(*section, *type, entry) && usable;
    }
    ReportKeysWithoutAccount(*section);
    for (const LineKey& key : type->keys) {
      if (!key.required || section->values.contains(std::string(key.name))) continue;
      // An invalid value was reported at its own line.
      if (usable) LeaveOut(*section, std::string(key.name) + " is missing", key.expected);
      usable = false;
    }
    if (usable) result_.sections.push_back(std::move(*section));
  }

  /// Such a key means nothing: its number may be wrong.
  void ReportKeysWithoutAccount(const LineSection& section) {
    for (const auto& [key, value] : section.values) {
      const std::string account = "account" + key.substr(key.find_last_not_of("0123456789") + 1);
      if (account == "account" || section.values.contains(account)) continue;
      Complain(section.line_number, "the line \"" + section.name + "\" has " + key + " but no " + account +
                                        ": expected both or none");
    }
  }

  void LeaveOut(const LineSection& section, const std::string& what, std::string_view expected) {
    Complain(section.line_number, "the line \"" + section.name + "\" is left out because " + what +
                                      ": expected " + std::string(expected));
  }

  const LineType* FindType(const LineSection& section, const std::vector<Entry>& entries) {
    const auto is_type = [](const Entry& entry) { return entry.key == "type"; };
    const auto entry = std::find_if(entries.rbegin(), entries.rend(), is_type);
    const std::string names = NamesOf(LineTypes());
    if (entry == entries.rend()) {
      LeaveOut(section, "type is missing", names);
      return nullptr;
    }
    if (std::count_if(entries.begin(), entries.end(), is_type) > 1) ComplainTwice(*entry);
    const auto types = LineTypes();
    const auto type = std::ranges::find(types, Lower(entry->value), &LineType::name);
    if (type != types.end()) return &*type;
    Complain(entry->line_number, "the line \"" + section.name + "\" is left out because type is \"" +
                                     entry->value + "\": expected " + names);
    return nullptr;
  }

  void ComplainTwice(const Entry& entry) {
    Complain(entry.line_number, entry.key + " is given more than once: expected once; the last one counts");
  }

  /// False when the entry makes the whole section unusable.
  bool TakeEntry(LineSection& section, const LineType& type, const Entry& entry) {
    const LineKey* const key = FindKey(type, entry.key);
    if (key == nullptr) {
      Complain(entry.line_number, "\"" + entry.key + "\" is unknown for a " + section.type +
                                      " line: expected " + NamesOf(type.keys));
      return true;
    }
    const std::string value = key->name == "transport" ? Lower(entry.value) : entry.value;
    if (!key->valid(value)) {
      const std::string shown = key->secret ? "wrong" : "\"" + entry.value + "\"";
      const std::string left_out =
          key->required ? "the line \"" + section.name + "\" is left out because " : "";
      Complain(entry.line_number,
               left_out + entry.key + " is " + shown + ": expected " + std::string(key->expected));
      return !key->required;
    }
    if (section.values.contains(entry.key)) ComplainTwice(entry);
    section.values[entry.key] = value;
    return true;
  }

  const std::string& file_name_;
  LinesFile result_;
  int heads_ = 0;  ///< section heads read, wrong ones included
  std::optional<LineSection> section_;
  std::vector<Entry> entries_;  ///< of the current section
};

}  // namespace

LinesFile ParseLines(std::string_view text, const std::string& file_name) {
  return LinesReader(file_name).Read(text);
}

LinesFile ReadLines(const std::string& path) {
  const std::string file_name = std::filesystem::path(path).filename().string();
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    return {{{kFirstLine, 0, "sip", {{"listen", "127.0.0.1:5060"}}}}, {}, "", false};
  }
  if (error)
    return {{}, {file_name + ": cannot be read (" + error.message() + "): expected a readable text file"}};
  if (!std::filesystem::is_regular_file(status)) {
    return {{}, {file_name + ": cannot be read: expected a text file, but it is a folder or a device"}};
  }
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file.is_open() || file.bad()) {
    const std::string reason = std::generic_category().message(errno);
    return {{}, {file_name + ": cannot be read (" + reason + "): expected a readable text file"}};
  }
  auto lines = ParseLines(text, file_name);
  lines.text = std::move(text);
  return lines;
}

namespace {

/// The lines of a text, with their "\r". They are changed from the last section to the first, so that the
/// line numbers of the other sections stay right. Indexes count from 0.
class Lines {
 public:
  explicit Lines(std::string_view text) {
    marked_ = text.starts_with(kByteOrderMark);
    if (marked_) text.remove_prefix(kByteOrderMark.size());
    while (!text.empty()) {
      const auto end = text.find('\n');
      lines_.emplace_back(text.substr(0, end));
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    crlf_ = !lines_.empty() && lines_.front().ends_with('\r');
  }

  std::string Text() const {
    std::string text(marked_ ? kByteOrderMark : "");
    for (const auto& line : lines_) text += line + '\n';
    return text;
  }

  void Remove(std::size_t first, std::size_t end) { lines_.erase(At(first), At(end)); }

  /// Removes the section whose head is at `head`, with the blank lines after its last entry. Comments
  /// after those belong to the next section.
  void RemoveSection(std::size_t head) {
    auto end = EndOfEntries(head);
    while (end < lines_.size() && Trimmed(lines_[end]).empty()) ++end;
    Remove(head, end);
  }

  void Rename(std::size_t head, const std::string& name) {
    const std::string_view meant = WithoutComment(lines_[head]);
    Replace(head, lines_[head].find(meant), meant.size(), '[' + name + ']');
  }

  /// Sets `key` of the section, in its own line if there is one.
  void Set(std::size_t head, const std::string& key, const std::string& value) {
    const auto end = EndOfEntries(head);
    for (auto at = end; at-- > head + 1;) {
      if (KeyAt(at) == key) return SetValue(at, value);
    }
    lines_.insert(At(end), key + " = " + value + (crlf_ ? "\r" : ""));
  }

  void Unset(std::size_t head, const std::string& key) {
    for (auto at = EndOfEntries(head); at-- > head + 1;) {
      if (KeyAt(at) == key) Remove(at, at + 1);
    }
  }

  void Append(std::string_view text) {
    if (!lines_.empty() && !Trimmed(lines_.back()).empty()) lines_.emplace_back(crlf_ ? "\r" : "");
    for (auto line : Lines(text).lines_) lines_.push_back(line + (crlf_ ? "\r" : ""));
  }

 private:
  std::vector<std::string>::iterator At(std::size_t index) {
    return lines_.begin() + static_cast<std::ptrdiff_t>(index);
  }

  /// The index after the section's last line that is not blank or a comment.
  std::size_t EndOfEntries(std::size_t head) const {
    auto end = head + 1;
    for (auto at = end; at < lines_.size(); ++at) {
      const auto text = WithoutComment(lines_[at]);
      if (text.starts_with('[')) break;
      if (!text.empty()) end = at + 1;
    }
    return end;
  }

  std::string KeyAt(std::size_t index) const {
    const auto text = WithoutComment(lines_[index]);
    const auto equals = text.find('=');
    // A line with a carriage return before "=" is not read, whatever its value: it stays, and another is
    // added.
    if (equals == std::string_view::npos || text.find('\r') < equals) return "";
    return Lower(Trimmed(text.substr(0, equals)));
  }

  /// A comment after the value stays.
  void SetValue(std::size_t index, const std::string& value) {
    const std::string& line = lines_[index];
    const std::string_view meant = WithoutComment(line);
    const auto end = line.find(meant) + meant.size();
    auto begin = line.find('=') + 1;
    while (begin < end && (line[begin] == ' ' || line[begin] == '\t')) ++begin;
    Replace(index, begin, end - begin, begin > line.find('=') + 1 ? value : ' ' + value);
  }

  void Replace(std::size_t index, std::size_t begin, std::size_t size, const std::string& text) {
    lines_[index].replace(begin, size, text);
  }

  std::vector<std::string> lines_;
  bool marked_ = false;
  bool crlf_ = false;
};

void Change(Lines& lines, const LineSection& before, const LineSection& after) {
  const auto head = static_cast<std::size_t>(before.line_number - 1);
  for (const auto& [key, value] : before.values) {
    if (!after.values.contains(key)) lines.Unset(head, key);
  }
  for (const auto& [key, value] : after.values) {
    const auto old = before.values.find(key);
    if (old == before.values.end() || old->second != value) lines.Set(head, key, value);
  }
  if (before.name != after.name) lines.Rename(head, after.name);
}

}  // namespace

std::string SectionText(const LineSection& line) {
  std::string text = '[' + line.name + "]\ntype = " + line.type + '\n';
  for (const auto& [key, value] : line.values) text.append(key).append(" = ").append(value) += '\n';
  return text;
}

std::string EditLines(std::string_view text, const std::vector<LineSection>& before,
                      const std::vector<LineSection>& after) {
  Lines lines(text);
  for (auto section = before.rbegin(); section != before.rend(); ++section) {
    if (section->line_number == 0) continue;  // not in the file
    const auto edit = std::ranges::find(after, section->line_number, &LineSection::line_number);
    if (edit == after.end()) {
      lines.RemoveSection(static_cast<std::size_t>(section->line_number - 1));
    } else {
      Change(lines, *section, *edit);
    }
  }
  for (const auto& line : after) {
    if (line.line_number == 0) lines.Append(SectionText(line));
  }
  return lines.Text();
}

}  // namespace orven
