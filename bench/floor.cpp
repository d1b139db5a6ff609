// SPDX-License-Identifier: GPL-3.0-or-later
// The least that a telephone call costs a program that wakes up for each of its parts: one thread counts a
// timer of 10 ms, another one receives and sends a packet of 20 ms of mu-law, with a real-time priority if
// that is allowed. Prints its port. The first packet begins a call: it is answered with a packet after it has
// gone through a thread that decides. A second without a packet ends the call. Runs until it is killed.
#include <arpa/inet.h>
#include <sched.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <semaphore>
#include <thread>

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

constexpr auto kTick = 10ms;
constexpr auto kPacket = 20ms;
constexpr int kPacketsWithout = 50;  ///< a second
constexpr std::size_t kHeaderBytes = 12, kPacketBytes = kHeaderBytes + 160;

void Tick(const std::stop_token& stop) {
  for (auto next = SteadyClock::now(); !stop.stop_requested();) std::this_thread::sleep_until(next += kTick);
}

void Talk(int udp, sockaddr_in peer) {
  std::array<std::uint8_t, kPacketBytes> silence;
  silence.fill(0xFF);
  silence[0] = 0x80;  // RTP version 2
  silence[1] = 0;     // PCMU
  std::array<std::uint8_t, 1500> received{};
  auto next = SteadyClock::now();
  for (int without = 0; without < kPacketsWithout; ++without) {
    sendto(udp, silence.data(), silence.size(), 0, reinterpret_cast<sockaddr*>(&peer), sizeof peer);
    std::this_thread::sleep_until(next += kPacket);
    while (recv(udp, received.data(), received.size(), MSG_DONTWAIT) > 0) without = 0;
  }
}

/// Calls that come in and calls that are to be answered.
std::binary_semaphore offered{0}, accepted{0};

void Decide() {
  for (;; accepted.release()) offered.acquire();
}

}  // namespace

int main() {
  const int udp = socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const place = reinterpret_cast<sockaddr*>(&address);
  if (bind(udp, place, size) != 0 || getsockname(udp, place, &size) != 0) return 1;
  std::printf("%d\n", ntohs(address.sin_port));
  std::fflush(stdout);
  std::thread(Decide).detach();
  const sched_param priority{.sched_priority = 1};
  sched_setscheduler(0, SCHED_RR, &priority);
  while (recvfrom(udp, nullptr, 0, 0, place, &size) >= 0) {
    offered.release();
    accepted.acquire();
    const std::jthread ticking(Tick);
    Talk(udp, address);
  }
  return 1;
}
