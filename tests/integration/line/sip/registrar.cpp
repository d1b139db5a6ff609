// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/line/sip/registrar.h"

#include <array>

#include "adapters/line/sip/libre.h"

namespace orven::test {
namespace {

std::string Md5(const std::string& text) {
  std::array<std::uint8_t, MD5_SIZE> digest{};
  md5(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), digest.data());
  std::string hex;
  for (const std::uint8_t byte : digest) {
    hex += "0123456789abcdef"[byte >> 4];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

std::string Quoted(const std::string& header, const std::string& name) {
  const auto at = header.find(" " + name + "=\"");
  if (at == std::string::npos) return {};
  const auto begin = at + name.size() + 3;
  return header.substr(begin, header.find('"', begin) - begin);
}

}  // namespace

Registrar::Registrar(SipCaller::Over over)
    : over_(over),
      socket_(over == SipCaller::Over::kUdp ? Socket::Udp() : Socket::TcpListening()),
      port_(socket_.Port()),
      thread_([this] { Run(); }) {}

Registrar::~Registrar() {
  stop_ = true;
  thread_.join();
}

std::string Registrar::NextRegistration(milliseconds limit) {
  std::unique_lock lock(mutex_);
  if (!registered_.wait_for(lock, limit, [this] { return !contacts_.empty(); })) return {};
  std::string contact = contacts_.front();
  contacts_.pop_front();
  return contact;
}

void Registrar::Run() {
  while (!stop_) {
    if (disconnect_.exchange(false)) connection_.reset();
    if (over_ == SipCaller::Over::kTcp && !connection_) {
      connection_ = socket_.Accept(milliseconds(20));
      continue;
    }
    const auto received = (connection_ ? *connection_ : socket_).Receive(milliseconds(20));
    if (!received) continue;
    if (received->bytes.empty()) {
      connection_.reset();
    } else {
      Handle(received->Text(), received->port);
    }
  }
}

void Registrar::Handle(const std::string& text, std::uint16_t port) {
  if (!text.starts_with("REGISTER ")) return;
  SipMessage request;
  request.text = text;
  ++requests_;
  if (mood_ == Mood::kSilent) return;
  if (mood_ == Mood::kRefusing) return Reply(request, port, "503 Service Unavailable", "");
  if (!Proven(request)) {
    nonce_ = "question" + std::to_string(++nonces_);
    return Reply(request, port, "401 Unauthorized",
                 "WWW-Authenticate: Digest realm=\"home\", nonce=\"" + nonce_ + "\", qop=\"auth\"\r\n");
  }
  const std::string contact = request.Header("Contact");
  const std::string uri = contact.substr(0, contact.find('>') + 1);
  const bool leaves = contact.find("expires=0") != std::string::npos;
  Reply(request, port, "200 OK",
        leaves ? "" : "Contact: " + uri + ";expires=" + std::to_string(life_) + "\r\n");
  const std::lock_guard lock(mutex_);
  contacts_.push_back(contact);
  registered_.notify_all();
}

bool Registrar::Proven(const SipMessage& request) {
  const std::string answer = request.Header("Authorization");
  if (answer.empty() || Quoted(answer, "nonce") != nonce_) return false;
  const auto count = answer.substr(answer.find("nc=") + 3, 8);
  const std::string expected =
      Md5(Md5("100:home:secret") + ":" + nonce_ + ":" + count + ":" + Quoted(answer, "cnonce") +
          ":auth:" + Md5("REGISTER:" + Quoted(answer, "uri")));
  const bool right =
      Quoted(answer, "response") == expected && answer.find("username=\"100\"") != std::string::npos;
  if (!right) ++wrong_answers_;
  return right;
}

void Registrar::Reply(const SipMessage& request, std::uint16_t port, const std::string& status,
                      const std::string& headers) {
  std::string reply = "SIP/2.0 " + status + "\r\n";
  for (const char* name : {"Via", "From", "To", "Call-ID", "CSeq"}) {
    reply += std::string(name) + ": " + request.Header(name) + (std::string(name) == "To" ? ";tag=r" : "") +
             "\r\n";
  }
  reply += headers + "Content-Length: 0\r\n\r\n";
  if (connection_) {
    connection_->Send(reply);
  } else {
    socket_.SendTo(port, reply);
  }
}

}  // namespace orven::test
