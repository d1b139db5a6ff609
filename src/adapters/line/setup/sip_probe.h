// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "adapters/line/sip/sip_line_settings.h"
#include "platform/telephone_lines.h"

namespace orven {

/// How a SIP line is tested.
struct SipProbeOptions {
  /// A line of this program has registered the account: the server is only queried, so that the
  /// registration stays as it is.
  bool registered_now = false;
  /// Addresses where lines of this program listen now. The test uses free ports instead of theirs.
  std::vector<std::string> open_addresses{};
  /// Longest wait for the server. UDP retransmits after 0.5, 1.5, 3.5 and 7.5 s (RFC 3261, section 17.1.2.2):
  /// five lost requests are not chance.
  std::chrono::milliseconds patience{10'000};
};

/// Opens `line` with its `settings`. A line with an account is opened on free ports, registered and
/// unregistered; for a line without one the result says whether calls can come in. Blocks; any thread but
/// the user-interface thread. Ends early, with any result, when `cancelled` becomes true.
LineTestResult ProbeSipLine(const TelephoneLine& line, SipLineSettings settings,
                            const SipProbeOptions& options, const std::atomic<bool>& cancelled);

}  // namespace orven
