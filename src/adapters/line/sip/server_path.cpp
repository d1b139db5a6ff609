// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/server_path.h"

#include <algorithm>
#include <utility>

#include "adapters/line/sip/connection_guard.h"

namespace orven {
namespace {

using std::chrono::seconds;

/// Answers of a server that has no registration of a user (RFC 3261, sections 21.4.5 and 21.4.18).
constexpr int kNotFound = 404, kUnavailable = 480;

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

ServerPath::ServerPath(std::string user, Limits limits, std::function<void()> broken)
    : user_(std::move(user)),
      limits_(limits),
      broken_(std::move(broken)),
      timer_([this] { SendDatagram(); }),
      patience_([this] { Answered(0); }) {}

void ServerPath::Keep(sip& stack, const sa& server, const sip_msg& response) {
  Leave();
  since_ = std::chrono::steady_clock::now();
  if (StartProbes(stack, response)) return;
  if (!sa_cmp(&server, &server_, SA_ALL)) {
    answers_.reset();
    about_us_ = true;
  }
  stack_ = &stack;
  server_ = server;
  knows_us_ = false;
  timer_.StartPeriodic(limits_.keep_alive);
  SendDatagram();
}

/// False when the path has to be kept open by datagrams.
bool ServerPath::StartProbes(sip& stack, const sip_msg& response) {
  const bool connected = response.tp != SIP_TRANSP_UDP;
  const auto between = std::chrono::ceil<seconds>(limits_.keep_alive).count();
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
  if (datagrams && std::chrono::steady_clock::now() < since_ + limits_.keep_alive + kFirstProbe)
    probes_datagrams_ = false;
  broken_();
}

void ServerPath::Leave() {
  kept_ = static_cast<sip_keepalive*>(mem_deref(kept_));
  question_ = static_cast<struct sip_request*>(mem_deref(question_));
  connection_ = -1;
  stack_ = nullptr;
  timer_.Stop();
  patience_.Stop();
}

bool ServerPath::Drop() {
  if (kept_ == nullptr || connection_ < 0) return false;
  CloseConnection(connection_);
  return true;
}

/// So that routers between the server and us keep the path open: a question, which tells whether the server
/// is still there, or for one that does not answer questions an empty message (RFC 5626, section 4.4.1).
void ServerPath::SendDatagram() {
  if (answers_.value_or(true)) return Ask();
  const LibrePtr<mbuf> empty(mbuf_alloc(4));
  if (stack_ == nullptr || empty == nullptr || mbuf_write_str(empty.get(), "\r\n\r\n") != 0) return;
  mbuf_set_pos(empty.get(), 0);
  (void)sip_send(stack_, nullptr, SIP_TRANSP_UDP, &server_, empty.get());
}

/// Asks about us: a server that has restarted may have forgotten its registrations, and nobody else would
/// tell. Any other answer will do (RFC 3261, section 11), and nobody is named who would have to prove it.
void ServerPath::Ask() {
  if (stack_ == nullptr || question_ != nullptr) return;
  const std::string server = "sip:" + AddressText(server_) + ";transport=udp";
  const std::string& about = about_us_ ? user_ : server;
  const std::string name = RandomName();
  const pl text{server.data(), server.size()};
  uri route{};
  if (uri_decode(&route, &text) != 0) return;
  const auto answered = [](int error, const sip_msg* response, void* self) {
    if (error != 0) return static_cast<ServerPath*>(self)->Answered(0);
    if (response->scode >= 200) static_cast<ServerPath*>(self)->Answered(response->scode);
  };
  patience_.StartOnce(limits_.patience);
  (void)sip_requestf(&question_, stack_, true, "OPTIONS", about.c_str(), &route, nullptr, nullptr, answered,
                     this,
                     "To: <%s>\r\nFrom: <sip:anonymous@anonymous.invalid>;tag=%s\r\nCall-ID: %s\r\n"
                     "CSeq: 1 OPTIONS\r\nUser-Agent: ORVEN\r\nContent-Length: 0\r\n\r\n",
                     about.c_str(), name.c_str(), name.c_str());
}

/// `status` is 0 without an answer.
void ServerPath::Answered(int status) {
  patience_.Stop();
  question_ = static_cast<struct sip_request*>(mem_deref(question_));
  if (status == 0 && answers_ != true) {
    if (!std::exchange(about_us_, false)) answers_ = false;
    return;
  }
  const bool forgotten = status == kNotFound || status == kUnavailable;
  if (status != 0 && (!forgotten || !knows_us_)) {
    answers_ = true;
    knows_us_ = !forgotten;
    return;
  }
  answers_.reset();  // it may be tired of questions only: then it must not be registered at again and again
  Leave();
  broken_();
}

}  // namespace orven
