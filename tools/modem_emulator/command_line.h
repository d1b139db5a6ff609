// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orven::emulator {

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
