// SPDX-License-Identifier: GPL-3.0-or-later
// Any datagrams to the port of a SIP line: each message of the line is whole, and its calls' events are in
// order.
#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>

#include "adapters/line/service/caller_text.h"
#include "adapters/line/service/line_audio.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/sip_agent.h"
#include "base/unicode.h"
#include "fuzz/fuzz.h"

// Not among the headers that the library's main one brings.
#define DEBUG_MODULE "orven"
#define DEBUG_LEVEL 0
#include <re/re_dbg.h>

namespace orven::fuzz {
namespace {

constexpr std::uint16_t kLinePort = 5060, kTelephonePort = 4000;

/// Moves the process into a network of its own: nothing that the line sends leaves it.
bool Prepare() {
  if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
    std::puts("sip: skipped, because this machine gives no process its own network");
    return false;
  }
  const int any = socket(AF_INET, SOCK_DGRAM, 0);
  ifreq request{};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP | IFF_RUNNING;
  Require(ioctl(any, SIOCSIFFLAGS, &request) == 0);
  close(any);
  dbg_init(DBG_EMERG, DBG_NONE);
  Require(libre_init() == 0);
  return true;
}

/// The caller's end of the network.
class Telephone {
 public:
  Telephone() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
    const sockaddr_in own = Loopback(kTelephonePort);
    Require(bind(socket_, reinterpret_cast<const sockaddr*>(&own), sizeof(own)) == 0);
  }
  ~Telephone() { close(socket_); }
  Telephone(const Telephone&) = delete;
  Telephone& operator=(const Telephone&) = delete;

  /// A message to the line, in which "TAG" stands for the tag that the line gave the call; behind "~" a
  /// packet to the line's RTP port, in which bytes 1 stand for 0.
  void Send(std::string datagram) const {
    const bool packet = datagram.starts_with('~');
    if (packet) std::replace(datagram.begin(), datagram.end(), '\1', '\0');
    for (std::size_t at = 0; !packet && (at = datagram.find("TAG", at)) != datagram.npos; at += tag_.size())
      datagram.replace(at, 3, tag_);
    const sockaddr_in line = Loopback(packet ? rtp_port_ : kLinePort);
    (void)sendto(socket_, datagram.data() + packet, datagram.size() - packet, 0,
                 reinterpret_cast<const sockaddr*>(&line), sizeof(line));
  }

  void Hear() {
    for (ssize_t got = 0; (got = recv(socket_, buffer_.data(), buffer_.size(), 0)) >= 0;)
      if (got != 4 && (buffer_[0] & 0xC0U) != 0x80U)
        TakeMessage(static_cast<std::size_t>(got));  // keep-alive, RTP
  }

