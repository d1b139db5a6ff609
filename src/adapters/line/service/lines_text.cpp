// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/lines_text.h"

#include <algorithm>
#include <optional>
#include <set>

#include "adapters/line/service/lines_notation.h"

namespace orven {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The lines of a text, with their "\r"; changed from the end towards the beginning, so that the
/// numbers of what is still to be changed stay true. Indexes count from 0.
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

  /// Removes the section whose head is at `head`, with the blank lines behind its last entry. Comments
  /// behind that belong to the next one.
  void RemoveSection(std::size_t head) {
    auto end = EndOfEntries(head);
    while (end < lines_.size() && TrimmedLine(lines_[end]).empty()) ++end;
    Remove(head, end);
  }

  void Rename(std::size_t head, const std::string& name) {
    const std::string_view meant = WithoutLineComment(lines_[head]);
    Replace(head, lines_[head].find(meant), meant.size(), '[' + name + ']');
  }

  /// Gives `key` of the section a value, in its line if there is one.
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
    if (!lines_.empty() && !TrimmedLine(lines_.back()).empty()) lines_.emplace_back(crlf_ ? "\r" : "");
    for (auto line : Lines(text).lines_) lines_.push_back(line + (crlf_ ? "\r" : ""));
  }

 private:
  std::vector<std::string>::iterator At(std::size_t index) {
    return lines_.begin() + static_cast<std::ptrdiff_t>(index);
  }

  /// Behind the section's last line that is more than a comment.
  std::size_t EndOfEntries(std::size_t head) const {
    auto end = head + 1;
    for (auto at = end; at < lines_.size(); ++at) {
      const auto text = WithoutLineComment(lines_[at]);
      if (text.starts_with('[')) break;
      if (!text.empty()) end = at + 1;
    }
    return end;
  }

  std::string KeyAt(std::size_t index) const {
    const auto text = WithoutLineComment(lines_[index]);
    const auto equals = text.find('=');
    return equals == std::string_view::npos ? "" : LowerAscii(TrimmedLine(text.substr(0, equals)));
  }

  /// A comment behind the value stays.
  void SetValue(std::size_t index, const std::string& value) {
    const std::string& line = lines_[index];
    const std::string_view meant = WithoutLineComment(line);
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

void Change(Lines& lines, const LineSection& before, const LineEdit& after) {
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

std::string SectionText(const LineEdit& line) {
  std::string text = '[' + line.name + "]\ntype = " + line.type + '\n';
  for (const auto& [key, value] : line.values) text.append(key).append(" = ").append(value) += '\n';
  return text;
}

std::string EditLines(std::string_view text, const std::vector<LineSection>& before,
                      const std::vector<LineEdit>& after) {
  Lines lines(text);
  for (auto section = before.rbegin(); section != before.rend(); ++section) {
    if (section->line_number == 0) continue;  // no file names it
    const auto edit = std::find_if(after.begin(), after.end(),
                                   [&](const LineEdit& one) { return one.head == section->line_number; });
    if (edit == after.end()) {
      lines.RemoveSection(static_cast<std::size_t>(section->line_number - 1));
    } else {
      Change(lines, *section, *edit);
    }
  }
  for (const auto& line : after) {
    if (line.head == 0) lines.Append(SectionText(line));
  }
  return lines.Text();
}

}  // namespace orven
