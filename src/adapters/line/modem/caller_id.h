// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orven {
/// The caller's name and number, in UTF-8; empty when the network does not send it or the caller withholds
/// it.
struct ModemCaller {
  std::string name;
  std::string number;

  bool operator==(const ModemCaller&) const = default;
};

/// Collects a modem's caller id lines: DATE, TIME, NMBR, NAME, MESG (a whole caller id message), in any order
/// and number, as "TAG=value" or "TAG = value". Nothing marks the last one.
class CallerIdLines {
 public:
  /// Takes `line` if it is one of them; false if it is not.
  bool Take(const std::string& line);

  /// A whole <DLE>X packet of such lines.
  void TakePacket(const std::string& packet);

  /// Whether anything has been taken since the last Finish.
  bool Any() const { return any_; }

  /// Returns what has been taken and starts over. A withheld ("P") or unknown ("O") number or name is empty.
  /// Nothing when neither a number nor a name has arrived, only date and time.
  std::optional<ModemCaller> Finish();

 private:
  void TakeMessage(std::string_view hexadecimal);
  static void Tell(std::optional<std::string>& what, std::string_view value);

  bool any_ = false;
  std::optional<std::string> name_;
  std::optional<std::string> number_;
};

}  // namespace orven