 private:
  static sockaddr_in Loopback(std::uint16_t port) {
    return {AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
  }

  void TakeMessage(std::size_t size) {
    const LibrePtr<mbuf> buffer(mbuf_alloc(size));
    Require(mbuf_write_mem(buffer.get(), buffer_.data(), size) == 0);
    mbuf_set_pos(buffer.get(), 0);
    sip_msg* decoded = nullptr;
    Require(sip_msg_decode(&decoded, buffer.get()) == 0);
    const LibrePtr<sip_msg> message(decoded);
    Require(message->req || (message->scode >= 100 && message->scode < 700));
    Require(pl_u32(&message->clen) == mbuf_get_left(buffer.get()));
    if (pl_isset(&message->to.tag)) tag_ = std::string(View(message->to.tag)).substr(0, 64);
    const std::string body(reinterpret_cast<const char*>(mbuf_buf(buffer.get())),
                           mbuf_get_left(buffer.get()));
    if (const auto media = body.find("m=audio "); media != body.npos)
      rtp_port_ = static_cast<std::uint16_t>(std::strtoul(body.c_str() + media + 8, nullptr, 10));
  }

  int socket_;
  std::array<std::uint8_t, 65536> buffer_{};
  std::string tag_ = "none";
  std::uint16_t rtp_port_ = 0;
};

/// Requires the order of events that a line promises.
class Listener : public LineDriverEvents {
 public:
  void Offered(CallNumber call) override {
    ++call_;
    rings_ = 0;
    Go(call, "idle", "ringing");
  }
  void Ring(CallNumber call, std::int32_t count) override { Require(IsUp(call) && count == ++rings_); }
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override {
    Require(IsUp(call));
    for (const std::string& text : {name, number}) {
      const std::string clean = CleanCallerText(text);
      Require(IsUtf8(text) && IsUtf8(clean) && clean.size() <= 4 * kMaxCallerText);
      for (const char c : clean) Require(static_cast<unsigned char>(c) >= ' ' && c != '"' && c != '\x7F');
    }
  }
  void RequestDone(std::int32_t request, std::int32_t result) override {
    Require(open_requests_.erase(request) == 1);
    if (result == kTelephonyOk && state_ == "ringing") state_ = "answered";
  }
  void Connected(CallNumber call) override { Go(call, "answered", "connected"); }
  void Digit(CallNumber call, char digit) override {
    Require(call == call_ && state_ == "connected" && monitored_);
    Require(std::string_view("0123456789*#ABCD").find(digit) != std::string_view::npos);
  }
  void Disconnected(CallNumber call) override { Go(call, "answered connected", "disconnected"); }
  void Idle(CallNumber call) override { Go(call, "ringing answered connected disconnected", "idle"); }

  /// Our side: "a" answers, "d" hangs up, "m" turns listening for keys on or off.
  void Act(SipAgent& agent, char what) {
    if (what == 'm') agent.MonitorDigits(call_, monitored_ = !monitored_);
    if (what != 'a' && what != 'd') return;
    open_requests_.insert(++request_);
    what == 'a' ? agent.Answer(call_, request_) : agent.Drop(call_, request_);
  }
  void RequireEnd() const { Require(state_ == "idle" && open_requests_.empty()); }

 private:
  bool IsUp(CallNumber call) const { return state_ != "idle" && call == call_; }
  void Go(CallNumber call, std::string_view from, std::string_view to) {
    Require(call == call_ && from.find(state_) != from.npos);
    state_ = to;
  }

  CallNumber call_ = 0;
  std::string_view state_ = "idle";
  std::int32_t rings_ = 0, request_ = 0;
  std::set<std::int32_t> open_requests_;
  bool monitored_ = false;
};

/// Lets the library take what has arrived.
void RunLoop() {
  tmr timer{};
  tmr_init(&timer);
  tmr_start(
      &timer, 0, [](void*) { re_cancel(); }, nullptr);
  (void)re_main(nullptr);
  tmr_cancel(&timer);
}

}  // namespace

/// "!" begins acts of our side, "~" an RTP packet.
void Sip(Bytes input) {
  static const bool prepared = Prepare();
  if (!prepared || input.empty()) return;
  Telephone telephone;
  Listener listener;
  LineAudio audio;
  SipLineSettings settings;
  settings.listen = "127.0.0.1:" + std::to_string(kLinePort);
  settings.srtp = static_cast<SrtpUse>(input.front() % 3);
  {
    SipAgent agent(settings, audio, listener);
    Require(!agent.Start());
    std::string rest = TextOf(input.subspan(1));
    for (int steps = 0; !rest.empty() && steps < 24; ++steps) {
      const std::string step = rest.substr(0, rest.find('\0'));
      rest.erase(0, step.size() + 1);
      if (step.starts_with('!')) {
        for (const char what : step.substr(1, 4)) listener.Act(agent, what);
      } else {
        telephone.Send(step);
        RunLoop();
      }
      telephone.Hear();
    }
  }
  telephone.Hear();
  listener.RequireEnd();
}

}  // namespace orven::fuzz
