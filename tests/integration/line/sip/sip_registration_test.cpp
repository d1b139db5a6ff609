// SPDX-License-Identifier: GPL-3.0-or-later
// A line with an account: it keeps itself registered, whatever the server answers and becomes.
#include <openssl/evp.h>
#include <sys/resource.h>

#include <array>
#include <condition_variable>
#include <map>
#include <mutex>

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

/// What the line told, from its own thread.
class Told {
 public:
  void Add(const std::string& text) {
    const std::lock_guard lock(mutex_);
    texts_.push_back(text);
    changed_.notify_all();
  }
  /// The texts as soon as there are `count`, or what there is in time.
  std::vector<std::string> Wait(std::size_t count) {
    std::unique_lock lock(mutex_);
    (void)changed_.wait_for(lock, seconds(5), [&] { return texts_.size() >= count; });
    return texts_;
  }
  void Clear() {
    const std::lock_guard lock(mutex_);
    texts_.clear();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> texts_;
};

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

  void Reply(const std::string& reply) {
    if (tcp_) {
      connection_->Send(reply);
    } else {
      socket_.SendTo(line_port_, reply);
    }
  }

  /// Grants the next request a life in seconds. Its Contact, "" when nobody comes.
  std::string Grant(const char* life) {
    const std::string request = Next();
    if (!request.empty()) Reply(ReplyTo(request, "200 OK", "Expires: "s + life + "\r\n"));
    return Header(request, "Contact");
  }

 private:
  const bool tcp_;
  const std::uint16_t line_port_;
  const Socket socket_;
  std::optional<Socket> connection_;
  std::string latest_;
};

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
      const bool registered = news.state == RegistrationNews::State::Registered;
      if (news.pause == milliseconds(0)) return;
      outcomes.Add((registered ? "registered" : std::to_string(news.status)) + ", next after " +
                   std::to_string(news.pause / seconds(1)) + " s");
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

  Told reports;
  Told outcomes;
};

constexpr const char* kPublic = "198.51.100.7:4000";
constexpr const char* kRouter = ";received=198.51.100.7;rport=4000";

/// The reply of a server that sees the line at another address.
std::string Seen(std::string reply, const std::string& parameters) {
  return parameters.empty() ? reply : reply.replace(reply.find(";rport"), 6, parameters);
}

std::string Ask(const std::string& more, const std::string& nonce = "a") {
  return "WWW-Authenticate: Digest realm=\"home\", nonce=\"" + nonce + "\", " + more + "\r\n";
}

TEST_F(SipRegistrationTest, TakesEachAnswerAsItIsMeant) {
  struct Answer {
    std::string status;
    std::string headers{};
    std::string seen{};  ///< where the server says that the request came from
  };
  struct Case {
    std::vector<Answer> answers;
    std::string requests;
    std::string outcome;
  };
  const std::string bound = "Contact: <sip:100@" + settings.listen + ">", qop = "qop=\"auth-int,auth\"";
  const Answer ok{"200 OK"}, asks{"401 X", Ask(qop)};
  const auto brief = [](const char* least) { return Answer{"423 X", "Min-Expires: "s + least + "\r\n"}; };
  const std::string registered = "registered, next after 240 s", router = kRouter;
  const auto by = [&](const std::string& algorithm) {
    return Case{
        {{"401 X", Ask("algorithm=" + algorithm)}, ok}, "here=300|" + algorithm + " here=300", registered};
  };
  settings.timers.registration_retry_first = seconds(10);
  settings.timers.registration_retry_longest = seconds(900);
  for (const Case& one : std::vector<Case>{
           {{{""}}, "here=300", ""},
           {{ok}, "here=300", registered},
           {{{"200 OK", "Expires: 100\r\n"}}, "here=300", "registered, next after 80 s"},
           {{{"200 OK", "Expires: 99999999999\r\n"}}, "here=300", "registered, next after 2880 s"},
           {{{"200 OK", "Expires: soon\r\n"}}, "here=300", registered},
           {{{"200 OK", "Contact: <sip:9@x>;expires=9\r\n" + bound + ";expires=50\r\nExpires: 0\r\n"}},
            "here=300",
            "registered, next after 40 s"},
           {{{"200 OK", bound + ";expires=0\r\nExpires: 300\r\n"}}, "here=300", "200, next after 10 s"},
           {{brief("400"), ok}, "here=300|here=400", "registered, next after 320 s"},
           {{brief("400"), brief("500"), brief("600"), brief("700")},
            "here=300|here=400|here=500|here=600",
            "423, next after 10 s"},
           {{brief("300")}, "here=300", "423, next after 10 s"},
           {{{"503 X", "Retry-After: 120 (later);duration=60\r\n"}}, "here=300", "503, next after 120 s"},
           {{{"480 X", "Retry-After: 1\r\n"}}, "here=300", "480, next after 10 s"},
           {{{"600 X", "Retry-After: 4294967296\r\n"}}, "here=300", "600, next after 86400 s"},
           {{{"404 X"}}, "here=300", "404, next after 10 s"},
           {{{"403 X"}}, "here=300", "403, next after 900 s"},
           by("MD5"),
           by("SHA-256"),
           by("SHA-512-256"),
           by("MD5-sess"),
           by("SHA-256-sess"),
           {{asks, ok}, "here=300|MD5 here=300", registered},
           {{{"401 X", "WWW-Authenticate: Basic realm=\"home\"\r\n" + Ask("algorithm=NEW") +
                           Ask("qop=\"auth-int\"") + Ask("algorithm=SHA-256," + qop) + Ask(qop)},
             ok},
            "here=300|SHA-256 here=300",
            registered},
           {{{"401 X", Ask("algorithm=NEW")}}, "here=300", "401, next after 10 s"},
           {{{"407 X", "Proxy-" + Ask(qop).substr(4)}, asks, ok},
            "here=300|MD5 here=300|MD5 MD5 here=300",
            registered},
           {{asks, {"401 X", Ask(qop, "b")}}, "here=300|MD5 here=300", "401, next after 900 s"},
           {{asks, {"200 OK", "Expires: 1\r\n"}, {"401 X", Ask(qop, "b")}, ok},
            "here=300|MD5 here=300|MD5 here=300|MD5 here=300",
            registered},
           {{asks, {"401 X", Ask("stale=true", "b")}, ok}, "here=300|MD5 here=300|MD5 here=300", registered},
           {{asks,
             {"401 X", Ask("stale=true", "b")},
             {"401 X", Ask("stale=true", "c")},
             {"401 X", Ask("stale=true", "d")}},
            "here=300|MD5 here=300|MD5 here=300|MD5 here=300",
            "401, next after 900 s"},
           {{{"200 OK", "", router}, ok}, "here=300|198.51.100.7:4000=300 here=0", registered},
           {{{"401 X", Ask(qop), router}, {"200 OK", "", router}},
            "here=300|MD5 198.51.100.7:4000=300",
            registered},
           {{{"200 OK", "", router}, {"200 OK", "", router + "1"}},
            "here=300|198.51.100.7:4000=300 here=0",
            registered}}) {
    Registrar registrar(false, port);
    outcomes.Clear();
    Open(registrar);
    std::string requests;
    for (const Answer& answer : one.answers) {
      const std::string request = registrar.Next();
      requests += (requests.empty() ? "" : "|") + Summary(request);
      if (!answer.status.empty())
        registrar.Reply(Seen(ReplyTo(request, answer.status, answer.headers), answer.seen));
    }
    EXPECT_EQ(requests, one.requests);
    const auto successes = std::ranges::count(one.answers, "200 OK", &Answer::status);
    if (!one.outcome.empty()) {
      EXPECT_EQ(outcomes.Wait(std::max(successes, 1L)).back(), one.outcome) << requests;
    }
    line->Close();
    const bool is_registered = one.outcome.starts_with("registered");
    const std::string last = one.requests.find(kPublic) != std::string::npos ? kPublic : "here";
    EXPECT_TRUE(Summary(registrar.Next(milliseconds(0))).ends_with(is_registered ? last + "=0" : ""))
        << requests;
    EXPECT_EQ(registrar.Next(milliseconds(0)), "") << requests;
  }
}

