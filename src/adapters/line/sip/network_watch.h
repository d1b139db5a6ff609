// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// Notices changes of this computer's network: the kernel reports addresses, routes and links (rtnetlink),
/// and the files that name the name servers are checked every few seconds. SIP thread.
class NetworkWatch {
 public:
  /// `look` is called every few seconds, with true when something has changed: then soon, and once for all
  /// changes within 0.3 s.
  explicit NetworkWatch(std::function<void(bool changed)> look);
  NetworkWatch(const NetworkWatch&) = delete;
  NetworkWatch& operator=(const NetworkWatch&) = delete;
  ~NetworkWatch() { Stop(); }

  void Start();
  void Stop();

 private:
  void TakeNews();
  bool NamesChanged();

  const std::function<void(bool)> look_;
  int kernel_ = -1;    ///< rtnetlink(7); -1: not available
  std::string names_;  ///< the files' state at the last check
  MonotonicTimer settle_;
  MonotonicTimer tick_;
};

}  // namespace orven
