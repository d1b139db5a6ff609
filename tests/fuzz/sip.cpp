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
#include <map>
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

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

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

  /// "TAG" stands for the tag that the line gave the call.
  void Send(std::string datagram) const {
    for (std::size_t at = 0; (at = datagram.find("TAG", at)) != std::string::npos; at += tag_.size())
      datagram.replace(at, 3, tag_);
    SendTo(kLinePort, datagram);
  }
  /// A packet to the line's RTP port; bytes 1 stand for 0.
  void SendSound(std::string packet) const {
    std::replace(packet.begin(), packet.end(), '\1', '\0');
    if (sound_port_ != 0) SendTo(sound_port_, packet);
  }
  void Hear() {
    for (ssize_t got = 0; (got = recv(socket_, buffer_.data(), buffer_.size(), 0)) >= 0;)
      if (got != 4 && (buffer_[0] & 0xC0U) != 0x80U)
        TakeMessage(static_cast<std::size_t>(got));  // keep-alive, RTP
  }

 private:
  void SendTo(std::uint16_t port, const std::string& datagram) const {
    const sockaddr_in line = Loopback(port);
    (void)sendto(socket_, datagram.data(), datagram.size(), 0, reinterpret_cast<const sockaddr*>(&line),
                 sizeof(line));
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
      sound_port_ = static_cast<std::uint16_t>(std::strtoul(body.c_str() + media + 8, nullptr, 10));
  }

  int socket_;
  std::array<std::uint8_t, 65536> buffer_{};
  std::string tag_ = "none";
  std::uint16_t sound_port_ = 0;
};

/// Requires the order of events that a line promises.
class Listener : public LineDriverEvents {
 public:
  void Offered(CallNumber call) override {
    Require(state_ == State::kIdle && call == ++call_);
    state_ = State::kRinging;
    rings_ = 0;
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
    if (result == kTelephonyOk && state_ == State::kRinging) state_ = State::kAnswered;
  }
  void Connected(CallNumber call) override { Follow(call, State::kAnswered, State::kConnected); }
  void Digit(CallNumber call, char digit) override {
    Require(IsUp(call) && state_ == State::kConnected && monitored);
    Require(std::string_view("0123456789*#ABCD").find(digit) != std::string_view::npos);
  }
  void Disconnected(CallNumber call) override {
    Require(IsUp(call) && (state_ == State::kAnswered || state_ == State::kConnected));
    state_ = State::kDisconnected;
  }
  void Idle(CallNumber call) override {
    Require(IsUp(call));
    state_ = State::kIdle;
  }

  std::int32_t NextRequest() {
    open_requests_[++request_] = true;
    return request_;
  }
  void RequireEnd() const { Require(state_ == State::kIdle && open_requests_.empty()); }
  CallNumber Call() const { return call_; }

  bool monitored = false;

 private:
  enum class State { kIdle, kRinging, kAnswered, kConnected, kDisconnected };

  bool IsUp(CallNumber call) const { return state_ != State::kIdle && call == call_; }
  void Follow(CallNumber call, State from, State to) {
    Require(IsUp(call) && state_ == from);
    state_ = to;
  }

  CallNumber call_ = 0;
  State state_ = State::kIdle;
  std::int32_t rings_ = 0, request_ = 0;
  std::map<std::int32_t, bool> open_requests_;
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

/// Our side: "a" answers, "d" hangs up, "m" turns listening for keys on or off.
void Act(SipAgent& agent, Listener& listener, char what) {
  if (what == 'a') agent.Answer(listener.Call(), listener.NextRequest());
  if (what == 'd') agent.Drop(listener.Call(), listener.NextRequest());
  if (what == 'm') agent.MonitorDigits(listener.Call(), listener.monitored = !listener.monitored);
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
        for (const char what : step.substr(1, 4)) Act(agent, listener, what);
      } else {
        step.starts_with('~') ? telephone.SendSound(step.substr(1)) : telephone.Send(step);
        RunLoop();
      }
      telephone.Hear();
    }
  }
  telephone.Hear();
  listener.RequireEnd();
}

}  // namespace orven::fuzz
