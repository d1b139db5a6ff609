// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <mutex>
#include <set>

namespace orven {

/// Ends transfers from another thread at once, whatever they wait for on their connections. Any thread.
class Cancellation {
 public:
  /// From now on transfers fail; connections that are open are shut down.
  void Cancel();
  bool Cancelled() const;

  /// Opens a connection's socket: the arguments of socket(2). It is not inherited by programs that are
  /// started. -1 when it cannot be opened.
  int Open(int family, int type, int protocol);
  /// Closes a socket that Open gave.
  void Close(int socket);

 private:
  mutable std::mutex mutex_;
  bool cancelled_ = false;
  std::set<int> sockets_;
};

}  // namespace orven
