// SPDX-License-Identifier: GPL-3.0-or-later
// A line with an account: it keeps itself registered, whatever the server answers and becomes.
#include <openssl/evp.h>
#include <sys/resource.h>

#include <array>
#include <map>
#include <sstream>

#include "adapters/line/sip/libre.h"
#include "integration/line/sip/sip_line_test.h"

namespace orven::test {
namespace {

using std::chrono::seconds;
using std::string_literals::operator""s;

std::string Digest(const std::string& algorithm, const std::string& text) {
  static const std::map<std::string, const EVP_MD*> kKnown{
      {"", EVP_md5()}, {"MD5", EVP_md5()}, {"SHA-256", EVP_sha256()}, {"SHA-512-256", EVP_sha512_256()}};
  std::array<std::uint8_t, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  (void)EVP_Digest(text.data(), text.size(), digest.data(), &size, kKnown.at(algorithm), nullptr);
  std::string hex(2 * size, '\0');
  (void)re_snprintf(hex.data(), hex.size() + 1, "%w", digest.data(), static_cast<std::size_t>(size));
  return hex;
}

std::string Parameter(const std::string& header, const std::string& name) {
  const auto at = header.find(" " + name + "=");
  if (at == std::string::npos) return {};
  const auto begin = at + name.size() + 2;
  const bool quoted = header[begin] == '"';
  return header.substr(begin + quoted, header.find(quoted ? '"' : ',', begin + 1) - begin - quoted);
}

/// How an answer proves the password "secret" of "100": "MD5", "SHA-256-sess" …; "wrong" when it does not.
std::string Proof(const std::string& answer) {
  const auto of = [&answer](const char* name) { return Parameter(answer, name); };
  const std::string algorithm = of("algorithm"), basic = algorithm.substr(0, algorithm.find("-sess"));
  std::string secret = Digest(basic, "100:" + of("realm") + ":secret");
  if (basic != algorithm) secret = Digest(basic, secret + ":" + of("nonce") + ":" + of("cnonce"));
  const std::string once = of("qop").empty() ? "" : of("nc") + ":" + of("cnonce") + ":" + of("qop") + ":";
  const bool right = of("response") == Digest(basic, secret + ":" + of("nonce") + ":" + once +
                                                         Digest(basic, "REGISTER:" + of("uri")));
  return !right ? "wrong" : algorithm.empty() ? "MD5" : algorithm;
}

/// A server that answers as it is told.
class Registrar {
 public:
  Registrar(bool over_tcp, std::uint16_t line_port)
      : tcp_(over_tcp), line_port_(line_port), socket_(tcp_ ? Socket::TcpListening() : Socket::Udp()) {}

  std::uint16_t Port() const { return socket_.Port(); }
  void Disconnect() { connection_.reset(); }

  /// The next REGISTER that is not repeated, "" when none comes in time.
  std::string Next(milliseconds limit = milliseconds(8000)) {
    if (tcp_ && !connection_) connection_.emplace(socket_.Accept());
    for (;;) {
      std::string request = (tcp_ ? *connection_ : socket_).ReceiveText(limit);
      if (request.empty() || (request.starts_with("REGISTER ") && Header(request, "CSeq") != latest_)) {
        latest_ = Header(request, "CSeq");
        return request;
      }
    }
  }

  bool HearsASignOfLife() const { return socket_.ReceiveText(milliseconds(8000)) == "\r\n\r\n"; }

  /// Answers `request` by a status and headers, with "|" between. "WWW:a:" and "Proxy:a:" are challenges with
  /// the nonce "a", "here" is the line's address, and "seen 4000" tells that the server sees it elsewhere.
  void Answer(const std::string& request, const std::string& text) {
    std::istringstream parts(text);
    std::string status, header, headers, seen;
    std::getline(parts, status, '|');
    while (std::getline(parts, header, '|')) {
      const auto kind = header.substr(0, header.find(':'));
      if (kind == "WWW" || kind == "Proxy")
        header.replace(kind.size(), 3,
                       "-Authenticate: Digest realm=\"home\", nonce=\""s + header[kind.size() + 1] + "\", ");
      if (const auto here = header.find("here"); here != header.npos)
        header.replace(here, 4, "127.0.0.1:" + std::to_string(line_port_));
      (header.starts_with("seen ") ? seen : headers) += header + "\r\n";
    }
    std::string reply = ReplyTo(request, status + " X", headers);
    if (!seen.empty())
      reply.replace(reply.find(";rport"), 8, ";received=198.51.100.7;rport=" + seen.substr(5));
    if (tcp_) (void)connection_->Send(reply);
    if (!tcp_) socket_.SendTo(line_port_, reply);
  }

