// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <thread>

#include "integration/line/sip/network.h"

namespace orven::test {

/// The value of a header of a SIP message, "" when it has none.
std::string Header(const std::string& message, const std::string& name);

/// A response to a request, with further header lines, each with its CRLF.
std::string ReplyTo(const std::string& request, const std::string& status, const std::string& headers = "");

/// A caller written here, which does what it is told, right or wrong: one dialog over UDP, and an RTP
/// socket.
class SipCaller {
 public:
  explicit SipCaller(std::uint16_t line_port);

  /// Sends an INVITE that offers sound.
  void Invite(const std::string& formats = "0 8 101", const std::string& direction = "sendrecv");
  /// Sends any request, an ACK and a CANCEL to the request before.
  void Request(const std::string& method, const std::string& type = "", const std::string& body = "");

  /// The next response with a status ("200") or request with a method ("BYE"), other messages passed over.
  std::optional<std::string> Wait(const std::string& what, milliseconds limit = milliseconds(8000));
  /// Waits for the 200 of an INVITE and keeps its tag and sound port. False when it does not come.
  bool TakeAnswer();
  /// Waits for a BYE and confirms it.
  bool TakeBye();

  std::string Sdp(const std::string& formats, const std::string& direction = "sendrecv") const;
  /// The latest 200 of an INVITE.
  const std::string& Answer() const { return answer_; }
  std::uint16_t LineRtpPort() const { return line_rtp_port_; }
  Socket& Rtp() { return rtp_; }
  /// Forgets the packets that have come so far and tells whether another one comes.
  bool HearsMore(milliseconds limit = milliseconds(2000)) const;

 private:
  const std::uint16_t line_port_;
  const Socket sip_ = Socket::Udp();
  Socket rtp_ = Socket::Udp();
  std::string answer_;
  std::string to_tag_;
  std::string branch_;
  int cseq_ = 0;
  std::uint16_t line_rtp_port_ = 0;
};

/// One RTP packet; `type` is the payload type, plus 0x80 for the marker.
Bytes RtpPacketBytes(std::uint32_t type, std::uint32_t sequence, std::uint32_t timestamp,
                     const Bytes& payload, std::uint32_t ssrc = 9);

/// Sends blocks of 20 ms of mu-law sound at their pace; joining the thread waits for the last.
std::jthread Talk(const Socket& socket, std::uint16_t port, const Bytes& sound, std::uint32_t ssrc = 9);

/// Blocks of noise as G.711 bytes, without the codes that have a twin.
Bytes NoiseBytes(std::size_t blocks, std::uint32_t seed);

}  // namespace orven::test
