// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <random>
#include <span>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/event_loop.h"

namespace orven::emulator {

/// The bytes on their way to the host: in order, with a delay, and in arbitrary pieces, as a serial port's
/// reader gets them. Every run has the same delays and pieces.
class HostPort {
 public:
  using Time = std::chrono::milliseconds;
  using ToHost = std::function<void(std::span<const std::uint8_t>)>;

  HostPort(EventLoop& loop, const Clock& clock, ToHost to_host);

  /// Sends the first piece after `delay` and after earlier bytes. Calls `then` when all bytes have left
  /// except the last two (a line's end): the host may act by then.
  void Send(std::span<const std::uint8_t> bytes, Time delay, EventLoop::Task then = {});
  void Send(std::string_view text, Time delay, EventLoop::Task then = {});

  /// How long the modem takes to answer: 20 to 100 ms.
  Time AnswerDelay();

  /// A pseudo-random number from `least` to `most`.
  int Any(int least, int most);

  /// Drops the bytes on their way, and their calls.
  void Clear() { pieces_.clear(); }
  /// While muted, bytes are dropped when they are due.
  void Mute(bool muted) { muted_ = muted; }

 private:
  struct Piece {
    Time at;
    std::vector<std::uint8_t> bytes;
    EventLoop::Task before;
  };

  void Cut(std::span<const std::uint8_t> bytes, Time at, EventLoop::Task then);
  void Schedule();
  void Deliver();

  EventLoop& loop_;
  const Clock& clock_;
  ToHost to_host_;
  std::deque<Piece> pieces_;
  std::minstd_rand random_{1};
  bool scheduled_ = false;
  bool muted_ = false;
  Lifeline lifeline_;
};

}  // namespace orven::emulator
