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
  /// An open line of this program has one of the accounts: the server is only asked what is registered, so
  /// that the registration stays as it is.
  bool only_asks = false;
  /// Addresses where lines of this program wait for calls now. In place of them the test uses free ports.
  std::vector<std::string> open_addresses{};
  /// Longest wait for the servers. UDP retransmits after 0.5, 1.5, 3.5 and 7.5 s (RFC 3261,
  /// section 17.1.2.2): five lost requests are not chance.
  std::chrono::milliseconds patience{10'000};
};

/// Opens a line with `settings`, registers its accounts and unregisters them; without accounts the result
/// says whether calls can come in. Blocks; any thread but the user-interface thread. Ends early, with any
/// result, when `cancelled` becomes true.
LineTestResult ProbeSipLine(SipLineSettings settings, const SipProbeOptions& options,
                            const std::atomic<bool>& cancelled);

}  // namespace orven
