// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// The system log: the steps of the line and of the call, and every failed statement. Never fails.
class SystemLog {
 public:
  virtual ~SystemLog() = default;
  virtual void WriteSystem(const std::string& text) = 0;
};

/// The calls log: one line for each filed call. Never fails.
class CallsLog {
 public:
  virtual ~CallsLog() = default;
  virtual void WriteCalls(const std::string& text) = 0;
};

}  // namespace orven
