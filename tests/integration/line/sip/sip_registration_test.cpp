// SPDX-License-Identifier: GPL-3.0-or-later
// A line with an account: its requests to the server, and its reactions to the answers.
#include <openssl/evp.h>
#include <sched.h>
#include <sys/resource.h>

#include <array>
#include <map>
#include <regex>
#include <set>

#include "adapters/line/sip/libre.h"
#include "integration/line/sip/sip_line_test.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using std::chrono::seconds;
using std::string_literals::operator""s;

std::string Digest(const std::string& algorithm, const std::string& text) {
  const char* name = algorithm == "SHA-512-256" ? "SHA512-256" : algorithm.c_str();
  std::array<std::uint8_t, EVP_MAX_MD_SIZE> digest{};
  std::array<char, 2 * EVP_MAX_MD_SIZE + 1> hex{};
  std::size_t size = 0;
  (void)EVP_Q_digest(nullptr, name, nullptr, text.data(), text.size(), digest.data(), &size);
  (void)re_snprintf(hex.data(), hex.size(), "%w", digest.data(), size);
  return hex.data();
}

/// Returns the algorithm with which a request proves the password "secret" of "100" ("MD5", "SHA-256-sess"
/// …), or "wrong".
std::string Proof(const std::string& answer) {
  std::map<std::string, std::string> of;
  const std::regex parameter(" ([a-z]+)=\"?([^\",]*)");
  for (std::sregex_iterator one(answer.begin(), answer.end(), parameter), end; one != end; ++one)
    of[one->str(1)] = one->str(2);
  const std::string algorithm = of["algorithm"].empty() ? "MD5" : of["algorithm"];
  const std::string basic = algorithm.substr(0, algorithm.find("-sess"));
  std::string secret = Digest(basic, "100:" + of["realm"] + ":secret");
  if (basic != algorithm) secret = Digest(basic, secret + ":" + of["nonce"] + ":" + of["cnonce"]);
  const std::string once = of["qop"].empty() ? "" : of["nc"] + ":" + of["cnonce"] + ":" + of["qop"] + ":";
  secret += ":" + of["nonce"] + ":" + once + Digest(basic, "REGISTER:" + of["uri"]);
  return of["response"] == Digest(basic, secret) ? algorithm : "wrong";
}

constexpr const char* kPublic = "198.51.100.7:4000";

class SipRegistrationTest : public SipLineTest {
 protected:
  SipRegistrationTest() {
    account.password = "secret";
    settings.tls_made_certificate = folder / "made.pem";
    settings.report = [this](const std::string& text) { events.Add(text); };
    settings.registration_news = [this](const RegistrationNews& news) {
      const bool registered = news.state == RegistrationNews::State::Registered;
      events.Add((registered ? "registered" : std::to_string(news.status)) + ", next after " +
                 std::to_string(news.pause / seconds(1)) + " s, " + CauseOf(news.trouble.Text()));
    };
  }
  void Open(std::uint16_t server) { OpenAt("127.0.0.1:" + std::to_string(server)); }
  void OpenAt(const std::string& server) {
    account.address = "sip:100@" + server;
    settings.accounts = {account};
    OpenLine();
  }

  /// Returns the next REGISTER that is not a retransmission; "" if none comes in time.
  std::string Next(const Socket& server, milliseconds limit = milliseconds(8000)) {
    std::string request;
    do request = server.Receive(limit);
    while (!request.empty() && (!request.starts_with("REGISTER ") ||
                                !seen_.insert(Header(request, "Call-ID") + Header(request, "CSeq")).second));
    return request;
  }

  /// Returns an answer, given as its status and headers with "|" in between. "WWW:a:" and "Proxy:a:" are
  /// challenges with the nonce "a", "here" is the line's address, and "Seen: 4000" means that the server sees
  /// the line at port 4000 of a public address.
  std::string Answer(const std::string& request, const std::string& text) const {
    EXPECT_NE(request, "") << "the server was not asked, or out of turn";
    std::string headers = text.substr(std::min(text.find('|'), text.size()));
    const std::pair<const char*, std::string> meanings[] = {
        {"(WWW|Proxy):(.):", "$1-Authenticate: Digest realm=\"home\", nonce=\"$2\", "},
        {"here", settings.listen},
        {"\\|([^|]*)", "$1\r\n"}};
    for (const auto& [short_form, meant] : meanings)
      headers = std::regex_replace(headers, std::regex(short_form), meant);
    const std::string reply = ReplyTo(request, text.substr(0, 3) + " X", headers);
    const std::string seen = Header(reply, "Seen");
    return std::regex_replace(reply, std::regex(seen.empty() ? "^$" : ";rport"),
                              ";received=198.51.100.7;rport=" + seen);
  }

