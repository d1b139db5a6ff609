// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/caller_id_lines.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>
#include <string_view>
#include <utility>

#include "adapters/line/modem/caller_id_message.h"
#include "base/utf8.h"

namespace orven {
namespace {

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::string_view Unquoted(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? Trimmed(text.substr(1, text.size() - 2)) : text;
}

std::string Capitals(std::string_view text) {
  std::string capitals(text);
  std::ranges::transform(capitals, capitals.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return capitals;
}

/// Networks and modems that know more than ASCII send ISO 8859-1.
std::string ToUtf8(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string utf8;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) utf8 += static_cast<char>(0xC0U | (byte >> 6U));
    utf8 += static_cast<char>(byte < 0x80 ? byte : 0x80U | (byte & 0x3FU));
  }
  return utf8;
}

/// What stands instead of a number or name that is withheld or not known: P and O (GR-31), or in words.
bool IsReason(std::string_view text) {
  static constexpr std::array<std::string_view, 6> kReasons{"P",       "O",           "PRIVATE",
                                                            "UNKNOWN", "OUT OF AREA", "ANONYMOUS"};
  return std::ranges::find(kReasons, Capitals(text)) != kReasons.end();
}

std::string Told(std::string_view value) {
  const auto text = Trimmed(Unquoted(Trimmed(value)));
  return IsReason(text) ? std::string() : ToUtf8(text);
}

}  // namespace

bool CallerIdLines::Take(const std::string& line) {
  const auto equals = line.find('=');
  if (equals == std::string::npos) return false;
  const auto tag = Capitals(Trimmed(std::string_view(line).substr(0, equals)));
  const auto value = std::string_view(line).substr(equals + 1);
  if (tag == "NMBR") {
    Tell(number_, value);
  } else if (tag == "NAME") {
    Tell(name_, value);
  } else if (tag == "MESG") {
    const auto message = ReadCallerIdMessage(value);
    if (message && message->number) Tell(number_, *message->number);
    if (message && message->name) Tell(name_, *message->name);
  } else if (tag != "DATE" && tag != "TIME") {
    return false;
  }
  any_ = true;
  return true;
}

void CallerIdLines::TakePacket(const std::string& packet) {
  std::string lines = packet;
  std::ranges::replace(lines, '\r', '\n');
  std::istringstream text(lines);
  for (std::string line; std::getline(text, line);) (void)Take(line);
}

std::optional<ModemCaller> CallerIdLines::Finish() {
  const auto lines = std::exchange(*this, CallerIdLines());
  if (!lines.number_ && !lines.name_) return std::nullopt;
  return ModemCaller{lines.name_.value_or(""), lines.number_.value_or("")};
}

/// What has been told once is not forgotten for a later line that withholds it.
void CallerIdLines::Tell(std::optional<std::string>& what, std::string_view value) {
  auto told = Told(value);
  if (!what || !told.empty()) what = std::move(told);
}

}  // namespace orven
