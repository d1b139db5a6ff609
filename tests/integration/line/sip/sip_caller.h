// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "integration/line/sip/network.h"

namespace orven::test {

/// A SIP message taken apart as far as tests look into it.
struct SipMessage {
  std::string text;
  int status = 0;      ///< of a response, else 0
  std::string method;  ///< of a request; of a response that of its CSeq
  std::string Header(const std::string& name) const;
  std::string Body() const;
};

/// What a caller says of its sound, and where it wants the answer.
struct Offer {
  std::string formats = "0 8 101";
  std::string address = "127.0.0.1";
  std::string direction = "sendrecv";
  std::string address_type = "IP4";
};

/// A caller written here, which does what it is told, right or wrong: one dialog over UDP or TCP, and
/// an RTP socket. Its messages are those of an ordinary telephone unless a test bends them.
class SipCaller {
 public:
  enum class Over { kUdp, kTcp };
  explicit SipCaller(std::uint16_t line_port, Over over = Over::kUdp);

  /// Sends an INVITE with `offer` (absent: none) and further header lines, each with its CRLF.
  void Invite(const std::optional<Offer>& offer = Offer{}, const std::string& headers = "");
  /// Sends a request in the dialog; "INVITE" and "INFO" take a body.
  void Request(const std::string& method, const std::string& headers = "", const std::string& body = "");
  void Ack(const std::string& body = "");
  void Cancel();
  void SendRaw(const std::string& text);
  void ReplyOk(const SipMessage& request);

  /// The next response with this status (others are passed over), or a request with this method.
  std::optional<SipMessage> WaitStatus(int status, milliseconds limit = milliseconds(8000));
  std::optional<SipMessage> WaitRequest(const std::string& method, milliseconds limit = milliseconds(8000));

  /// Waits for the 200 of an INVITE and keeps its tag and sound port. False when it does not come.
  bool TakeAnswer();

  std::string Sdp(const Offer& offer) const;
  std::uint16_t LineRtpPort() const { return line_rtp_port_; }
  Socket& Rtp() { return rtp_; }

  std::string from = "\"Ann Smith\" <sip:5551234@127.0.0.1>";

 private:
  std::string Start(const std::string& method, const std::string& branch) const;
  void Send(const std::string& text);
  std::optional<SipMessage> Next(milliseconds limit);

  std::uint16_t line_port_;
  Over over_;
  Socket sip_;
  Socket rtp_;
  std::string call_id_;
  std::string to_tag_;
  std::string invite_branch_;
  std::uint32_t cseq_ = 0;
  std::uint32_t invite_cseq_ = 0;
  std::uint16_t line_rtp_port_ = 0;
  std::string pending_;  ///< TCP bytes not yet taken apart
};

/// One RTP packet.
std::vector<std::uint8_t> RtpPacketBytes(std::uint8_t type, bool marker, std::uint16_t sequence,
                                         std::uint32_t timestamp, std::uint32_t ssrc,
                                         const std::vector<std::uint8_t>& payload);

/// Sends blocks of 20 ms at their pace from a thread of its own until all are sent or it is destroyed.
class RtpTalker {
 public:
  RtpTalker(Socket& socket, std::uint16_t port, std::uint8_t type, std::vector<std::uint8_t> bytes,
            std::uint32_t ssrc = 0x1234);
  ~RtpTalker();
  void Join() { thread_.join(); }

 private:
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

/// `blocks` blocks of noise as G.711 bytes, without the codes that have a twin.
std::vector<std::uint8_t> NoiseBytes(std::size_t blocks, std::uint32_t seed);

}  // namespace orven::test