  /// Returns each Contact with its lifetime, and the proof of the password: "here=300 MD5".
  std::string Summary(const std::string& request) const {
    std::string summary;
    const std::regex fact("uthorization: (.*)|Contact: <sip:100@(.*)>;expires=([0-9]*)");
    for (std::sregex_iterator one(request.begin(), request.end(), fact), end; one != end; ++one) {
      const std::string address = one->str(2) == settings.listen ? "here" : one->str(2);
      summary += " " + (address.empty() ? Proof(one->str(1)) : address + "=" + one->str(3));
    }
    return summary.substr(std::min<std::size_t>(1, summary.size()));
  }

  const ScratchFolder folder;
  SipAccount account;

 private:
  std::set<std::string> seen_;
};

TEST_F(SipRegistrationTest, FollowsEachAnswerOfTheServer) {
  settings.timers.registration_retry_first = seconds(10);
  settings.timers.registration_retry_longest = seconds(900);
  const std::string ask = "401|WWW:a:qop=\"auth-int,auth\"", again = " / 401|WWW:b:stale=true",
                    hash = "401|WWW:a:algorithm=";
  const std::string realm = "401|WWW-Authenticate: Digest nonce=\"a\", realm=";
  const std::string md5 = "|here=300 MD5", seen = kPublic + "=300"s,
                    brief = "423|Min-Expires: ", soon = ", next after 10 s";
  const std::string registered = "registered, next after 240 s", sha = "|here=300 SHA-256";
  // The answers, separated by " / "; the requests after the first one, each after "|"; the expected report.
  const std::tuple<std::string, std::string, std::string> kRows[] = {
      {"", "", ""},
      {"200", "", registered},
      {"200|Expires: 100", "", "registered, next after 80 s"},
      {"200|Expires: 99999999999", "", "registered, next after 2880 s"},
      {"200|Expires: soon", "", registered},
      {"200|Contact: <sip:9@x>;expires=9|Contact: <sip:100@x>;expires=7|Contact: <sip:100@here>;expires=125|"
       "Contact: <sip:100@y>;expires=3600|Expires: 0",
       "", "registered, next after 100 s"},
      {"200|Contact: <sip:100@here>;expires=0|Expires: 300", "", "200" + soon},
      {brief + "400 / 200", "|here=400", "registered, next after 320 s"},
      {brief + "400 / " + brief + "500 / " + brief + "600 / " + brief + "700", "|here=400|here=500|here=600",
       "423" + soon},
      {brief + "300", "", "423" + soon},
      {"503|Retry-After: 120 (later);duration=60", "",
       "503, next after 120 s, The server %1 cannot register"},
      {"480|Retry-After: 1", "", "480" + soon},
      {"600|Retry-After: 4294967296", "", "600, next after 86400 s"},
      {"403", "", "403, next after 900 s, The server %1 does not allow"},
      {"404", "", "404" + soon + ", The server %1 does not know"},
      {ask + " / 200", md5, registered},
      {hash + "MD5-sess / 200", "|here=300 MD5-sess", registered},
      {hash + "SHA-256 / 200", sha, registered},
      {hash + "SHA-512-256 / 200", "|here=300 SHA-512-256", registered},
      {"401|WWW-Authenticate: Basic realm=\"home\"|WWW:a:algorithm=NEW|WWW:a:qop=\"auth-int\"|"
       "WWW:a:algorithm=SHA-256,qop=auth|WWW:a:qop=auth / 200",
       sha, registered},
      {hash + "NEW", "", "401" + soon + ", The server %1 asks for a login"},
      {"407|Proxy:a:qop=auth / " + ask + " / 200", md5 + md5 + " MD5", registered},
      {ask + " / 401|WWW:b:qop=auth", md5, "401, next after 900 s, The server %1 refuses the password"},
      {ask + " / 200|Expires: 2 / 401|WWW:b:qop=auth / 200", md5 + md5 + md5, registered},
      {ask + again + " / 200", md5 + md5, registered},
      {realm + "1 / " + realm + "2 / " + realm + "3 / " + realm + "4 / " + realm + "5",
       md5 + md5 + " MD5" + md5 + " MD5 MD5" + md5 + " MD5 MD5 MD5", "401, next after 900 s"},
      {ask + again + again + again, md5 + md5 + md5, "401, next after 900 s"},
      {"200|Seen: 4000|Expires: 100 / 200", "|" + seen + " here=0", registered},
      {ask + "|Seen: 4000 / 200|Seen: 4000", "|" + seen + " MD5", registered},
      {"200|Seen: 4000|Expires: 100 / 200|Seen: 40001", "|" + seen + " here=0", registered},
  };
  for (const auto& [answers, more, outcome] : kRows) {
    const Socket server = Socket::Udp();
    events.Clear();
    Open(server.Port());
    std::string requests;
    for (std::size_t at = 0, end = 0; end != std::string::npos; at = end + 3) {
      end = answers.find(" / ", at);
      const std::string request = Next(server);
      requests += "|" + Summary(request);
      if (!answers.empty()) server.SendTo(port, Answer(request, answers.substr(at, end - at)));
    }
    EXPECT_EQ(requests, "|here=300" + more);
    EXPECT_TRUE(outcome.empty() || events.Wait(outcome)) << answers;
    line->Close();
    const std::string contact = more.find(seen) != std::string::npos ? kPublic : "here";
    const std::string farewell = outcome.starts_with("registered") ? contact + "=0" : "";
    EXPECT_TRUE(Summary(Next(server, milliseconds(0))).starts_with(farewell)) << answers;
    EXPECT_EQ(Next(server, milliseconds(0)), "") << answers;
  }
}

