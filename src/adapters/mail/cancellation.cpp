// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/cancellation.h"

#include <sys/socket.h>
#include <unistd.h>

namespace orven {

void Cancellation::Cancel() {
  const std::lock_guard lock(mutex_);
  cancelled_ = true;
  for (const int socket : sockets_) ::shutdown(socket, SHUT_RDWR);
}

bool Cancellation::Cancelled() const {
  const std::lock_guard lock(mutex_);
  return cancelled_;
}

int Cancellation::Open(int family, int type, int protocol) {
  const std::lock_guard lock(mutex_);
  if (cancelled_) return -1;
  const int socket = ::socket(family, type | SOCK_CLOEXEC, protocol);
  if (socket >= 0) sockets_.insert(socket);
  return socket;
}

void Cancellation::Close(int socket) {
  const std::lock_guard lock(mutex_);
  sockets_.erase(socket);
  ::close(socket);
}

}  // namespace orven
