// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/host_port.h"

#include <algorithm>
#include <utility>

namespace orven::emulator {
namespace {

constexpr int kLongestPiece = 200;
constexpr std::size_t kLineEnd = 2;

}  // namespace

HostPort::HostPort(EventLoop& loop, const Clock& clock, ToHost to_host)
    : loop_(loop), clock_(clock), to_host_(std::move(to_host)) {}

int HostPort::Any(int least, int most) {
  // The standard's distributions differ from library to library; a remainder does not.
  return least + static_cast<int>(random_() % static_cast<unsigned>(most - least + 1));
}

HostPort::Time HostPort::AnswerDelay() {
  return Time(Any(20, 100));
}

void HostPort::Send(std::string_view text, Time delay, EventLoop::Task then) {
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  Send(std::span(bytes), delay, std::move(then));
}

void HostPort::Send(std::span<const std::uint8_t> bytes, Time delay, EventLoop::Task then) {
  auto at = clock_.Uptime() + delay;
  if (!pieces_.empty()) at = std::max(at, pieces_.back().at);
  Cut(bytes, at, std::move(then));
  Schedule();
}

void HostPort::Cut(std::span<const std::uint8_t> bytes, Time at, EventLoop::Task then) {
  const auto enough = bytes.size() - std::min(bytes.size(), kLineEnd);
  std::size_t done = 0;
  do {
    // Some pieces end after a byte or two: in the middle of a line's end, or of a shielded byte.
    const int longest = Any(0, 3) == 0 ? 2 : kLongestPiece;
    const auto length = std::min(static_cast<std::size_t>(Any(1, longest)), bytes.size() - done);
    const auto piece = bytes.subspan(done, length);
    done += length;
    EventLoop::Task before;
    if (done >= enough) before = std::exchange(then, {});
    pieces_.push_back({at, {piece.begin(), piece.end()}, std::move(before)});
    at += Time(Any(0, 2));
  } while (done < bytes.size());
}

void HostPort::Schedule() {
  if (scheduled_ || pieces_.empty()) return;
  scheduled_ = true;
  const auto delay = std::max(pieces_.front().at - clock_.Uptime(), Time(0));
  loop_.After(delay, lifeline_.Bind([this] {
    scheduled_ = false;
    Deliver();
  }));
}

void HostPort::Deliver() {
  while (!pieces_.empty() && pieces_.front().at <= clock_.Uptime()) {
    const Piece piece = std::move(pieces_.front());
    pieces_.pop_front();
    if (piece.before) piece.before();
    if (!muted_ && !piece.bytes.empty()) to_host_(piece.bytes);
  }
  Schedule();
}

}  // namespace orven::emulator
