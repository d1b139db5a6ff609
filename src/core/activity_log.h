// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// Where the steps of the line, the call and every failed statement are written. Never fails.
class SystemLog {
 public:
  virtual ~SystemLog() = default;
  virtual void WriteSystem(const std::string& text) = 0;
};

/// Where each filed call leaves its line. Never fails.
class CallsLog {
 public:
  virtual ~CallsLog() = default;
  virtual void WriteCalls(const std::string& text) = 0;
};

}  // namespace orven
