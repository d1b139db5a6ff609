// SPDX-License-Identifier: GPL-3.0-or-later
// Sends any datagrams to the port of a SIP line. Every message that the line sends must be valid, and the
// events of its calls must be in order.
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <regex>
#include <set>
#include <string>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/sip_agent.h"
#include "base/text.h"
#include "base/unicode.h"
#include "fuzz/fuzz.h"

// re_dbg.h is not included by the library's main header.
#define DEBUG_MODULE "orven"
#define DEBUG_LEVEL 0
#include <re/re_dbg.h>

namespace orven::fuzz {
namespace {

/// Moves the process into a separate network namespace, so that nothing that the line sends leaves it.
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

/// Lets the library process everything that has arrived.
void RunLoop() {
  tmr timer{};
  tmr_init(&timer);
  tmr_start(
      &timer, 0, [](void*) { re_cancel(); }, nullptr);
  (void)re_main(nullptr);
  tmr_cancel(&timer);
}

/// The caller's telephone.
class Telephone {
 public:
  Telephone() {
    sa own{};
    (void)sa_set_str(&own, "127.0.0.1", 4000);
    udp_sock* made = nullptr;
    Require(udp_listen(&made, &own, Take, this) == 0);
    udp_rxsz_set(made, 65536);
    socket_.reset(made);
  }

  /// Sends a message to the line, with "TAG" replaced by the tag that the line gave the call. From
  /// "~PACKET" it sends PACKET to the line's RTP port, with bytes of 1 replaced by 0.
  void Send(std::string datagram) const {
    const bool packet = datagram.starts_with('~');
    if (packet) std::replace(datagram.begin(), datagram.end(), '\1', '\0');
    for (std::size_t at = 0; !packet && (at = datagram.find("TAG", at)) != datagram.npos; at += tag_.size())
      datagram.replace(at, 3, tag_);
    sa line{};
    Require(sa_set_str(&line, "127.0.0.1", packet ? rtp_port_ : 5060) == 0);
    const LibrePtr<mbuf> buffer(mbuf_alloc(datagram.size() + 1));
    Require(mbuf_write_mem(buffer.get(), reinterpret_cast<const std::uint8_t*>(datagram.data()),
                           datagram.size()) == 0);
    mbuf_set_pos(buffer.get(), packet ? 1 : 0);
    if (sa_port(&line) != 0) (void)udp_send(socket_.get(), &line, buffer.get());
  }

  /// Receives everything that the line has sent.
  void Hear() {
    do {
      heard_ = false;
      RunLoop();
    } while (heard_);
  }

 private:
  /// Requires that a message from the line is valid. Ignores RTP and the four-byte packets that keep NAT
  /// bindings open.
  static void Take(const sa* /*line*/, mbuf* datagram, void* self) {
    auto& [socket, heard, tag, rtp_port] = *static_cast<Telephone*>(self);
    heard = true;
    if (mbuf_get_left(datagram) == 4 || (*mbuf_buf(datagram) & 0xC0U) == 0x80U) return;
    sip_msg* decoded = nullptr;
    Require(sip_msg_decode(&decoded, datagram) == 0);
    const LibrePtr<sip_msg> message(decoded);
    Require(message->req || (message->scode >= 100 && message->scode < 700));
    Require(pl_u32(&message->clen) == mbuf_get_left(datagram));
    if (pl_isset(&message->to.tag)) tag = std::string(View(message->to.tag)).substr(0, 64);
    const std::string body(reinterpret_cast<const char*>(mbuf_buf(datagram)), mbuf_get_left(datagram));
    if (const auto media = body.find("m=audio "); media != body.npos)
      rtp_port = static_cast<std::uint16_t>(std::strtoul(body.c_str() + media + 8, nullptr, 10));
  }

  LibrePtr<udp_sock> socket_;
  bool heard_ = false;
  std::string tag_ = "none";
  std::uint16_t rtp_port_ = 0;
};

/// Records each event as a letter; a diversion like the caller.
struct Listener {
  void Take(const LineEvent& event) {
    using Kind = LineEvent::Kind;
    if (event.kind == Kind::Proc) Require(open_requests.erase(event.number) == 1);
    if (event.kind == Kind::Proc && event.result != kTelephonyOk) return;
    if (event.kind == Kind::InCommingCall) ++call;
    if (event.kind == Kind::MonitorDigit)
      Require(std::string_view("0123456789*#ABCD").find(event.digit) != std::string_view::npos);
    Require(event.kind == Kind::Proc || event.call == call);
    Require(IsUtf8(event.name) && IsUtf8(event.text) && IsUtf8(CleanCallerText(event.name)));
    events += "ornnxckdi-"[static_cast<int>(event.kind)];
  }

  CallNumber call = 0;
  std::set<std::int32_t> open_requests;
  std::string events;
};

/// The order of a call's events: offered, then perhaps answered, connected and disconnected, then idle.
const std::regex kCalls("x*(o[rn]*(x[rnx]*(c[rnkx]*)?(d[rnx]*)?)?ix*)*");

}  // namespace

/// "!" begins our actions: "a" answers, "d" hangs up, "m" switches key detection on or off. "~" begins an RTP
/// packet.
void Sip(Bytes input) {
  static const bool prepared = Prepare();
  if (!prepared || input.empty()) return;
  Telephone telephone;
  Listener listener;
  LineAudio audio;
  SipLineSettings settings;
  settings.listen = "127.0.0.1:5060";
  settings.srtp = static_cast<SrtpUse>(input.front() % 3);
  {
    SipAgent agent(settings, audio, [&](const LineEvent& event) { listener.Take(event); });
    Require(!agent.Start());
    std::string rest = TextOf(input.subspan(1));
    std::int32_t request = 0;
    bool monitored = false;
    for (int steps = 0; !rest.empty() && steps < 24; ++steps) {
      const std::string step = rest.substr(0, rest.find('\0'));
      rest.erase(0, step.size() + 1);
      if (step.starts_with('!')) {
        for (const char what : step.substr(1, 4)) {
          if (what == 'm') agent.MonitorDigits(listener.call, monitored = !monitored);
          if (what != 'a' && what != 'd') continue;
          listener.open_requests.insert(++request);
          what == 'a' ? agent.Answer(listener.call, request) : agent.Drop(listener.call, request);
        }
      } else {
        telephone.Send(step);
        RunLoop();
      }
      telephone.Hear();
    }
  }
  telephone.Hear();
  Require(std::regex_match(listener.events, kCalls) && listener.open_requests.empty());
}

}  // namespace orven::fuzz
