// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/libre.h"

namespace orven {

/// The SIP thread only uses descriptors below this number. Strangers who open many connections must leave
/// files to the rest of the program.
inline constexpr int kMostDescriptors = 512;

/// Limits the connections that others open to a line. It closes a connection whose peer does not read what we
/// send or sends much without a message in it, and those that are too many. The library has no such limits:
/// it answers each empty line, keeps up to 180 MB of answers for a peer that does not read them, and keeps
/// what it has read until a piece ends with a line. It does not expose its connections, so they are watched
/// by their descriptors. SIP thread.
class ConnectionGuard {
 public:
  /// `is_ours`: whether this local address is one of the line's.
  explicit ConnectionGuard(std::function<bool(const sa& local)> is_ours);
  ConnectionGuard(const ConnectionGuard&) = delete;
  ConnectionGuard& operator=(const ConnectionGuard&) = delete;
  ~ConnectionGuard() { Stop(); }

  void Start();
  void Stop();

  /// Looks for new sockets, and closes connections that are too many.
  void Look();

  /// A whole message has come over a connection.
  void Heard(const sip_msg& message);

  /// The connection of this call is never closed as one too many, until the next call.
  void Spare(const sip_msg& invite);

 private:
  using Clock = std::chrono::steady_clock;

  /// What is known of a socket.
  struct Watched {
    std::uint64_t heard = 0;                 ///< bytes taken up to the latest message; 0: none has come
    std::optional<Clock::time_point> stuck;  ///< since when what we send has not been read
  };

  struct Connection {
    int descriptor;
    sa peer;
    int rank;                 ///< the highest rank is closed first
    std::uint32_t silent_ms;  ///< since something came from there
  };

  void TakeReady();
  bool Watch(int descriptor);
  bool GoesTooFar(int descriptor);
  bool IsStuckTooLong(int descriptor);
  Connection Describe(int descriptor) const;
  static void CloseExcess(std::vector<Connection> connections);

  const std::function<bool(const sa&)> is_ours_;
  int ready_ = -1;  ///< epoll(7): sockets from which something came
  std::array<Watched, kMostDescriptors> watched_{};
  std::string call_;  ///< Call-ID of the call to spare
  int spared_ = -1;   ///< its connection
  MonotonicTimer soon_;
  MonotonicTimer patience_;
  MonotonicTimer tick_;
};

/// Holds the file descriptors that a call needs, so that a stranger with many idle connections cannot prevent
/// calls: descriptors that are released are the next to be assigned.
class DescriptorReserve {
 public:
  DescriptorReserve() {
    held_.fill(kNone);
    Fill();
  }
  ~DescriptorReserve() { Release(); }
  DescriptorReserve(const DescriptorReserve&) = delete;
  DescriptorReserve& operator=(const DescriptorReserve&) = delete;

  /// Opens what is missing. Idempotent.
  void Fill();

  /// Releases them for what is opened next. Idempotent.
  void Release();

 private:
  static constexpr int kNone = -1;
  std::array<int, 8> held_;  ///< a call takes two ports and three timers, and one more for a moment
};

}  // namespace orven
