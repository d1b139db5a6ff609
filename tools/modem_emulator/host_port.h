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

/// The bytes on their way to the host: in order, some time after they were sent, and in pieces whose ends
/// mean nothing, as a serial port's reader gets them. The same ones in every run.
class HostPort {
 public:
  using Time = std::chrono::milliseconds;
  using ToHost = std::function<void(std::span<const std::uint8_t>)>;

  HostPort(EventLoop& loop, const Clock& clock, ToHost to_host);

  /// The first piece leaves after `delay`, and after what was sent before. `then` is called when all but
  /// two bytes at most (a line's end) have left: the host may act on what it has read by then.
  void Send(std::span<const std::uint8_t> bytes, Time delay, EventLoop::Task then = {});
  void Send(std::string_view text, Time delay, EventLoop::Task then = {});

  /// How long a modem takes to answer: 20 to 100 ms.
  Time AnswerDelay();

  /// A number of `least` to `most`, another one each time.
  int Any(int least, int most);

  /// What is on its way is lost; what would have been called is not.
  void Clear() { pieces_.clear(); }
  /// While muted nothing leaves: it is lost when its time comes.
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