TEST_F(SipRegistrationTest, CallsThroughARouterReachTheLine) {
  const Socket server = Socket::Udp(), proxy = Socket::Udp();
  settings.timers.keep_alive = milliseconds(50);
  settings.timers.server_patience = milliseconds(300);
  settings.accounts = {{"sip:200@home.test"}};
  settings.accounts[0].proxy = "127.0.0.1:" + std::to_string(proxy.Port());
  settings.accounts.push_back({"sip:100@127.0.0.1:" + std::to_string(server.Port())});
  OpenLine();
  const std::string first = proxy.Receive();
  EXPECT_TRUE(first.starts_with("REGISTER sip:home.test SIP/2.0")) << first;
  EXPECT_EQ(Header(first, "Route"), "<sip:" + settings.accounts[0].proxy + ";lr>");
  for (int i = 0; i < 2; ++i) server.SendTo(port, Answer(Next(server), "200|Seen: 4000"));
  EXPECT_TRUE(server.Receive().starts_with("OPTIONS sip:100@"));
  const auto after = [](const char* retransmissions, const Socket& peer) {
    std::string text;
    do text = peer.Receive();
    while (text.starts_with(retransmissions));
    return text;
  };
  EXPECT_TRUE(after("OPTIONS sip:100@", server).starts_with("OPTIONS sip:127.0.0.1:"))
      << "it may know no user but itself";
  EXPECT_EQ(after("OPTIONS ", server), "\r\n\r\n") << "a router would forget the mapping";
  proxy.SendTo(port, Answer(first, "200|Seen: 4000|Require: outbound"));
  EXPECT_TRUE(after("REGISTER ", proxy).starts_with("\0\1"s))
      << "a server that knows the path is asked whether it works";
  // The server may say who calls, under any of its ports.
  caller->Send(std::regex_replace(caller->Text("INVITE"), std::regex("Contact"),
                                  "P-Asserted-Identity: \"Bo\" <sip:7@h>\r\nContact"));
  Play("CallerId 1 Bo/7,Ring 1 1");
  EXPECT_EQ(Header(caller->Take("180"), "Contact"), "<sip:100@"s + kPublic + ">");
}

TEST_F(SipRegistrationTest, AServerThatForgetsIsToldAgainAndOneThatFallsSilentIsTrouble) {
  const Socket server = Socket::Udp();
  settings.timers.keep_alive = milliseconds(50);
  settings.timers.server_patience = milliseconds(300);
  settings.timers.registration_rest = milliseconds(1);
  Open(server.Port());
  server.SendTo(port, Answer(Next(server), "200"));
  server.SendTo(port, Answer(server.Receive(), "200"));
  server.SendTo(port, Answer(server.Receive(), "404"));  // it has restarted
  server.SendTo(port, Answer(Next(server), "200"));
  server.SendTo(port, Answer(server.Receive(), "405"));
  const std::string again = Next(server);  // and no answer to the next question
  EXPECT_TRUE(
      events.Wait("Trouble The server 127.0.0.1:" + std::to_string(server.Port()) + " does not answer"));
  events.Clear();
  server.SendTo(port, Answer(again, "200"));
  EXPECT_TRUE(events.Wait("Trouble ")) << "its end";
  std::string text;
  do text = server.Receive();
  while (text.starts_with("OPTIONS ") || text == again);
  EXPECT_EQ(text, "\r\n\r\n") << "it is tired of questions only, and not registered at again and again";
}

