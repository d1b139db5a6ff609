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

/// Descriptors that the SIP thread uses at most, so the greatest is one less. Strangers who open connections
/// without end must leave the rest of the program its files.
inline constexpr int kMostDescriptors = 512;

/// Keeps the connections that others open to a line within bounds, and closes those that go beyond: who does
/// not read what is sent, sends much without a message in it, or holds more connections than a telephone
/// needs. The library has no such bounds (it answers each empty line, and keeps up to 180 MB of answers for a
/// peer that does not read them; it keeps what it has read until a piece ends with a line) and shows its
/// connections to nobody, so they are watched from outside, by their descriptors. SIP thread.
class ConnectionGuard {
 public:
  /// `is_ours`: whether connections to this local address are this line's.
  explicit ConnectionGuard(std::function<bool(const sa& local)> is_ours);
  ConnectionGuard(const ConnectionGuard&) = delete;
  ConnectionGuard& operator=(const ConnectionGuard&) = delete;
  ~ConnectionGuard() { Stop(); }

  void Start();
  void Stop();

  /// Looks for sockets that are new, and closes connections that are too many.
  void Look();

  /// A whole message has come by a connection.
  void Heard(const sip_msg& message);

  /// The connection by which the messages of this call come is never one too many, until the next call.
  void Spare(const sip_msg& invite);

 private:
  using Clock = std::chrono::steady_clock;

  /// What is known of a socket, by its descriptor.
  struct Watched {
    std::uint64_t heard = 0;                 ///< bytes taken up to the latest message; 0: none has come
    std::optional<Clock::time_point> stuck;  ///< since when what we send has not been read
  };

  struct Connection {
    int descriptor;
    sa peer;
    int rank;                 ///< those of a high rank are closed first
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

/// Keeps as many file descriptors as a call needs, so that a stranger who holds all others by
/// idle connections cannot keep calls away: the descriptors that are released are the next ones given.
class DescriptorReserve {
 public:
  DescriptorReserve() {
    held_.fill(kNone);
    Fill();
  }
  ~DescriptorReserve() { Release(); }
  DescriptorReserve(const DescriptorReserve&) = delete;
  DescriptorReserve& operator=(const DescriptorReserve&) = delete;

  /// Takes what is missing; idempotent.
  void Fill();

  /// Gives them free for whoever opens something next; idempotent.
  void Release();

 private:
  static constexpr int kNone = -1;
  std::array<int, 8> held_;  ///< a call takes two ports and three timers, and one more for a moment
};

}  // namespace orven
