// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/channel/same_user.h"

#include <sys/socket.h>
#include <unistd.h>

namespace orven {

bool IsSameUser(const QLocalSocket& socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  const int result =
      ::getsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size);
  return result == 0 && peer.uid == ::geteuid();
}

}  // namespace orven
