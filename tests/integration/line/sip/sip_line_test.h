// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <random>
#include <span>
#include <sstream>
#include <system_error>
#include <thread>
#include <utility>

#include "adapters/line/sip/codec.h"
#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/sip_line.h"
#include "support/line_events.h"

namespace orven::test {

using std::chrono::milliseconds;

/// A UDP or TCP socket on 127.0.0.1. Throws if it cannot be created.
class Socket {
 public:
  static Socket Udp(std::uint16_t port = 0) { return {SOCK_DGRAM, ::bind, port}; }
  static Socket TcpTo(std::uint16_t port) { return {SOCK_STREAM, ::connect, port}; }
  static Socket TcpListening(std::uint16_t port = 0) {
    Socket made(SOCK_STREAM, ::bind, port);
    Check(::listen(made.fd_, 4));
    return made;
  }
  Socket(Socket&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  ~Socket() { Close(); }

  std::uint16_t Port() const {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    Check(::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &size));
    return ntohs(address.sin_port);
  }
  /// Sends a datagram: bytes or a text.
  template <typename Content>
  void SendTo(std::uint16_t port, const Content& content) const {
    const sockaddr_in to = Loopback(port);
    const auto* address = reinterpret_cast<const sockaddr*>(&to);
    (void)::sendto(fd_, std::data(content), std::size(content), 0, address, sizeof(to));
  }
  /// Sends on a TCP connection; returns false if it is closed.
  bool Send(const std::string& text) const { return ::send(fd_, &text[0], text.size(), MSG_NOSIGNAL) >= 0; }
  /// Returns the next datagram or the next TCP data; "" if none comes within `limit` or the connection is
  /// closed.
  std::string Receive(milliseconds limit = milliseconds(8000)) const {
    std::string bytes(65'536, 0);
    const ssize_t count = Ready(limit) ? ::recv(fd_, bytes.data(), bytes.size(), 0) : 0;
    return bytes.substr(0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  }
  Socket Accept() const { return Socket(Ready(milliseconds(8000)) ? ::accept(fd_, nullptr, nullptr) : -1); }
  void Close() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }

 private:
  explicit Socket(int fd) : fd_(fd) { Check(fd); }
  /// `apply` is ::bind or ::connect.
  Socket(int type, int (*apply)(int, const sockaddr*, socklen_t), std::uint16_t port)
      : Socket(::socket(AF_INET, type | SOCK_CLOEXEC, 0)) {
    const sockaddr_in address = Loopback(port);
    Check(apply(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
  }
  static void Check(int result) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), "socket");
  }
  static sockaddr_in Loopback(std::uint16_t port) {
    return {AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
  }
  bool Ready(milliseconds limit) const {
    pollfd wait{fd_, POLLIN, 0};
    return ::poll(&wait, 1, static_cast<int>(limit.count())) > 0;
  }

  int fd_;
};

/// Returns a port that is free for UDP and TCP at this moment.
inline std::uint16_t FreePort() try {
  const Socket udp = Socket::Udp();
  return Socket::TcpListening(udp.Port()).Port();
} catch (const std::system_error&) {
  return FreePort();  // another program uses the TCP port
}

using Bytes = std::vector<std::uint8_t>;

/// Returns the value of a header of a SIP message, or "".
inline std::string Header(const std::string& message, const std::string& name) {
  const auto at = message.find("\r\n" + name + ": ");
  if (at == std::string::npos) return {};
  const auto begin = at + name.size() + 4;
  return message.substr(begin, message.find("\r\n", begin) - begin);
}

/// Returns a response to `request`; `headers` are further header lines, each with its CRLF.
inline std::string ReplyTo(const std::string& request, const std::string& status,
                           const std::string& headers = "") {
  std::string reply = "SIP/2.0 " + status + "\r\n" + headers;
  for (const char* name : {"Via", "From", "To", "Call-ID", "CSeq"})
    reply += std::string(name) + ": " + Header(request, name) + "\r\n";
  return reply + "Content-Length: 0\r\n\r\n";
}

/// A caller that sends anything a test wants, valid or not: one dialog over UDP, and an RTP socket.
class SipCaller {
 public:
  explicit SipCaller(std::uint16_t line_port) : line_port_(line_port) {}

