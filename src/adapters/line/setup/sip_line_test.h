// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>

#include "platform/telephone_lines.h"

namespace orven {

/// How a SIP line is tried out.
struct SipTestOptions {
  /// The account is registered by a line of this program now: the server is only asked, so that the
  /// registration stays as it is.
  bool registered_now = false;
  /// Longest wait for the server. UDP tries again after 0.5, 1.5, 3.5 and 7.5 s (RFC 3261, section
  /// 17.1.2.2): four lost requests are no bad luck.
  std::chrono::milliseconds patience{10'000};
};

/// Registers the account of `line` from a free port, takes the registration back, and says what came of
/// it. Without an account: whether the line's address can be listened on. Blocks; any thread but the
/// user-interface thread. Ends early, with any result, when `cancelled` becomes true.
LineTestResult TestSipLine(const TelephoneLine& line, const SipTestOptions& options,
                           const std::atomic<bool>& cancelled);

}  // namespace orven
