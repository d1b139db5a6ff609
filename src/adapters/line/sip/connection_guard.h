// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"
#include "base/durable_file.h"

namespace orven {

/// The SIP thread only uses descriptors below this number, so that strangers who open many connections leave
/// descriptors to the rest of the program.
inline constexpr int kMostDescriptors = 512;

/// Closes a connection of the library, which notices at once and frees the connection's memory.
void CloseConnection(int descriptor);

/// Limits the time that the connection which the library opens meanwhile takes to notice that the other end
/// is gone: the system tries for two minutes to connect, with growing pauses, and a quarter of an hour to
/// deliver. The library does not expose it; it gets the lowest free descriptor.
class ImpatientConnection {
 public:
  ImpatientConnection();
  ImpatientConnection(const ImpatientConnection&) = delete;
  ImpatientConnection& operator=(const ImpatientConnection&) = delete;
  ~ImpatientConnection();

 private:
  int next_;  ///< the lowest free descriptor
};

/// Limits the connections that others open to a line. It closes a connection whose peer does not read what we
/// send or sends much without a message in it, and connections beyond its limits. The library has no such
/// limits: it answers each empty line, keeps up to 180 MB of answers for a peer that does not read them, and
/// buffers input until a read ends with a complete line. It does not expose its connections, so they are
/// watched by their descriptors. SIP thread.
class ConnectionGuard {
 public:
  /// `is_ours`: whether this local address is one of the line's.
  explicit ConnectionGuard(std::function<bool(const sa& local)> is_ours);
  ConnectionGuard(const ConnectionGuard&) = delete;
  ConnectionGuard& operator=(const ConnectionGuard&) = delete;
  ~ConnectionGuard() { Stop(); }

  void Start();
  void Stop();

  /// Looks for new sockets, and closes connections beyond the limits.
  void Look();

  /// A whole message has arrived over a connection.
  void Heard(const sip_msg& message);

  /// The connection of this call is exempt from the limits until the next call.
  void Spare(const sip_msg& invite);

 private:
  using Clock = std::chrono::steady_clock;

  /// What is known about a socket.
  struct Watched {
    std::uint64_t heard = 0;                 ///< bytes taken up to the latest message; 0: none has arrived
    std::optional<Clock::time_point> stuck;  ///< since when the peer has not read what we send
  };

  struct Connection {
    int descriptor;
    sa peer;
    int rank;                 ///< the highest rank is closed first
    std::uint32_t silent_ms;  ///< since the last bytes from the peer
  };

  void TakeReady();
  bool Watch(int descriptor);
  bool GoesTooFar(int descriptor);
  bool IsStuckTooLong(int descriptor);
  Connection Describe(int descriptor) const;
  static void CloseExcess(std::vector<Connection> connections);

  const std::function<bool(const sa&)> is_ours_;
  int ready_ = -1;  ///< epoll(7): sockets with input
  std::array<Watched, kMostDescriptors> watched_{};
  std::string call_;  ///< Call-ID of the call to spare
  int spared_ = -1;   ///< its connection
  MonotonicTimer soon_;
  MonotonicTimer patience_;
  MonotonicTimer tick_;
};

/// Holds the file descriptors that a call needs, so that a stranger with many idle connections cannot prevent
/// calls: released descriptors are the next ones assigned.
class DescriptorReserve {
 public:
  DescriptorReserve() { Fill(); }

  /// Opens what is missing. Idempotent.
  void Fill();

  /// Releases them for what is opened next. Idempotent.
  void Release() { held_.clear(); }

 private:
  static constexpr std::size_t kCount = 10;  ///< a call takes two ports and five timers, and one for a moment
  std::list<Descriptor> held_;
};

}  // namespace orven
