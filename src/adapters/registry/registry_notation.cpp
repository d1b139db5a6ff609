// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/registry/registry_notation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "base/unicode.h"

namespace orven {
namespace {

using Kind = RegistryLine::Kind;

constexpr std::string_view kBlanks = " \t";

/// A fault, and how many physical lines it is below the first line of its value (0: on that line).
struct Fault {
  std::string text;
  int lines_down = 0;
};

/// Reads one logical line from the front of a text. Throws Fault.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : text_(text) {}

  void Read(RegistryLine& line) {
    SkipBlanks();
    if (AtLineEnd() || Peek() == ';') {
      line.kind = Kind::Plain;
    } else if (Peek() == '[') {
      ReadKey(line);
    } else if (Peek() == '"' || Peek() == '@') {
      ReadValueLine(line);
    } else if (Rest().starts_with(kRegistryHeader)) {
      at_ += kRegistryHeader.size();
      line.kind = Kind::Header;
      ExpectEnd();
    } else {
      throw Fault{R"(expected "name"=value, [key] or ; comment)", 0};
    }
    at_ = EndOfPhysicalLine();
  }

  /// Skips a damaged line whose fault is `lines_down` lines below its first, and its presumed continuation
  /// lines.
  void SkipDamaged(int lines_down) {
    at_ = 0;
    bool continues = true;
    bool in_bytes = false;
    for (int line_number = 0; continues || line_number <= lines_down; ++line_number) {
      const std::size_t end = EndOfPhysicalLine();
      std::string_view line = text_.substr(at_, end - at_);
      line = line.substr(0, line.find_last_not_of(" \t\r\n") + 1);
      at_ = end;
      const std::string_view next = text_.substr(at_, EndOfPhysicalLine() - at_);
      in_bytes = in_bytes || line.find("=hex") != line.npos || LooksLikeBytes(line);
      continues = in_bytes && line.ends_with('\\') && LooksLikeBytes(next);
    }
  }

  std::size_t Position() const { return at_; }

 private:
  std::string_view Rest() const { return text_.substr(at_); }
  char Peek() const { return at_ < text_.size() ? text_[at_] : '\n'; }
  bool AtLineEnd() const {
    return at_ >= text_.size() || text_[at_] == '\n' || Rest().starts_with("\r\n") || Rest() == "\r";
  }
  void SkipBlanks() { at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size()); }
  std::size_t EndOfPhysicalLine() const {
    const std::size_t end = text_.find('\n', at_);
    return end == text_.npos ? text_.size() : end + 1;
  }

  static bool LooksLikeBytes(std::string_view line) {
    return line.find_first_not_of(" \t\r\n") != line.npos &&
           line.find_first_not_of("0123456789abcdefABCDEF, \t\\\r\n") == line.npos;
  }

  void ExpectEnd() {
    SkipBlanks();
    if (!AtLineEnd() && Peek() != ';') throw Fault{"unexpected text at the end of the line", lines_down_};
  }

  // A key's name may contain "]": the key ends at the first one that is followed only by a comment.
  void ReadKey(RegistryLine& line) {
    const std::size_t begin = ++at_;
    const std::size_t line_end = EndOfPhysicalLine();
    for (at_ = text_.find(']', at_); at_ < line_end; at_ = text_.find(']', at_)) {
      const std::size_t end = at_++;
      SkipBlanks();
      if (!AtLineEnd() && Peek() != ';') continue;
      std::string_view name = text_.substr(begin, end - begin);
      line.kind = name.starts_with('-') ? Kind::DeletedKey : Kind::Key;
      if (name.starts_with('-')) name.remove_prefix(1);
      if (name.empty() || !IsRegistryName(name)) throw Fault{"the key's name is empty or not UTF-8 text", 0};
      line.name = name;
      return;
    }
    throw Fault{"the key's name has no closing ]", 0};
  }

  void ReadValueLine(RegistryLine& line) {
    if (Peek() == '@') {
      ++at_;
    } else {
      line.name = ReadQuoted("name");
    }
    SkipBlanks();
    if (Peek() != '=') throw Fault{"expected = after the value's name", 0};
    ++at_;
    SkipBlanks();
    line.value_begin = at_;
    line.kind = Kind::Value;
    if (Peek() == '-') {
      ++at_;
      line.kind = Kind::DeletedValue;
    } else {
      line.value = ReadValue();
    }
    line.value_end = at_;
    ExpectEnd();
  }

  RegistryValue ReadValue() {
    if (Peek() == '"') {
      RegistryValue value{static_cast<std::uint32_t>(RegistryType::String), ReadQuoted("text")};
      value.data += '\0';
      return value;
    }
    if (Rest().starts_with("dword:")) {
      at_ += 6;
      return ReadDword();
    }
    if (Rest().starts_with("hex:") || Rest().starts_with("hex(")) {
      at_ += 3;
      return ReadHex();
    }
    throw Fault{R"(expected "text", dword:, hex: or - after the =)", 0};
  }

  std::string ReadQuoted(const char* what) {
    std::string text;
    for (++at_; !AtLineEnd(); ++at_) {
      char letter = text_[at_];
      if (letter == '"') {
        ++at_;
        if (!IsRegistryName(text)) throw Fault{std::string("the ") + what + " is not UTF-8 text", 0};
        return text;
      }
      if (letter == '\\') {
        ++at_;
        letter = Peek();
        if (letter != '\\' && letter != '"') {
          throw Fault{std::string("a backslash in the ") + what + R"( is not followed by \ or ")", 0};
        }
      }
      text += letter;
    }
    throw Fault{std::string("the ") + what + " has no closing quote", 0};
  }