TEST_F(SipRegistrationTest, CallsThroughARouterFindTheLine) {
  Registrar registrar(false, port);
  settings.timers.keep_alive = milliseconds(50);
  Open(registrar);
  for (int i = 0; i < 2; ++i) registrar.Reply(Seen(ReplyTo(registrar.Next(), "200 OK"), kRouter));
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
  EXPECT_NE(registrar.Grant("300"), "");
  constexpr std::size_t kConnections = 700;  // more than the line may have descriptors
  std::vector<Socket> idle;
  idle.reserve(kConnections);
  while (idle.size() < kConnections) idle.push_back(Socket::TcpTo(port));
  registrar.Disconnect();
  EXPECT_EQ(reports.Wait(1).size(), 1U);
  for (int i = 0; i < 50; ++i) idle.push_back(Socket::TcpTo(port));  // they take the place that got free
  EXPECT_NE(registrar.Grant("300"), "") << "the line has no descriptor left";
  SipCaller caller(port);
  Connect(caller);
  EXPECT_TRUE(caller.HearsMore());
  HangUp(caller);
}

class SipRegistrationOver : public SipRegistrationTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(SipRegistrationOver, StaysRegisteredThroughLossAndLeavesWhenClosed) {
  Registrar registrar(GetParam() == "tcp", port);
  settings.timers.registration_retry_first = settings.timers.registration_retry_longest = milliseconds(200);
  Open(registrar, GetParam());
  EXPECT_EQ(registrar.Grant("1").find("<sip:100@" + settings.listen), 0U);
  EXPECT_NE(registrar.Grant("1"), "") << "the registration was not refreshed";
  for (int i = 0; i < 2; ++i) {
    const std::string request = registrar.Next();
    ASSERT_NE(request, "") << "a refusal ended the tries";
    registrar.Reply(ReplyTo(request, "503 Service Unavailable"));
  }
  EXPECT_NE(registrar.Grant("300"), "");
  const auto reported = reports.Wait(2);
  ASSERT_EQ(reported.size(), 2U) << "an owner who cannot be reached must learn it";
  EXPECT_NE(reported[0].find(settings.account + " failed (503 Service Unavailable)"), std::string::npos);
  EXPECT_NE(reported[1].find("works again"), std::string::npos);
  if (GetParam() == "tcp") {
    registrar.Disconnect();
    EXPECT_NE(registrar.Grant("300"), "") << "calls would be lost until the next refresh";
  }
  line->Close();
  EXPECT_NE(Header(registrar.Next(), "Contact").find("expires=0"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Transports, SipRegistrationOver, ::testing::Values("udp", "tcp"));

}  // namespace
}  // namespace orven::test
