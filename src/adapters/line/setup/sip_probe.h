// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "adapters/line/sip/sip_line_settings.h"
#include "platform/telephone_lines.h"

namespace orven {

/// How a SIP line is tried out.
struct SipProbeOptions {
  /// The account is registered by a line of this program now: the server is only asked, so that the
  /// registration stays as it is.
  bool registered_now = false;
  /// Addresses that lines of this program have open now. Free ports stand in for theirs.
  std::vector<std::string> open_addresses{};
  /// Longest wait for the server. UDP tries again after 0.5, 1.5, 3.5 and 7.5 s (RFC 3261, section
  /// 17.1.2.2): four lost requests are no bad luck.
  std::chrono::milliseconds patience{10'000};
};

/// Opens `line` with its `settings`. With an account: from free ports; registers it, takes the registration
/// back, and says what came of it. Without one: says whether calls can come in. Blocks; any thread but the
/// user-interface thread. Ends early, with any result, when `cancelled` becomes true.
LineTestResult ProbeSipLine(const TelephoneLine& line, SipLineSettings settings,
                            const SipProbeOptions& options, const std::atomic<bool>& cancelled);

}  // namespace orven
