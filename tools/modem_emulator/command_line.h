// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orven::emulator {
/// Splits at the commas outside brackets.
std::vector<std::string> SplitValues(std::string_view text);

/// `text` as a whole number, 0 or more; else nothing.
std::optional<int> Number(std::string_view text);

/// Whether `value` is in one group of a range, "(0,121-131)"; "()" takes everything.
bool InGroup(std::string_view group, int value);

/// The value of a setting after "=value"; omitted parts stay as they are. Nothing when a part is outside
/// `range`, which has a group for each part: "(0-3),(0-255)".
std::optional<std::string> Changed(const std::string& range, const std::string& present,
                                   const std::string& value);

/// Finds command lines in the host's bytes (ITU-T V.250, clause 5.2): "AT" up to the carriage return, and
/// "A/", which repeats the line before.
class CommandLine {
 public:
  /// Returns a line, without AT, when `byte` completes one.
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
  std::string value;  ///< also the number after a letter: the 3 of I3
};

/// The commands of a line, in their order, in capitals and without blanks; nothing when the line is invalid.
std::optional<std::vector<CommandRequest>> SplitCommands(std::string_view line);

}  // namespace orven::emulator