  /// Returns the text of a request; an ACK or a CANCEL belongs to the previous request.
  std::string Text(const std::string& method, const std::string& body = "",
                   const std::string& type = "application/sdp") {
    if (method != "ACK" && method != "CANCEL") ++cseq_;
    // The ACK of a success is a separate transaction, the ACK of a refusal is not.
    const char* own = method == "ACK" && !to_tag_.empty() ? "ack" : "";
    const std::string address = "127.0.0.1:" + std::to_string(sip_.Port()), number = std::to_string(cseq_);
    return method + " sip:line@127.0.0.1 SIP/2.0\r\nVia: SIP/2.0/UDP " + address + ";branch=" + branch_ +
           number + own +
           ";rport\r\nFrom: \"Ann Smith\" <sip:5551234@127.0.0.1>;tag=caller\r\nTo: <sip:line@127.0.0.1>" +
           (method == "CANCEL" ? "" : to_tag_) + "\r\nCall-ID: " + branch_ + "\r\nCSeq: " + number + " " +
           method + "\r\nContact: <sip:ann@" + address + ">\r\n" +
           (body.empty() ? "" : "Content-Type: " + type + "\r\n") +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  }
  void Send(const std::string& text) const { sip_.SendTo(line_port_, text); }

  /// Waits for a response with a status ("200") or a request with a method ("BYE") and skips other messages;
  /// returns "" if none comes. Keeps an answer with its address and tag, confirms a BYE and acknowledges a
  /// refusal.
  std::string Take(const std::string& what, milliseconds limit = milliseconds(8000)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    std::string message = "-";
    while (!message.starts_with(what + " ") && !message.starts_with("SIP/2.0 " + what)) {
      message = sip_.Receive(std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now()));
      if (message.empty()) return {};
    }
    if (what == "BYE") Send(ReplyTo(message, "200 OK"));
    if (what > "299" && what < "7" && Header(message, "CSeq").ends_with("INVITE")) Send(Text("ACK"));
    if (const auto audio = message.find("m=audio "); audio != message.npos) {
      answer = message;
      to_tag_ = Header(message, "To").substr(Header(message, "To").find(";tag="));
      line_rtp_port = static_cast<std::uint16_t>(std::stoi(message.substr(audio + 8)));
    }
    return message;
  }

  std::string Sdp(const std::string& formats = "0 8 101", const std::string& direction = "sendrecv") const {
    return "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=-\r\nc=IN IP4 127.0.0.1\r\nt=0 0\r\nm=audio " +
           std::to_string(rtp.Port()) + " RTP/AVP " + formats +
           "\r\na=rtpmap:101 telephone-event/8000\r\na=" + direction + "\r\n";
  }

  void SendRtp(const Bytes& packet) const { rtp.SendTo(line_rtp_port, packet); }
  /// Skips all packets that have already come, then waits for another one and returns it.
  std::string NextPacket(milliseconds limit = milliseconds(2000)) const {
    while (!rtp.Receive(milliseconds(0)).empty()) continue;
    return rtp.Receive(limit);
  }

  Socket rtp = Socket::Udp();
  std::string answer;  ///< the latest 200 response to an INVITE
  std::uint16_t line_rtp_port = 0;

 private:
  const std::uint16_t line_port_;
  const Socket sip_ = Socket::Udp();
  const std::string branch_ = "z9hG4bK" + std::to_string(std::random_device{}());
  std::string to_tag_;
  int cseq_ = 0;
};

/// Returns one RTP packet; `type` is the payload type, plus 0x80 for the marker.
inline Bytes RtpPacketBytes(std::uint32_t type, std::uint32_t sequence, std::uint32_t timestamp,
                            const Bytes& payload, std::uint32_t ssrc = 9) {
  Bytes packet;
  for (const std::uint32_t word : {0x80000000U | type << 16 | sequence, timestamp, ssrc}) {
    for (int shift = 24; shift >= 0; shift -= 8) packet.push_back(static_cast<std::uint8_t>(word >> shift));
  }
  packet.insert(packet.end(), payload.begin(), payload.end());
  return packet;
}

/// Sends mu-law audio in blocks of 20 ms in real time; joining the thread waits for the last block.
inline std::jthread Talk(const Socket& socket, std::uint16_t port, const Bytes& audio,
                         std::uint32_t ssrc = 9) {
  return std::jthread([&socket, port, audio, ssrc, start = std::chrono::steady_clock::now()] {
    for (std::uint32_t i = 0; (i + 1) * 160 <= audio.size(); ++i) {
      std::this_thread::sleep_until(start + i * milliseconds(20));
      const auto begin = audio.begin() + i * 160;
      socket.SendTo(port, RtpPacketBytes(i == 0 ? 0x80 : 0, i, i * 160, {begin, begin + 160}, ssrc));
    }
  });
}

/// Returns blocks of noise as G.711 bytes, without the two codes for zero.
inline Bytes NoiseBytes(std::size_t blocks, std::uint32_t seed) {
  std::minstd_rand random(seed + 1);
  Bytes bytes(blocks * 160);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>((random() >> 8) & 0xFE);
  return bytes;
}

/// Records a line's events, one text each ("Ring 1 2"), and texts that a test adds.
class RecordedEvents {
 public:
  void Add(const std::string& text) {
    const std::lock_guard lock(mutex_);
    all_.push_back(text);
    grown_.notify_all();
  }
  /// Waits for a text that contains `part`. Returns false if none comes in time.
  bool Wait(const std::string& part) {
    const auto has = [&part](const std::string& text) { return text.find(part) != text.npos; };
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, milliseconds(10'000), [&] { return std::ranges::any_of(all_, has); });
  }
  std::vector<std::string> All() {
    const std::lock_guard lock(mutex_);
    return all_;
  }

  void Clear() {
    const std::lock_guard lock(mutex_);
    all_.clear();
  }

 private:
  std::mutex mutex_;
  std::condition_variable grown_;
  std::vector<std::string> all_;
};

/// Returns the samples of mu-law bytes.
inline std::vector<std::int16_t> Decoded(const Bytes& bytes) {
  std::vector<std::int16_t> samples;
  Decoder().Decode(Codec::kMuLaw, bytes, samples);
  return samples;
}

/// Keeps recorded audio for the test to read after the call.
struct KeptAudio : AudioSink {
  void Write(std::span<const std::int16_t> block) override {
    all.insert(all.end(), block.begin(), block.end());
  }
  /// Returns how many whole blocks of `sent`, in mu-law, have arrived.
  std::size_t BlocksOf(const Bytes& sent) const {
    const auto samples = Decoded(sent);
    std::size_t found = 0;
    for (auto block = samples.begin(); block != samples.end(); block += kBlockSamples)
      found += std::search(all.begin(), all.end(), block, block + kBlockSamples) != all.end() ? 1 : 0;
    return found;
  }
  std::vector<std::int16_t> all;
};

/// A SIP line on a free port, and a caller.
class SipLineTest : public ::testing::Test {
 protected:
  SipLineTest() {
    settings.ring_seconds = 1;
    settings.listen = "127.0.0.1:" + std::to_string(port);
  }
  ~SipLineTest() override {
    if (line != nullptr) line->Close();
  }

