// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// What has changed; the greater one counts.
enum class NetworkChange : std::uint8_t { kNone, kRoutes, kAddresses, kResumed };

/// Notices changes of this computer's network: the kernel reports addresses, routes and links (rtnetlink),
/// and every few seconds the files that name the name servers are checked, and whether the computer was
/// suspended. SIP thread.
class NetworkWatch {
 public:
  /// `look` is called every few seconds, and soon after a change, once for all changes within 0.3 s. Which
  /// one the kernel has reported is not told apart: it is kRoutes.
  explicit NetworkWatch(std::function<void(NetworkChange change)> look);
  NetworkWatch(const NetworkWatch&) = delete;
  NetworkWatch& operator=(const NetworkWatch&) = delete;
  ~NetworkWatch() { Stop(); }

  void Start();
  void Stop();

 private:
  void TakeNews();
  bool NamesChanged();
  bool WasSuspended();

  const std::function<void(NetworkChange)> look_;
  int kernel_ = -1;                        ///< rtnetlink(7); -1: not available
  std::string names_;                      ///< the files' state at the last check
  std::chrono::nanoseconds suspended_{0};  ///< until the last check
  MonotonicTimer settle_;
  MonotonicTimer tick_;
};

}  // namespace orven
