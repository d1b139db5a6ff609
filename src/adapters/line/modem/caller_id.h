// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orven {
/// Who calls, in UTF-8; empty where the network does not tell or the caller hides.
struct ModemCaller {
  std::string name;
  std::string number;

  bool operator==(const ModemCaller&) const = default;
};

/// Collects the lines with which a modem tells who calls: DATE, TIME, NMBR, NAME, MESG (a whole caller id
/// message) in any order and number, as "TAG=value" or "TAG = value". Nothing marks the last one.
class CallerIdLines {
 public:
  /// Whether `line` is one of them; then it is taken.
  bool Take(const std::string& line);

  /// A whole <DLE>X packet of such lines.
  void TakePacket(const std::string& packet);

  /// Whether anything has been taken since the last Finish.
  bool Any() const { return any_; }

  /// What has been taken, and begins anew. A number that is withheld ("P") or that the network does not know
  /// ("O") is empty, as is such a name: a caller of whom nothing is told. Nothing when neither a number nor a
  /// name came in any form, date and time only.
  std::optional<ModemCaller> Finish();

 private:
  static void Tell(std::optional<std::string>& what, std::string_view value);

  bool any_ = false;
  std::optional<std::string> name_;
  std::optional<std::string> number_;
};

}  // namespace orven
