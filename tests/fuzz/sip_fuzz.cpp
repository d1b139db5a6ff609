// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever datagrams come to the port of a SIP line: a whole line takes them, answers and has its calls.
// Links: orven_line_sip orven_line_service
#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/line/service/caller_text.h"
#include "adapters/line/service/line_audio.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/sip_agent.h"
#include "base/unicode.h"
#include "fuzz/input.h"

// Not among the headers that the library's main one brings.
#define DEBUG_MODULE "orven"
#define DEBUG_LEVEL 0
#include <re/re_dbg.h>

namespace {

using namespace orven;
using namespace orven::fuzz;

constexpr std::uint16_t kLinePort = 5060;
constexpr std::string_view kKeys = "0123456789*#ABCD";

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

/// Nothing that the line sends leaves this process: it gets a network of its own, with nothing but itself in
/// it.
bool LeaveTheNetwork() {
  if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
  const int any = socket(AF_INET, SOCK_DGRAM, 0);
  ifreq request{};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP | IFF_RUNNING;
  const bool up = ioctl(any, SIOCSIFFLAGS, &request) == 0;
  close(any);
  return up;
}

/// The caller's end of the network, and what it heard.
class Telephone {
 public:
  Telephone() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
    const sockaddr_in own = Loopback(4000);
    Require(bind(socket_, reinterpret_cast<const sockaddr*>(&own), sizeof(own)) == 0);
  }
  ~Telephone() { close(socket_); }
  Telephone(const Telephone&) = delete;
  Telephone& operator=(const Telephone&) = delete;

  /// "TAG" stands for what the line gave the call, which no input can know.
  void Send(std::string datagram) {
    for (std::size_t at = 0; (at = datagram.find("TAG", at)) != std::string::npos; at += tag_.size()) {
      datagram.replace(at, 3, tag_);
    }
    SendTo(kLinePort, datagram);
  }

  /// A packet to where the line wants the call's sound. Its zero bytes are written as ones.
  void SendSound(std::string packet) {
    std::replace(packet.begin(), packet.end(), '\1', '\0');
    if (sound_port_ != 0) SendTo(sound_port_, packet);
  }

  void Hear() {
    for (;;) {
      const ssize_t got = recv(socket_, buffer_.data(), buffer_.size(), 0);
      if (got < 0) return;
      Take(static_cast<std::size_t>(got));
    }
  }

 private:
  void SendTo(std::uint16_t port, const std::string& datagram) const {
    const sockaddr_in line = Loopback(port);
    (void)sendto(socket_, datagram.data(), datagram.size(), 0, reinterpret_cast<const sockaddr*>(&line),
                 sizeof(line));
  }

  /// What the line sends is a message, and all of it.
  void Take(std::size_t size) {
    if (size == 4 || (buffer_[0] & 0xC0U) == 0x80U) return;  // a sign of life, or sound
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
    if (const auto media = body.find("m=audio "); media != body.npos) {
      sound_port_ = static_cast<std::uint16_t>(std::strtoul(body.c_str() + media + 8, nullptr, 10));
    }
  }

  int socket_;
  std::array<std::uint8_t, 65536> buffer_{};
  std::string tag_ = "none";
  std::uint16_t sound_port_ = 0;
};

/// Holds the line to the contract of its events.
class Listener : public LineDriverEvents {
 public:
  void Offered(CallNumber call) override {
    Require(!up_ && call == ++call_);
    up_ = true;
    answered_ = connected_ = disconnected_ = false;
    rings_ = 0;
  }
  void Ring(CallNumber call, std::int32_t count) override {
    Require(up_ && call == call_ && count == ++rings_);
  }
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override {
    Require(up_ && call == call_);
    for (const std::string& text : {name, number}) {
      const std::string clean = CleanCallerText(text);
      Require(IsUtf8(text) && IsUtf8(clean) && clean.size() <= 4 * kMaxCallerText);
      for (const char letter : clean)
        Require(static_cast<unsigned char>(letter) >= ' ' && letter != '"' && letter != '\x7F');
    }
  }
  void RequestDone(std::int32_t request, std::int32_t result) override {
    Require(--requests_[request] == 0);
    if (result == kTelephonyOk) answered_ = true;
  }
  void Connected(CallNumber call) override {
    Require(up_ && call == call_ && answered_ && !connected_);
    connected_ = true;
  }
  void Digit(CallNumber call, char digit) override {
    Require(connected_ && call == call_ && monitored && kKeys.find(digit) != std::string_view::npos);
  }
  void Disconnected(CallNumber call) override {
    Require(up_ && call == call_ && answered_ && !disconnected_);
    disconnected_ = true;
  }
  void Idle(CallNumber call) override {
    Require(up_ && call == call_);
    up_ = false;
  }

  std::int32_t NextRequest() {
    ++requests_[++request_];
    return request_;
  }
  /// After the line has been closed.
  void RequireEnd() const {
    Require(!up_);
    for (const auto& [request, open] : requests_) Require(open == 0);
  }
  CallNumber Call() const { return call_; }

  bool monitored = false;

 private:
  CallNumber call_ = 0;
  bool up_ = false;
  bool answered_ = false;
  bool connected_ = false;
  bool disconnected_ = false;
  std::int32_t rings_ = 0;
  std::int32_t request_ = 0;
  std::map<std::int32_t, int> requests_;
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

/// What our side does: "a" answers, "d" drops, "m" listens for keys or no more.
void Act(SipAgent& agent, Listener& listener, char what) {
  if (what == 'a') agent.Answer(listener.Call(), listener.NextRequest());
  if (what == 'd') agent.Drop(listener.Call(), listener.NextRequest());
  if (what != 'm') return;
  listener.monitored = !listener.monitored;
  agent.MonitorDigits(listener.Call(), listener.monitored);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  if (!LeaveTheNetwork()) {
    std::puts("sip: left out, because this machine gives no process a network of its own");
    std::exit(0);
  }
  dbg_init(DBG_EMERG, DBG_NONE);
  Require(libre_init() == 0);
  return 0;
}

/// Datagrams, and what our side does ("!" and a letter), with zero bytes between; the first byte chooses what
/// is encrypted.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Telephone telephone;
  Listener listener;
  LineAudio audio;
  SipLineSettings settings;
  settings.listen = "127.0.0.1:" + std::to_string(kLinePort);
  settings.srtp = static_cast<SrtpUse>(data[0] % 3);
  {
    SipAgent agent(settings, audio, listener);
    Require(!agent.Start());
    std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    for (int steps = 0; !rest.empty() && steps < 24; ++steps) {
      const std::string_view step = rest.substr(0, rest.find('\0'));
      rest.remove_prefix(std::min(step.size() + 1, rest.size()));
      if (step.starts_with('!')) {
        for (const char what : step.substr(1, 4)) Act(agent, listener, what);
      } else if (step.starts_with('~')) {
        telephone.SendSound(std::string(step.substr(1)));
        RunLoop();
      } else {
        telephone.Send(std::string(step));
        RunLoop();
      }
      telephone.Hear();
    }
  }
  telephone.Hear();
  listener.RequireEnd();
  return 0;
}