 private:
  const bool tcp_;
  const std::uint16_t line_port_;
  const Socket socket_;
  std::optional<Socket> connection_;
  std::string latest_;
};

constexpr const char* kPublic = "198.51.100.7:4000";

class SipRegistrationTest : public SipLineTest {
 protected:
  ~SipRegistrationTest() override { line->Close(); }

  /// The line of an account at `registrar`.
  void Open(const Registrar& registrar, const std::string& transport = "udp") {
    settings.account = "sip:100@127.0.0.1:" + std::to_string(registrar.Port());
    settings.transport = transport;
    settings.password = "secret";
    settings.report = [this](const std::string& text) { reports.Add(text); };
    settings.registration_news = [this](const RegistrationNews& news) {
      const auto what =
          news.state == RegistrationNews::State::Registered ? "registered" : std::to_string(news.status);
      outcomes.Add(what + ", next after " + std::to_string(news.pause / seconds(1)) + " s");
    };
    OpenLine();
  }

  /// "MD5 here=300": the proof, and each Contact with its life.
  std::string Summary(const std::string& request) const {
    std::string summary;
    for (std::size_t at = 0; (at = request.find("uthorization: ", at)) != std::string::npos; ++at)
      summary += Proof(request.substr(at, request.find("\r\n", at) - at)) + " ";
    for (std::size_t at = 0; (at = request.find("<sip:100@", at)) != std::string::npos; ++at) {
      const auto end = request.find(">;expires=", at);
      if (end > request.find("\r\n", at)) continue;  // From and To
      const std::string address = request.substr(at + 9, end - at - 9);
      summary += (address == settings.listen ? "here" : address) + "=" +
                 request.substr(end + 10, request.find("\r\n", end) - end - 10) + " ";
    }
    return summary.substr(0, summary.find_last_not_of(' ') + 1);
  }

