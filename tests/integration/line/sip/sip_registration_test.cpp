// SPDX-License-Identifier: GPL-3.0-or-later
// A line with an account: it keeps itself registered, whatever becomes of the server.
#include <array>
#include <condition_variable>
#include <mutex>

#include "adapters/line/sip/libre.h"
#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

std::string Md5(const std::string& text) {
  std::array<std::uint8_t, MD5_SIZE> digest{};
  md5(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), digest.data());
  std::array<char, 2 * MD5_SIZE + 1> hex{};
  (void)re_snprintf(hex.data(), hex.size(), "%w", digest.data(), digest.size());
  return hex.data();
}

std::string Parameter(const std::string& header, const std::string& name) {
  const auto begin = header.find(" " + name + "=") + name.size() + 2;
  const bool quoted = header[begin] == '"';
  return header.substr(begin + quoted, header.find(quoted ? '"' : ',', begin + 1) - begin - quoted);
}

/// The server of the account "100" with the password "secret", which it asks for by digest (RFC 2617).
class Registrar {
 public:
  Registrar(bool over_tcp, std::uint16_t line_port)
      : tcp_(over_tcp), line_port_(line_port), socket_(tcp_ ? Socket::TcpListening() : Socket::Udp()) {}

  std::uint16_t Port() const { return socket_.Port(); }
  void Disconnect() { connection_.reset(); }

  /// The next REGISTER, "" when none comes in time.
  std::string Next() {
    if (tcp_ && !connection_) connection_.emplace(socket_.Accept());
    return (tcp_ ? *connection_ : socket_).ReceiveText(milliseconds(8000));
  }

  void Reply(const std::string& reply) {
    if (tcp_) return connection_->Send(reply);
    socket_.SendTo(line_port_, reply);
  }

  /// Asks for the password until the answer is right. The registered Contact, "" when nobody comes.
  std::string Register(int life) {
    for (std::string request = Next(); !request.empty(); request = Next()) {
      if (Proven(Header(request, "Authorization"))) {
        std::string contact = Header(request, "Contact");
        const std::string uri = contact.substr(0, contact.find('>') + 1);
        Reply(ReplyTo(request, "200 OK", "Contact: " + uri + ";expires=" + std::to_string(life) + "\r\n"));
        return contact;
      }
      Reply(ReplyTo(request, "401 Unauthorized",
                    "WWW-Authenticate: Digest realm=\"home\", nonce=\"" + nonce + "\", qop=\"auth\"\r\n"));
    }
    return {};
  }

  std::string nonce = "question";

 private:
  bool Proven(const std::string& answer) const {
    if (answer.empty() || Parameter(answer, "nonce") != nonce) return false;
    return Parameter(answer, "response") ==
           Md5(Md5("100:home:secret") + ":" + nonce + ":" + Parameter(answer, "nc") + ":" +
               Parameter(answer, "cnonce") + ":auth:" + Md5("REGISTER:" + Parameter(answer, "uri")));
  }

  const bool tcp_;
  const std::uint16_t line_port_;
  const Socket socket_;
  std::optional<Socket> connection_;
};

/// What the line reported, from its own thread.
class Reports {
 public:
  void Add(const std::string& text) {
    const std::lock_guard lock(mutex_);
    texts_.push_back(text);
    changed_.notify_all();
  }
  bool Wait(std::size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(5), [&] { return texts_.size() >= count; });
  }
  std::vector<std::string> All() {
    const std::lock_guard lock(mutex_);
    return texts_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> texts_;
};

class SipRegistrationTest : public SipLineTest, public ::testing::WithParamInterface<std::string> {
 protected:
  Reports reports;
};

TEST_P(SipRegistrationTest, StaysRegisteredThroughLossAndLeavesWhenClosed) {
  Registrar registrar(GetParam() == "tcp", port);
  settings.account = "sip:100@127.0.0.1:" + std::to_string(registrar.Port());
  settings.transport = GetParam();
  settings.password = "secret";
  settings.timers.registration_retry_first = settings.timers.registration_retry_longest = milliseconds(200);
  settings.report = [this](const std::string& text) { reports.Add(text); };
  OpenLine();
  const std::string contact = registrar.Register(1);
  EXPECT_NE(contact.find("<sip:100@127.0.0.1:"), std::string::npos) << contact;
  registrar.nonce = "another question";
  EXPECT_NE(registrar.Register(1), "") << "the registration was not refreshed";
  for (int i = 0; i < 2; ++i) {
    const std::string request = registrar.Next();
    ASSERT_NE(request, "") << "a refusal ended the tries";
    registrar.Reply(ReplyTo(request, "503 Service Unavailable"));
  }
  EXPECT_NE(registrar.Register(300), "");
  ASSERT_TRUE(reports.Wait(2)) << "an owner who cannot be reached must learn it";
  EXPECT_NE(reports.All()[0].find(settings.account + " failed (503 Service Unavailable)"), std::string::npos);
  EXPECT_NE(reports.All()[1].find("works again"), std::string::npos);
  if (GetParam() == "tcp") {
    registrar.Disconnect();
    EXPECT_NE(registrar.Register(300), "") << "calls would be lost until the next refresh";
  }
  line->Close();
  EXPECT_NE(Header(registrar.Next(), "Contact").find("expires=0"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Transports, SipRegistrationTest, ::testing::Values("udp", "tcp"));

}  // namespace
}  // namespace orven::test
