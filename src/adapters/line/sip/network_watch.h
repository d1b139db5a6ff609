// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// Notices that this computer's network is not what it was: the kernel tells of addresses, routes and cables
/// (rtnetlink), the files that name the name servers are looked at every few seconds. SIP thread.
class NetworkWatch {
 public:
  /// `look` is called every few seconds, with true when something is known to have changed: then soon, and
  /// once for all that changes within a moment.
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
  int kernel_ = -1;    ///< rtnetlink(7); -1: it does not tell
  std::string names_;  ///< what the files looked like
  MonotonicTimer settle_;
  MonotonicTimer tick_;
};

}  // namespace orven
