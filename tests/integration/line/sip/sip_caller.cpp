// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/line/sip/sip_caller.h"

#include <algorithm>
#include <random>

namespace orven::test {
namespace {

std::string RandomName() {
  static std::atomic<std::uint64_t> counter{std::random_device{}()};
  return std::to_string(++counter);
}

SipMessage Parse(const std::string& text) {
  SipMessage message;
  message.text = text;
  if (text.starts_with("SIP/2.0 ")) {
    message.status = std::stoi(text.substr(8, 3));
    const std::string cseq = message.Header("CSeq");
    message.method = cseq.substr(cseq.find(' ') + 1);
  } else {
    message.method = text.substr(0, text.find(' '));
  }
  return message;
}

}  // namespace

std::string SipMessage::Header(const std::string& name) const {
  const auto at = text.find("\r\n" + name + ": ");
  if (at == std::string::npos) return {};
  const auto begin = at + name.size() + 4;
  return text.substr(begin, text.find("\r\n", begin) - begin);
}

std::string SipMessage::Body() const {
  const auto at = text.find("\r\n\r\n");
  return at == std::string::npos ? "" : text.substr(at + 4);
}

SipCaller::SipCaller(std::uint16_t line_port, Over over)
    : line_port_(line_port),
      over_(over),
      sip_(over == Over::kUdp ? Socket::Udp() : Socket::TcpTo(line_port)),
      rtp_(Socket::Udp()),
      call_id_("call-" + RandomName()) {}

std::string SipCaller::Sdp(const Offer& offer) const {
  return "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN " + offer.address_type + " " + offer.address +
         "\r\nt=0 0\r\nm=audio " + std::to_string(rtp_.Port()) + " RTP/AVP " + offer.formats +
         "\r\na=rtpmap:101 telephone-event/8000\r\na=" + offer.direction + "\r\n";
}

std::string SipCaller::Start(const std::string& method, const std::string& branch) const {
  const std::string transport = over_ == Over::kUdp ? "UDP" : "TCP";
  const std::string port = std::to_string(sip_.Port());
  const std::uint32_t number = method == "ACK" || method == "CANCEL" ? invite_cseq_ : cseq_;
  return method + " sip:line@127.0.0.1 SIP/2.0\r\nVia: SIP/2.0/" + transport + " 127.0.0.1:" + port +
         ";branch=" + branch + ";rport\r\nMax-Forwards: 70\r\nFrom: " + from +
         ";tag=caller\r\nTo: <sip:line@127.0.0.1>" +
         (to_tag_.empty() || method == "CANCEL" ? "" : ";tag=" + to_tag_) + "\r\nCall-ID: " + call_id_ +
         "\r\nCSeq: " + std::to_string(number) + " " + method + "\r\nContact: <sip:ann@127.0.0.1:" + port +
         (over_ == Over::kTcp ? ";transport=tcp" : "") + ">\r\n";
}

void SipCaller::Invite(const std::optional<Offer>& offer, const std::string& headers) {
  Request("INVITE", headers + (offer ? "Content-Type: application/sdp\r\n" : ""), offer ? Sdp(*offer) : "");
}

void SipCaller::Request(const std::string& method, const std::string& headers, const std::string& body) {
  ++cseq_;
  const std::string branch = "z9hG4bK" + RandomName();
  if (method == "INVITE") {
    invite_branch_ = branch;
    invite_cseq_ = cseq_;
  }
  Send(Start(method, branch) + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
       body);
}

void SipCaller::Ack(const std::string& body) {
  const std::string type = body.empty() ? "" : "Content-Type: application/sdp\r\n";
  Send(Start("ACK", "z9hG4bK" + RandomName()) + type + "Content-Length: " + std::to_string(body.size()) +
       "\r\n\r\n" + body);
}

void SipCaller::Cancel() {
  Send(Start("CANCEL", invite_branch_) + "Content-Length: 0\r\n\r\n");
}

void SipCaller::SendRaw(const std::string& text) {
  Send(text);
}

void SipCaller::ReplyOk(const SipMessage& request) {
  std::string reply = "SIP/2.0 200 OK\r\n";
  for (const char* name : {"Via", "From", "To", "Call-ID", "CSeq"}) {
    reply += std::string(name) + ": " + request.Header(name) + "\r\n";
  }
  Send(reply + "Content-Length: 0\r\n\r\n");
}

void SipCaller::Send(const std::string& text) {
  if (over_ == Over::kUdp) {
    sip_.SendTo(line_port_, text);
  } else {
    sip_.Send(text);
  }
}

std::optional<SipMessage> SipCaller::Next(milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  for (;;) {
    if (over_ == Over::kTcp) {
      const auto head = pending_.find("\r\n\r\n");
      if (head != std::string::npos) {
        const SipMessage header = Parse(pending_.substr(0, head + 4));
        const std::size_t size = head + 4 + std::stoul("0" + header.Header("Content-Length"));
        if (pending_.size() >= size) {
          const std::string text = pending_.substr(0, size);
          pending_.erase(0, size);
          return Parse(text);
        }
      }
    }
    const auto left = std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return std::nullopt;
    const auto received = sip_.Receive(left);
    if (!received || received->bytes.empty()) return std::nullopt;
    if (over_ == Over::kUdp) return Parse(received->Text());
    pending_ += received->Text();
  }
}

std::optional<SipMessage> SipCaller::WaitStatus(int status, milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (std::chrono::steady_clock::now() < end) {
    auto message = Next(std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now()));
    if (message && message->status == status) return message;
  }
  return std::nullopt;
}

