// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "core/activity_log.h"

namespace orven {

/// Runs the statements of one routine so that a failing one does not stop the others: it writes one line
/// (label, error number, blank, description) and the routine goes on with the next statement. Leave a loop
/// when a statement in it fails, so that no fault can make it spin.
///
///     ErrorTrap trap(log, "ErrOpenLine ");
///     trap([&] { first statement });
///     if (!trap([&] { second statement })) break;
class ErrorTrap {
 public:
  /// `label` is written unchanged, trailing blank included.
  ErrorTrap(SystemLog& log, std::string label) : log_(&log), label_(std::move(label)) {}

  /// For small handlers without a label: failures are not logged.
  static ErrorTrap Silent() { return ErrorTrap(); }

  /// True when the statement ran to its end.
  template <class Statement>
  bool operator()(Statement&& statement) const {
    try {
      std::forward<Statement>(statement)();
      return true;
    } catch (...) {
      Report();
      return false;
    }
  }

 private:
  ErrorTrap() = default;
  void Report() const;  ///< names the exception that is being handled

  SystemLog* log_ = nullptr;
  std::string label_;
};

}  // namespace orven