  void OpenLine(std::int32_t result = kTelephonyOk, const std::string& reason = "") {
    line = MakeSipLine(settings);
    const auto failure = line->Open(sink).value_or(OpenFailure{kTelephonyOk, ""});
    ASSERT_EQ(failure.result, result) << failure.reason;
    EXPECT_NE(failure.reason.find(reason), std::string::npos) << failure.reason;
    EXPECT_EQ(CauseOf(failure.trouble.English()).empty(), failure.result == kTelephonyOk);
  }

  /// Plays comma-separated steps on the open line. "> INVITE" is what the caller sends ("> INVITE 8 sendonly"
  /// has that codec and direction), "< 180" what it waits for. "answer 7" and "drop 7" are our requests,
  /// "caller 2" switches to another caller, "hears 2" waits for that many RTP packets, "deaf 300" checks that
  /// none comes in 300 ms. Anything else waits for that event of the line.
  void Play(const std::string& script) {
    if (line == nullptr) OpenLine();
    std::istringstream steps(script);
    for (std::string step; std::getline(steps >> std::ws, step, ',');)
      ASSERT_TRUE(Do(step)) << step << " of " << script;
  }

  const std::uint16_t port = FreePort();
  SipLineSettings settings;
  RecordedEvents events;
  const LineSink sink = [this](const LineEvent& event) { events.Add(ToText(event)); };
  CallNumber call = 0;  ///< the latest call that has rung
  std::unique_ptr<LineDriver> line;
  std::map<std::string, SipCaller> callers;
  SipCaller* caller = &callers.try_emplace("1", port).first->second;

 private:
  bool Do(const std::string& step) {
    std::istringstream words(step);
    std::string what, which, codecs = "0 8 101", direction = "sendrecv";
    words >> what >> which >> codecs >> direction;
    if (what == "<") return !caller->Take(which).empty();
    if (what == "hears" && caller->NextPacket().empty()) return false;
    for (int packets = what == "hears" ? std::stoi(which) : 1; packets > 1; --packets)
      if (caller->rtp.Receive().empty()) return false;
    if (what == "deaf") return caller->NextPacket(milliseconds(std::stoi(which))).empty();
    if (what == "Ring") call = static_cast<CallNumber>(std::stoi(which));
    const bool offers = which == "INVITE" && codecs != "none";
    if (what == ">") caller->Send(caller->Text(which, offers ? caller->Sdp(codecs, direction) : ""));
    if (what == "answer") line->Answer(call, std::stoi(which));
    if (what == "drop") line->Drop(call, std::stoi(which));
    if (what == "caller") caller = &callers.try_emplace(which, port).first->second;
    return std::islower(what[0]) || what == ">" || events.Wait(step);
  }
};

}  // namespace orven::test
