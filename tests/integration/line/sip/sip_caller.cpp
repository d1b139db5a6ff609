// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/line/sip/sip_caller.h"

#include <atomic>
#include <random>

namespace orven::test {
namespace {

using Clock = std::chrono::steady_clock;

std::string RandomName() {
  static std::atomic<std::uint64_t> counter{std::random_device{}()};
  return std::to_string(++counter);
}

}  // namespace

std::string Header(const std::string& message, const std::string& name) {
  const auto at = message.find("\r\n" + name + ": ");
  if (at == std::string::npos) return {};
  const auto begin = at + name.size() + 4;
  return message.substr(begin, message.find("\r\n", begin) - begin);
}

std::string ReplyTo(const std::string& request, const std::string& status, const std::string& headers) {
  std::string reply = "SIP/2.0 " + status + "\r\n";
  for (const char* name : {"Via", "From", "Call-ID", "CSeq"}) {
    reply += std::string(name) + ": " + Header(request, name) + "\r\n";
  }
  const std::string to = Header(request, "To");
  const char* tag = to.find(";tag=") == std::string::npos ? ";tag=reply" : "";
  return reply + "To: " + to + tag + "\r\n" + headers + "Content-Length: 0\r\n\r\n";
}

SipCaller::SipCaller(std::uint16_t line_port) : line_port_(line_port), branch_("z9hG4bK" + RandomName()) {}

std::string SipCaller::Sdp(const std::string& formats, const std::string& direction) const {
  return "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN IP4 127.0.0.1\r\nt=0 0\r\nm=audio " +
         std::to_string(rtp_.Port()) + " RTP/AVP " + formats +
         "\r\na=rtpmap:101 telephone-event/8000\r\na=" + direction + "\r\n";
}

void SipCaller::Invite(const std::string& formats, const std::string& direction) {
  Request("INVITE", "application/sdp", Sdp(formats, direction));
}

void SipCaller::Request(const std::string& method, const std::string& type, const std::string& body) {
  if (method != "ACK" && method != "CANCEL") ++cseq_;
  // The acknowledgement of a success is a transaction of its own, that of a refusal is not.
  const char* own = method == "ACK" && !to_tag_.empty() ? "ack" : "";
  const std::string address = "127.0.0.1:" + std::to_string(sip_.Port());
  const std::string number = std::to_string(cseq_);
  const std::string tag = to_tag_.empty() || method == "CANCEL" ? "" : ";tag=" + to_tag_;
  sip_.SendTo(line_port_,
              method + " sip:line@127.0.0.1 SIP/2.0\r\nVia: SIP/2.0/UDP " + address + ";branch=" + branch_ +
                  number + own +
                  ";rport\r\nMax-Forwards: 70\r\nFrom: \"Ann Smith\" <sip:5551234@127.0.0.1>;tag=caller\r\n" +
                  "To: <sip:line@127.0.0.1>" + tag + "\r\nCall-ID: " + branch_ + "\r\nCSeq: " + number + " " +
                  method + "\r\nContact: <sip:ann@" + address + ">\r\n" +
                  (type.empty() ? "" : "Content-Type: " + type + "\r\n") +
                  "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
}

std::optional<std::string> SipCaller::Wait(const std::string& what, milliseconds limit) {
  const auto end = Clock::now() + limit;
  while (Clock::now() < end) {
    std::string message = sip_.ReceiveText(std::chrono::ceil<milliseconds>(end - Clock::now()));
    if (message.starts_with(what + " ") || message.starts_with("SIP/2.0 " + what)) return message;
  }
  return std::nullopt;
}

bool SipCaller::TakeAnswer() {
  const auto answer = Wait("200");
  const auto sound = answer ? answer->find("m=audio ") : std::string::npos;
  if (sound == std::string::npos) return false;
  answer_ = *answer;
  const std::string to = Header(*answer, "To");
  to_tag_ = to.substr(to.find(";tag=") + 5);
  line_rtp_port_ = static_cast<std::uint16_t>(std::stoi(answer->substr(sound + 8)));
  return true;
}

bool SipCaller::TakeBye() {
  const auto bye = Wait("BYE");
  if (bye) sip_.SendTo(line_port_, ReplyTo(*bye, "200 OK"));
  return bye.has_value();
}

bool SipCaller::HearsMore(milliseconds limit) const {
  while (rtp_.Receive(milliseconds(0))) {
  }
  return rtp_.Receive(limit).has_value();
}

Bytes RtpPacketBytes(std::uint32_t type, std::uint32_t sequence, std::uint32_t timestamp,
                     const Bytes& payload, std::uint32_t ssrc) {
  Bytes packet;
  for (const std::uint32_t word : {0x80000000U | type << 16 | sequence, timestamp, ssrc}) {
    for (int shift = 24; shift >= 0; shift -= 8) packet.push_back(static_cast<std::uint8_t>(word >> shift));
  }
  packet.insert(packet.end(), payload.begin(), payload.end());
  return packet;
}

std::jthread Talk(const Socket& socket, std::uint16_t port, const Bytes& sound, std::uint32_t ssrc) {
  return std::jthread([&socket, port, sound, ssrc] {
    const auto start = Clock::now();
    for (std::uint32_t i = 0; (i + 1) * 160 <= sound.size(); ++i) {
      std::this_thread::sleep_until(start + i * milliseconds(20));
      const auto begin = sound.begin() + i * 160;
      socket.SendTo(port, RtpPacketBytes(i == 0 ? 0x80 : 0, i, i * 160, {begin, begin + 160}, ssrc));
    }
  });
}

Bytes NoiseBytes(std::size_t blocks, std::uint32_t seed) {
  std::minstd_rand random(seed + 1);
  Bytes bytes(blocks * 160);
  for (std::uint8_t& byte : bytes) {
    do {
      byte = static_cast<std::uint8_t>(random() >> 8);
    } while (byte == 0x7F || byte == 0xFF);
  }
  return bytes;
}

}  // namespace orven::test