  Notes reports;
  Notes outcomes;
};

TEST_F(SipRegistrationTest, TakesEachAnswerAsItIsMeant) {
  settings.timers.registration_retry_first = seconds(10);
  settings.timers.registration_retry_longest = seconds(900);
  struct Case {
    std::string answers;   ///< with " / " between
    std::string requests;  ///< with "|" between
    std::string outcome;
  };
  const std::string ask = "401|WWW:a:qop=\"auth-int,auth\"", again = "401|WWW:b:stale=true",
                    once = "here=300";
  const std::string md5 = "|MD5 here=300", router = kPublic + "=300"s, brief = "423|Min-Expires: ";
  const std::string registered = "registered, next after 240 s", soon = ", next after 10 s";
  for (const Case& one :
       {Case{"", once, ""},
        Case{"200", once, registered},
        Case{"200|Expires: 100", once, "registered, next after 80 s"},
        Case{"200|Expires: 99999999999", once, "registered, next after 2880 s"},
        Case{"200|Expires: soon", once, registered},
        Case{"200|Contact: <sip:9@x>;expires=9|Contact: <sip:100@x>;expires=7|"
             "Contact: <sip:100@here>;expires=125|Contact: <sip:100@y>;expires=3600|Expires: 0",
             once, "registered, next after 100 s"},
        Case{"200|Contact: <sip:100@here>;expires=0|Expires: 300", once, "200" + soon},
        Case{brief + "400 / 200", once + "|here=400", "registered, next after 320 s"},
        Case{brief + "400 / " + brief + "500 / " + brief + "600 / " + brief + "700",
             once + "|here=400|here=500|here=600", "423" + soon},
        Case{brief + "300", once, "423" + soon},
        Case{"503|Retry-After: 120 (later);duration=60", once, "503, next after 120 s"},
        Case{"480|Retry-After: 1", once, "480" + soon},
        Case{"600|Retry-After: 4294967296", once, "600, next after 86400 s"},
        Case{"403", once, "403, next after 900 s"},
        Case{ask + " / 200", once + md5, registered},
        Case{"401|WWW:a:algorithm=MD5-sess / 200", once + "|MD5-sess here=300", registered},
        Case{"401|WWW:a:algorithm=SHA-256 / 200", once + "|SHA-256 here=300", registered},
        Case{"401|WWW:a:algorithm=SHA-256-sess / 200", once + "|SHA-256-sess here=300", registered},
        Case{"401|WWW:a:algorithm=SHA-512-256 / 200", once + "|SHA-512-256 here=300", registered},
        Case{"401|WWW-Authenticate: Basic realm=\"home\"|WWW:a:algorithm=NEW|WWW:a:qop=\"auth-int\"|"
             "WWW:a:algorithm=SHA-256,qop=auth|WWW:a:qop=auth / 200",
             once + "|SHA-256 here=300", registered},
        Case{"401|WWW:a:algorithm=NEW", once, "401" + soon},
        Case{"407|Proxy:a:qop=auth / " + ask + " / 200", once + md5 + "|MD5 MD5 here=300", registered},
        Case{ask + " / 401|WWW:b:qop=auth", once + md5, "401, next after 900 s"},
        Case{ask + " / 200|Expires: 2 / 401|WWW:b:qop=auth / 200", once + md5 + md5 + md5, registered},
        Case{ask + " / " + again + " / 200", once + md5 + md5, registered},
        Case{ask + " / " + again + " / " + again + " / " + again, once + md5 + md5 + md5,
             "401, next after 900 s"},
        Case{"200|seen 4000|Expires: 100 / 200", once + "|" + router + " here=0", registered},
        Case{ask + "|seen 4000 / 200|seen 4000", once + "|MD5 " + router, registered},
        Case{"200|seen 4000|Expires: 100 / 200|seen 40001", once + "|" + router + " here=0", registered}}) {
    Registrar registrar(false, port);
    outcomes.Clear();
    Open(registrar);
    std::string requests;
    for (std::size_t at = 0, end = 0; end != std::string::npos; at = end + 3) {
      end = one.answers.find(" / ", at);
      const std::string request = registrar.Next();
      requests += (requests.empty() ? "" : "|") + Summary(request);
      if (!one.answers.empty()) registrar.Answer(request, one.answers.substr(at, end - at));
    }
    EXPECT_EQ(requests, one.requests);
    EXPECT_TRUE(one.outcome.empty() || outcomes.Wait(one.outcome)) << one.answers;
    line->Close();
    const bool is_registered = one.outcome.starts_with("registered");
    const std::string last = one.requests.find(router) != std::string::npos ? kPublic : "here";
    EXPECT_TRUE(Summary(registrar.Next(milliseconds(0))).ends_with(is_registered ? last + "=0" : ""))
        << one.answers;
    EXPECT_EQ(registrar.Next(milliseconds(0)), "") << one.answers;
  }
}

TEST_F(SipRegistrationTest, CallsThroughARouterFindTheLine) {
  Registrar registrar(false, port);
  settings.timers.keep_alive = milliseconds(50);
  Open(registrar);
  for (int i = 0; i < 2; ++i) registrar.Answer(registrar.Next(), "200|seen 4000");
  EXPECT_TRUE(registrar.HearsASignOfLife()) << "the router would forget the way";
  SipCaller caller(port);
  Ring(caller);
  EXPECT_EQ(Header(caller.Wait("180").value_or(""), "Contact"), "<sip:100@"s + kPublic + ">");
}

TEST_F(SipRegistrationTest, IdleConnectionsLeaveRoomForACallAndTheServer) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 4096);
  setrlimit(RLIMIT_NOFILE, &limit);
  Registrar registrar(true, port);
  settings.timers.registration_retry_first = milliseconds(200);
  Open(registrar, "tcp");
  registrar.Answer(registrar.Next(), "200");
  constexpr std::size_t kConnections = 700;  // more than the line may have descriptors
  std::vector<Socket> idle;
  idle.reserve(kConnections);
  while (idle.size() < kConnections) idle.push_back(Socket::TcpTo(port));
  registrar.Disconnect();
  const std::string registration = "The registration of " + settings.account;
  EXPECT_TRUE(reports.Wait(
      registration + " failed (the connection broke); no call can come in by it. ORVEN goes on trying."));
  for (int i = 0; i < 50; ++i) idle.push_back(Socket::TcpTo(port));  // they take the place that got free
  for (const char* status : {"503", "503", "200"}) {
    const std::string request = registrar.Next();
    ASSERT_NE(request, "") << "the line has no descriptor left, or a refusal ended the tries";
    registrar.Answer(request, status);
  }
  EXPECT_TRUE(reports.Wait(registration + " works again."));
  SipCaller caller(port);
  Connect(caller);
  EXPECT_TRUE(caller.HearsMore());
  HangUp(caller);
}

}  // namespace
}  // namespace orven::test
