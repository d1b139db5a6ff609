// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/server_path.h"

#include <algorithm>
#include <utility>

#include "adapters/line/sip/connection_guard.h"

namespace orven {
namespace {

using std::chrono::seconds;

/// A server without RFC 5626 need not answer probes: the connection is watched, not probed.
constexpr std::uint32_t kWatchOnly = 24 * 3600;

/// Between two probes of a connection when the server does not say (RFC 5626, section 4.4.1).
constexpr std::uint32_t kUsualProbe = 120;

/// The longest time after its start in which the first probe of a datagram path fails: the interval, and a
/// STUN transaction (RFC 5389, section 7.2.1: 39.5 s).
constexpr seconds kFirstProbe{40};

/// How often the server wants probes, in seconds (RFC 5626, section 5.4); 0: it does not support them.
std::uint32_t ProbeInterval(const sip_msg& response, std::uint32_t usual) {
  if (const sip_hdr* const told = sip_msg_hdr(&response, SIP_HDR_FLOW_TIMER)) {
    return std::clamp(pl_u32(&told->val), 1U, kWatchOnly);
  }
  return sip_msg_hdr_has_value(&response, SIP_HDR_REQUIRE, "outbound") ? usual : 0;
}

}  // namespace

ServerPath::ServerPath(std::chrono::milliseconds keep_alive, std::function<void()> broken)
    : keep_alive_(keep_alive), broken_(std::move(broken)), timer_([this] { SendDatagram(); }) {}

void ServerPath::Keep(sip& stack, const sa& server, const sip_msg& response) {
  Leave();
  since_ = std::chrono::steady_clock::now();
  if (StartProbes(stack, response)) return;
  stack_ = &stack;
  server_ = server;
  timer_.StartPeriodic(keep_alive_);
}

/// False when the path has to be kept open by datagrams without an answer.
bool ServerPath::StartProbes(sip& stack, const sip_msg& response) {
  const bool connected = response.tp != SIP_TRANSP_UDP;
  const auto between = std::chrono::ceil<seconds>(keep_alive_).count();
  std::uint32_t interval =
      ProbeInterval(response, connected ? kUsualProbe : static_cast<std::uint32_t>(between));
  if (connected) {
    connection_ = tcp_conn_fd(sip_msg_tcpconn(&response));
    if (interval == 0) interval = kWatchOnly;
  }
  if (interval == 0 || (!connected && !probes_datagrams_)) return false;
  return sip_keepalive_start(
             &kept_, &stack, &response, interval,
             [](int, void* self) { static_cast<ServerPath*>(self)->Failed(); }, this) == 0;
}

void ServerPath::Failed() {
  const bool datagrams = std::exchange(connection_, -1) < 0;
  if (datagrams && std::chrono::steady_clock::now() < since_ + keep_alive_ + kFirstProbe)
    probes_datagrams_ = false;
  broken_();
}

void ServerPath::Leave() {
  kept_ = static_cast<sip_keepalive*>(mem_deref(kept_));
  connection_ = -1;
  stack_ = nullptr;
  timer_.Stop();
}

bool ServerPath::Drop() {
  if (kept_ == nullptr || connection_ < 0) return false;
  CloseConnection(connection_);
  return true;
}

/// An empty message (RFC 5626, section 4.4.1), so that routers between the server and us keep the path open.
void ServerPath::SendDatagram() {
  const LibrePtr<mbuf> empty(mbuf_alloc(4));
  if (stack_ == nullptr || empty == nullptr || mbuf_write_str(empty.get(), "\r\n\r\n") != 0) return;
  mbuf_set_pos(empty.get(), 0);
  (void)sip_send(stack_, nullptr, SIP_TRANSP_UDP, &server_, empty.get());
}

}  // namespace orven
