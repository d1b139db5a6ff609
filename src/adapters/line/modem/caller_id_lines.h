// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace orven {

/// Who calls, in UTF-8; empty where the network does not tell.
struct ModemCaller {
  std::string name;
  std::string number;

  bool operator==(const ModemCaller&) const = default;
};

/// Collects the lines with which a modem tells who calls: DATE, TIME, NMBR, NAME, MESG in any order and
/// number, as "TAG=value" or "TAG = value". Nothing marks the last one.
class CallerIdLines {
 public:
  /// Whether `line` is one of them; then it is taken.
  bool Take(const std::string& line);

  /// A whole <DLE>X packet of such lines.
  void TakePacket(const std::string& packet);

  /// Whether anything has been taken since the last Finish.
  bool Any() const { return any_; }

  /// What has been taken, and begins anew. A number "P" is a withheld one, "O" one that the network does
  /// not know: their callers are named accordingly when they have no name. Nothing when only date and time came.
  std::optional<ModemCaller> Finish();

 private:
  bool any_ = false;
  std::string name_;
  std::string number_;
};

}  // namespace orven