  /// A hexadecimal number of at most `digits` digits; nothing when there is none.
  std::optional<std::uint32_t> ReadNumber(std::size_t digits) {
    std::uint32_t number = 0;
    const std::string_view text = Rest().substr(0, digits);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    if (error != std::errc()) return std::nullopt;
    at_ += static_cast<std::size_t>(end - text.data());
    return number;
  }

  RegistryValue ReadDword() {
    const auto number = ReadNumber(8);
    if (!number) throw Fault{"expected one to eight hexadecimal digits after dword:", 0};
    RegistryValue value{static_cast<std::uint32_t>(RegistryType::Dword), ""};
    for (unsigned shift = 0; shift < 32; shift += 8)
      value.data += static_cast<char>(*number >> shift & 0xFFU);
    return value;
  }

  RegistryValue ReadHex() {
    RegistryValue value{static_cast<std::uint32_t>(RegistryType::Binary), ""};
    if (Peek() == '(') {
      ++at_;
      const auto type = ReadNumber(8);
      if (!type || Peek() != ')') throw Fault{"expected hex(type): with a hexadecimal type", 0};
      value.type = *type;
      ++at_;
    }
    if (Peek() != ':') throw Fault{"expected : after hex", 0};
    ++at_;
    value.data = ReadBytes();
    if (IsTextType(value.type)) {
      auto text = Utf8FromUtf16(value.data);
      if (!text) throw Fault{"a text has an odd number of bytes", lines_down_};
      value.data = std::move(*text);
    }
    return value;
  }

  std::string ReadBytes() {
    std::string bytes;
    bool more = false;  // A comma precedes this position.
    for (SkipBlanks(); more || (!AtLineEnd() && Peek() != ';'); SkipBlanks()) {
      if (Peek() == '\\') {
        ++at_;
        NextPhysicalLine();
        continue;
      }
      if (!bytes.empty() && !more)
        throw Fault{"expected bytes of two hexadecimal digits with commas between them", lines_down_};
      const auto byte = ReadNumber(2);
      if (!byte)
        throw Fault{"expected bytes of two hexadecimal digits with commas between them", lines_down_};
      bytes += static_cast<char>(*byte);
      SkipBlanks();
      more = Peek() == ',';
      if (more) ++at_;
    }
    return bytes;
  }

  void NextPhysicalLine() {
    SkipBlanks();
    if (!AtLineEnd()) throw Fault{"unexpected text after the backslash that ends the line", lines_down_};
    const std::size_t next = EndOfPhysicalLine();
    const std::size_t first = text_.find_first_not_of(kBlanks, next);
    if (first == text_.npos || !LooksLikeBytes(text_.substr(first, 1))) {
      throw Fault{"the line with the rest of the bytes is missing", lines_down_};
    }
    at_ = next;
    ++lines_down_;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int lines_down_ = 0;
};

/// Exports break a row of bytes before it passes column 80.
constexpr std::size_t kLastColumn = 76;

std::string Hexadecimal(std::uint32_t number, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%0*x", digits, number);
  return text.data();
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char letter : text) {
    if (letter == '\\' || letter == '"') quoted += '\\';
    quoted += letter;
  }
  return quoted + '"';
}

bool FitsQuotes(const RegistryValue& value) {
  if (value.type != static_cast<std::uint32_t>(RegistryType::String) || !value.data.ends_with('\0'))
    return false;
  const std::string_view text(value.data.data(), value.data.size() - 1);
  const auto is_control = [](char letter) {
    return static_cast<unsigned char>(letter) < ' ' && letter != '\t';
  };
  return std::none_of(text.begin(), text.end(), is_control) && IsUtf8(text);
}

std::string Dword(std::string_view bytes) {
  std::uint32_t number = 0;
  for (std::size_t at = bytes.size(); at-- > 0;) {
    number = number << 8U | static_cast<unsigned char>(bytes[at]);
  }
  return "dword:" + Hexadecimal(number, 8);
}

std::string Bytes(const RegistryValue& value, std::size_t column, std::string_view line_end) {
  const bool binary = value.type == static_cast<std::uint32_t>(RegistryType::Binary);
  std::string text = binary ? "hex:" : "hex(" + Hexadecimal(value.type, 1) + "):";
  const std::string bytes = IsTextType(value.type) ? Utf16FromUtf8(value.data) : value.data;
  column += text.size();
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (at > 0) text += ',';
    if (at > 0 && column >= kLastColumn) {
      text.append("\\").append(line_end).append("  ");
      column = 2;
    }
    text += Hexadecimal(static_cast<unsigned char>(bytes[at]), 2);
    column += 3;
  }
  return text;
}

}  // namespace

RegistryLine ParseRegistryLine(std::string_view text, int number) {
  RegistryLine line;
  line.number = number;
  LineReader reader(text);
  try {
    reader.Read(line);
  } catch (const Fault& fault) {
    reader.SkipDamaged(fault.lines_down);
    line.kind = Kind::Damaged;
    line.fault = fault.text;
    line.fault_number = number + fault.lines_down;
  }
  line.raw = text.substr(0, reader.Position());
  return line;
}

bool IsRegistryName(std::string_view name) {
  return IsUtf8(name) && name.find('\n') == name.npos && name.find('\r') == name.npos &&
         name.find('\0') == name.npos;
}

std::string NotationOfName(std::string_view name) {
  return name.empty() ? "@" : Quoted(name);
}

std::string NotationOfValue(const RegistryValue& value, std::size_t column, std::string_view line_end) {
  if (FitsQuotes(value)) return Quoted(std::string_view(value.data).substr(0, value.data.size() - 1));
  const bool dword = value.type == static_cast<std::uint32_t>(RegistryType::Dword);
  if (dword && value.data.size() == 4) return Dword(value.data);
  return Bytes(value, column, line_end);
}

}  // namespace orven