TEST_F(SipRegistrationTest, IdleConnectionsLeaveRoomForCallsAndTheServer) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 4096);
  setrlimit(RLIMIT_NOFILE, &limit);
  const Socket server = Socket::TcpListening();
  settings.timers.registration_retry_first = settings.timers.silent_retry_first = milliseconds(200);
  settings.timers.registration_rest = std::chrono::hours(1);  // however slow this machine is
  account.transport = "tcp";
  Open(server.Port());
  std::optional<Socket> connection(server.Accept());
  connection->Send(Answer(Next(*connection), "200"));
  const Socket by_tcp = Socket::TcpTo(port);
  by_tcp.Send(caller->Text("INVITE"));
  EXPECT_NE(by_tcp.Receive(), "");
  std::vector<Socket> idle;
  idle.reserve(750);  // more than the line can have descriptors for
  while (idle.size() < 700) idle.push_back(Socket::TcpTo(port));
  connection.reset();
  EXPECT_TRUE(
      events.Wait(" failed (the connection broke); no calls can come in through it. ORVEN keeps trying."));
  while (idle.size() < 750) idle.push_back(Socket::TcpTo(port));  // these take the freed descriptor
  connection.emplace(server.Accept());
  for (const char* status : {"503", "503", "200"}) {
    const std::string request = Next(*connection);
    ASSERT_NE(request, "") << "the line has no descriptor left, or it stopped trying after a refusal";
    connection->Send(Answer(request, status));
  }
  EXPECT_TRUE(events.Wait(" works again."));
  Play("Ring 1 1,drop 1");
  EXPECT_NE(by_tcp.Receive().find("486"), std::string::npos) << "the call's connection was closed";
  Play("caller 2,> INVITE,Ring 2 1,answer 1,< 200,> ACK,Connected 2,hears 1,> BYE,< 200");
}

TEST_F(SipRegistrationTest, ResolvesNamesAndFollowsNetworkChangesWithoutLosingACall) {
  std::thread([this] {  // only this thread and its children see the other network
    if (::unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) GTEST_SKIP() << "only root can have its own network";
    const auto shell = [](const std::string& text) { EXPECT_EQ(std::system(text.c_str()), 0) << text; };
    PutFile(folder / "resolv.conf", "nameserver 127.0.0.1\n");
    shell("ip link set lo up && mount --make-rprivate / && mount --bind " + (folder / "resolv.conf") +
          " /etc/resolv.conf");
    const Socket heavy = Socket::Udp(), light = Socket::Udp(), last = Socket::Udp(),
                 by_tcp = Socket::TcpListening();
    std::string names =
        "dnsmasq --keep-in-foreground --conf-file=/dev/null --no-hosts --no-resolv --user=root --pid-file= "
        "--bind-interfaces --listen-address=127.0.0.1 --address=/a.test/phone.test/none.test/127.0.0.1 "
        "--srv-host=_sip._udp.none.test --naptr-record=home.test,2,1,s,SIP+D2U,,_sip._udp.home.test "
        "--naptr-record=home.test,1,1,s,SIPS+D2T,,_sips._tcp.home.test "
        "--srv-host=_sip._tcp.none.test,a.test," +
        std::to_string(by_tcp.Port());
    for (const auto& [server, rank] : {std::pair(&last, ",2,0"), {&light, ",1,0"}, {&heavy, ",1,65535"}})
      names += " --srv-host=_sip._udp.home.test,a.test," + std::to_string(server->Port()) + rank;
    const std::unique_ptr<FILE, int (*)(FILE*)> name_server(
        ::popen((names + " & read end; kill $!").c_str(), "w"), ::pclose);
    shell("timeout 9 sh -c 'until getent hosts a.test; do :; done' >/dev/null");
    settings.listen = "phone.test:" + std::to_string(port);
    OpenAt("none.test");
    EXPECT_TRUE(events.Wait("no server named none.test"));
    account.transport = "auto";
    OpenAt("none.test");
    EXPECT_NE(Next(by_tcp.Accept()), "") << "the other transport, which is offered";
    settings.timers.server_patience = milliseconds(300);
    OpenAt("home.test");
    EXPECT_NE(Next(heavy), "");  // which never answers
    light.SendTo(port, Answer(Next(light), "200|Seen: 4000"));
    light.SendTo(port, Answer(Next(light), "503"));
    last.SendTo(port, Answer(Next(last), "200|Seen: 4001"));
    last.SendTo(port, Answer(Next(last), "200|Expires: 1"));
    last.SendTo(port, Answer(Next(last), "503"));
    heavy.SendTo(port, Answer(Next(heavy), "200"));  // the one that worked was kept; now the first one
    Open(light.Port());
    light.SendTo(port, Answer(Next(light), "200"));
    Play("caller in the other network");
    const std::string invite = caller->Text("INVITE", caller->Sdp());
    caller->Send(std::regex_replace(invite, std::regex("ann@[^:]*"), "ann@phone.test"));
    Play("Ring 1 1,answer 1,< 200,> ACK,Connected 1");
    shell("ip addr delete 127.0.0.1/8 dev lo");
    EXPECT_TRUE(events.Wait("no route from phone.test to 127.0.0.1") &&
                events.Wait("Trouble The address for calls phone.test:"));
    shell("ip addr add 127.0.0.1/8 dev lo");
    light.SendTo(port, Answer(Next(light), "200"));
    EXPECT_TRUE(events.Wait("works again."));
    Play("hears 1,drop 2,< BYE");
  })
      .join();
}

