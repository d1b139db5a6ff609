// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orven::emulator {
/// The parts between commas that are in no brackets.
std::vector<std::string> SplitValues(std::string_view text);

/// `text` as a whole number of 0 or more, or nothing.
std::optional<int> Number(std::string_view text);

/// Whether `value` is in one group of a range, "(0,121-131)"; "()" takes everything.
bool InGroup(std::string_view group, int value);

/// What a setting is after "=value": parts that are left out stay as they are. Nothing when a part is
/// outside `range`, a group a part: "(0-3),(0-255)".
std::optional<std::string> Changed(const std::string& range, const std::string& present,
                                   const std::string& value);

/// Finds command lines in what the host sends (ITU-T V.250, clause 5.2): "AT" up to the carriage return, and
/// "A/", which means the one before.
class CommandLine {
 public:
  /// A whole line, without AT, when `byte` completes one.
  std::optional<std::string> Put(std::uint8_t byte);

 private:
  enum class State { Outside, A, Inside } state_ = State::Outside;
  std::string line_;
  std::string latest_;
};

/// One command of a line.
struct CommandRequest {
  enum class Form { Act, Ask, Test, Set };  ///< "+X", "+X?", "+X=?", "+X=value"
  std::string name;                         ///< "E", "&F", "S0", "+VSM", "#CID"
  Form form = Form::Act;
  std::string value;  ///< also the number behind a letter: the 3 of I3
};

/// The commands of a line, in their order; nothing when it is none. Capital letters, no blanks.
std::optional<std::vector<CommandRequest>> SplitCommands(std::string_view line);

}  // namespace orven::emulator
