// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/lines_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

#include "adapters/files/utf8.h"
#include "adapters/line/service/line_keys.h"
#include "adapters/line/service/lines_notation.h"

namespace orven {

namespace {

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

/// Collects one section after the other and judges each when it is complete, because what a key means
/// depends on the section's type.
class LinesReader {
 public:
  explicit LinesReader(const std::string& file_name) : file_name_(file_name) {}

  LinesFile Read(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
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
    const std::string_view text = WithoutLineComment(line);
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
    const std::string_view name = text.ends_with(']') ? TrimmedLine(text.substr(1, text.size() - 2)) : "";
    if (name.empty()) {
      Complain(number, "the section is left out: expected its name in brackets, like [Home]");
      return;
    }
    section_ = LineSection{std::string(name), number, "", {}};
  }

  void ReadEntry(std::string_view text, int number) {
    if (!section_ && heads_ > 0) return;  // Its section was left out, which has been said.
    const std::size_t equals = text.find('=');
    const std::string key = LowerAscii(TrimmedLine(text.substr(0, equals)));
    if (equals == text.npos || key.empty()) {
      Complain(number, "expected [section], key = value or ; comment");
    } else if (!section_) {
      Complain(number, "\"" + key + "\" comes before any section: expected a section like [Home] first");
    } else {
      entries_.push_back({key, std::string(TrimmedLine(text.substr(equals + 1))), number});
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
    for (const LineKey& key : type->keys) {
      if (!key.required || section->values.contains(std::string(key.name))) continue;
      // A wrong value has been complained about at its own line.
      if (usable) LeaveOut(*section, std::string(key.name) + " is missing", key.expected);
      usable = false;
    }
    if (usable) result_.sections.push_back(std::move(*section));
  }

  void LeaveOut(const LineSection& section, const std::string& what, std::string_view expected) {
    Complain(section.line_number, "the line \"" + section.name + "\" is left out: " + what + ": expected " +
                                      std::string(expected));
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
    const std::string name = LowerAscii(entry->value);
    const auto types = LineTypes();
    const auto type =
        std::find_if(types.begin(), types.end(), [&](const LineType& one) { return one.name == name; });
    if (type != types.end()) return &*type;
    Complain(entry->line_number, "the line \"" + section.name + "\" is left out: type is \"" + entry->value +
                                     "\": expected " + names);
    return nullptr;
  }

  void ComplainTwice(const Entry& entry) {
    Complain(entry.line_number, entry.key + " is given more than once: expected once; the last one counts");
  }

  /// False when the entry makes the whole section unusable.
  bool TakeEntry(LineSection& section, const LineType& type, const Entry& entry) {
    const auto key = std::find_if(type.keys.begin(), type.keys.end(),
                                  [&](const LineKey& one) { return one.name == entry.key; });
    if (key == type.keys.end()) {
      Complain(entry.line_number, "\"" + entry.key + "\" is unknown for a " + section.type +
                                      " line: expected " + NamesOf(type.keys));
      return true;
    }
    const std::string value = key->name == "transport" ? LowerAscii(entry.value) : entry.value;
    if (!key->valid(value)) {
      const std::string shown = key->secret ? "wrong" : "\"" + entry.value + "\"";
      const std::string left_out = key->required ? "the line \"" + section.name + "\" is left out: " : "";
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
  int heads_ = 0;  ///< section heads seen, wrong ones too
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
    return {{{"SIP 127.0.0.1:5060", 0, "sip", {{"listen", "127.0.0.1:5060"}}}}, {}};
  }
  if (error)
    return {{}, {file_name + ": cannot be read (" + error.message() + "): expected a readable text file"}};
  if (!std::filesystem::is_regular_file(status)) {
    return {{}, {file_name + ": cannot be read: expected a text file, but it is a folder or a device"}};
  }
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file.is_open() || file.bad()) {
    const std::string reason = std::generic_category().message(errno);
    return {{}, {file_name + ": cannot be read (" + reason + "): expected a readable text file"}};
  }
  return ParseLines(text, file_name);
}

}  // namespace orven