/// An openssl process as the TLS peer.
struct OpenSsl {
  explicit OpenSsl(const std::string& command)
      : pipe(::popen(("exec timeout 30 openssl " + command + " -quiet 2>/dev/null").c_str(), "r"), ::pclose) {
  }
  /// Returns the beginning of the data it receives; "" if the connection ends.
  std::string Read() const {
    std::array<char, 12> words{};
    return std::fgets(words.data(), words.size(), pipe.get()) != nullptr ? words.data() : "";
  }
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe;
};

TEST_F(SipRegistrationTest, RegistersOnlyAtAServerWithATrustedCertificateForItsAddress) {
  account.transport = "tls";
  settings.tls_listen = "127.0.0.1:" + std::to_string(FreePort());  // has rules of its own
  settings.timers.silent_retry_first = milliseconds(200);
  // The trusted certificate, the presented certificate, and the expected result.
  const std::tuple<std::string, std::string, std::string> kRows[] = {
      {"127.0.0.1", "127.0.0.1", "REGISTER"},
      {"127.0.0.9", "127.0.0.9", "mismatch"},
      {"", "127.0.0.1", "certificate is not accepted: self"},
  };
  for (const auto& [trusted, shown, outcome] : kRows) {
    // The server has a certificate for an IP address and ends after one connection. Its input is a FIFO that
    // never ends.
    const std::string file = folder / shown;
    const std::string make =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 1 -subj /CN=x -addext subjectAltName=IP:" + shown +
        " -keyout " + file + ".key -out " + file + " 2>/dev/null; mkfifo " + file + ".in";
    ASSERT_TRUE(std::filesystem::exists(file) || std::system(make.c_str()) == 0);
    const std::uint16_t server_port = FreePort();
    const OpenSsl server("s_server -naccept 1 -accept 127.0.0.1:" + std::to_string(server_port) + " -cert " +
                         file + " -key " + file + ".key <>" + file + ".in");
    settings.tls_trust = trusted.empty() ? "" : folder / trusted;
    events.Clear();
    Open(server_port);
    events.Add(server.Read());
    EXPECT_TRUE(events.Wait(outcome)) << shown << ::testing::PrintToString(events.All());
    line->Close();
  }
}

TEST_F(SipRegistrationTest, CreatesACertificateOnceAndReportsAnUnusableOne) {
  settings.tls_listen = "127.0.0.1:" + std::to_string(FreePort());
  OpenLine();
  const std::string made = ContentOf(settings.tls_made_certificate);
  EXPECT_EQ(std::filesystem::status(folder / "made.pem").permissions(), std::filesystem::perms{0600});
  line->Close();
  OpenLine();
  EXPECT_EQ(ContentOf(settings.tls_made_certificate), made) << "telephones would have to trust a new one";
  PutFile(folder / "invite", caller->Text("INVITE"));
  const OpenSsl telephone("s_client -verify_return_error -CAfile " + (folder / "made.pem") + " -connect " +
                          settings.tls_listen + " <" + (folder / "invite"));
  EXPECT_EQ(telephone.Read(), "SIP/2.0 180");
  line->Close();
  PutFile(folder / "certificate.pem", made.substr(0, made.find("-----BEGIN PRIVATE")));
  settings.tls_certificate = folder / "certificate.pem";
  OpenLine(kTelephonyDeviceFailed, "expected a PEM file with a private key");
}

}  // namespace
}  // namespace orven::test