std::optional<SipMessage> SipCaller::WaitRequest(const std::string& method, milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (std::chrono::steady_clock::now() < end) {
    auto message = Next(std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now()));
    if (message && message->status == 0 && message->method == method) return message;
  }
  return std::nullopt;
}

bool SipCaller::TakeAnswer() {
  for (;;) {
    const auto answer = WaitStatus(200);
    if (!answer) return false;
    if (answer->method != "INVITE") continue;
    const std::string to = answer->Header("To");
    to_tag_ = to.substr(to.find(";tag=") + 5);
    const auto at = answer->text.find("m=audio ");
    if (at == std::string::npos) return false;
    line_rtp_port_ = static_cast<std::uint16_t>(std::stoi(answer->text.substr(at + 8)));
    return true;
  }
}

std::vector<std::uint8_t> RtpPacketBytes(std::uint8_t type, bool marker, std::uint16_t sequence,
                                         std::uint32_t timestamp, std::uint32_t ssrc,
                                         const std::vector<std::uint8_t>& payload) {
  std::vector<std::uint8_t> packet{0x80, static_cast<std::uint8_t>((marker ? 0x80 : 0) | type)};
  packet.push_back(static_cast<std::uint8_t>(sequence >> 8));
  packet.push_back(static_cast<std::uint8_t>(sequence));
  for (const std::uint32_t word : {timestamp, ssrc}) {
    for (int shift = 24; shift >= 0; shift -= 8) packet.push_back(static_cast<std::uint8_t>(word >> shift));
  }
  packet.insert(packet.end(), payload.begin(), payload.end());
  return packet;
}

RtpTalker::RtpTalker(Socket& socket, std::uint16_t port, std::uint8_t type, std::vector<std::uint8_t> bytes,
                     std::uint32_t ssrc)
    : thread_([this, &socket, port, type, ssrc, bytes = std::move(bytes)] {
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t i = 0; (i + 1) * 160 <= bytes.size() && !stop_; ++i) {
          std::this_thread::sleep_until(start + i * milliseconds(20));
          const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(i * 160);
          socket.SendTo(port,
                        RtpPacketBytes(type, i == 0, static_cast<std::uint16_t>(i),
                                       static_cast<std::uint32_t>(i * 160), ssrc, {begin, begin + 160}));
        }
      }) {}

RtpTalker::~RtpTalker() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
}

std::vector<std::uint8_t> NoiseBytes(std::size_t blocks, std::uint32_t seed) {
  std::minstd_rand random(seed + 1);
  std::vector<std::uint8_t> bytes(blocks * 160);
  for (std::uint8_t& byte : bytes) {
    do {
      byte = static_cast<std::uint8_t>(random() >> 8);
    } while (byte == 0x7F || byte == 0xFF);
  }
  return bytes;
}

}  // namespace orven::test
