// SPDX-License-Identifier: GPL-3.0-or-later
// The configured telephone lines in a real file and at a real registrar.
#include <gmock/gmock.h>
#include <qtestsupport_core.h>

#include <QProcess>

#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/line/config/line_settings.h"
#include "adapters/line/setup/file_telephone_lines.h"
#include "adapters/line/setup/sip_probe.h"
#include "base/runtime_error.h"
#include "integration/line/sip/network.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

constexpr int kPatience = 20'000;  // milliseconds

std::string Free() {
  return "127.0.0.1:" + std::to_string(FreePort());
}

/// A real registrar, which wants the password "secret" of its account "100" and answers others by the status
/// that they are named after.
class Registrar {
 public:
  Registrar() {
    PutFile(folder_ / "routes", R"cfg(request_route {
  if ($fU != "100") { sl_send_reply("$(fU{s.int})", "As Asked"); exit; }
  if ($au != "100" || !pv_www_authenticate("home", "secret", "0")) { www_challenge("home", "1"); exit; }
  save("location");
})cfg");
    process_.setWorkingDirectory(QString::fromStdString(folder_ / ""));
    process_.startCommand(QString::fromStdString(
        "timeout 55 kamailio -f routes -DD -E -n 1 -N 1 -m 16 -M 4 -w . -Y . -P ./pid -l udp:" + address +
        " -l tcp:" + address +
        " -L /usr/lib/x86_64-linux-gnu/kamailio/modules:/usr/lib/aarch64-linux-gnu/kamailio/modules"
        " --loadmodule=sl.so --loadmodule=pv.so --loadmodule=usrloc.so --loadmodule=registrar.so "
        "--loadmodule=auth.so"));
    const auto port = static_cast<std::uint16_t>(std::stoi(address.substr(address.find(':') + 1)));
    for (bool up = false; !up;) {
      try {
        up = Socket::TcpTo(port).Fd() >= 0;
      } catch (const std::system_error&) {
        if (process_.waitForFinished(20)) throw;
      }
    }
  }
  ~Registrar() {
    process_.terminate();
    process_.waitForFinished();
  }

  const std::string address = Free();

 private:
  ScratchFolder folder_;
  QProcess process_;
};

class TelephoneLinesTest : public testing::Test {
 protected:
  TelephoneLines::Configured Given(const std::string& text) {
    PutFile(path, text);
    return lines.Read();
  }
  static TelephoneLine Account(const std::string& server) {
    TelephoneLine line;
    line.name = "Home";
    line.listen = Free();
    line.server = server;
    line.user = "100";
    line.password = "secret";
    return line;
  }
  /// Takes what lines.ini has into use, as the program does, and returns its first line.
  TelephoneLine Use(const std::string& text) {
    const auto first = Given(text).lines.at(0);
    service.LineClose(0);
    std::vector<std::string> problems;
    EXPECT_TRUE(service.Replace(MakeTelephoneLines(
        path, loop, clock, problems, [](auto&) {}, states)));
    opened = service.LineOpen(0, 4, 8) == kTelephonyOk;
    return first;
  }
  bool Shows(const TelephoneLine& line, const std::string& state) {
    return QTest::qWaitFor([&] { return lines.State(line).find(state) != std::string::npos; }, kPatience);
  }
  LineTestResult Result(const TelephoneLine& line) {
    std::optional<LineTestResult> result;
    lines.Test(line, [&](const LineTestResult& told) { result = told; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, kPatience));
    return result.value_or(LineTestResult{});
  }

  ScratchFolder folder;
  const std::string path = folder / "lines.ini";
  QtEventLoop loop;
  QtClock clock;
  LineStates states;
  LineService service{loop, {}};
  FileTelephoneLines lines{path, loop, service, states};
  bool opened = false;
};

TEST_F(TelephoneLinesTest, WhatIsWrongStaysInTheFileAndWhatIsNoTextIsKeptBesideIt) {
  auto given = lines.Read();
  given.lines.at(0).name = "Here";
  lines.Store(given.lines);
  EXPECT_EQ(lines.Read().lines.at(0).listen, "127.0.0.1:5060") << "the line that there is without a file";
  given = Given("[Odd]\ntype = telegraph\n[Home]\ntype = sip\nlisten = 127.0.0.1:5060\ntransport = bus\n");
  EXPECT_EQ(given.complaints.size(), 2U);
  given.lines.at(0).transport = "tcp";
  lines.Store(given.lines);
  EXPECT_EQ(ContentOf(path),
            "[Odd]\ntype = telegraph\n[Home]\ntype = sip\nlisten = 127.0.0.1:5060\ntransport = tcp\n");
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0600});
  EXPECT_EQ(folder.Count("lines.ini.damaged"), 0U) << "nothing was lost";
  lines.Store(Given("\xFF\xFE\x01 no text\n[Home]\ntype = sip\nlisten = 127.0.0.1:5060\n").lines);
  EXPECT_EQ(folder.Count("lines.ini.damaged"), 1U);
  given = lines.Read();
  EXPECT_TRUE(given.complaints.empty());
  PutFile(path, "[Home]\ntype = sim\n");
  EXPECT_THROW(lines.Store(given.lines), RuntimeError) << "another program's change would be lost";
  EXPECT_EQ(ContentOf(path), "[Home]\ntype = sim\n");
  FileTelephoneLines nowhere(folder / "no/such/folder/lines.ini", loop, service, states);
  EXPECT_THROW(nowhere.Store(nowhere.Read().lines), RuntimeError);
}

TEST_F(TelephoneLinesTest, ARegistrarAcceptsOrRefusesTheLoginAndTheListShowsIt) {
  const Registrar registrar;
  const std::tuple<const char*, const char*, const char*, const char*, const char*> logins[] = {
      {"udp", "100", "", "secret", " accepts the account 100."},
      {"tcp", "100", "", "secret", " accepts the account 100."},
      {"udp", "100", "", "hidden", "the user \"100\" or the password is wrong."},
      {"tcp", "100", "101", "secret", "the user \"101\" or the password is wrong."},
      {"udp", "403", "", "", "or the account may not be used from here."},
      {"udp", "404", "", "", "knows no user \"404\" (404 As Asked)."},
      {"udp", "406", "", "", "does not accept it (406 As Asked)."},
      {"udp", "500", "", "", "is there, but cannot do it now (500 As Asked)."}};
  for (const auto& [transport, user, auth_user, password, words] : logins) {
    auto line = Account(registrar.address);
    line.transport = transport;
    line.user = user;
    line.auth_user = auth_user;
    line.password = password;
    const auto result = Result(line);
    EXPECT_EQ(result.passed, result.text.find(" accepts ") != std::string::npos);
    EXPECT_THAT(result.text, testing::AllOf(testing::EndsWith(words), testing::Not(HasSubstr("hidden"))));
  }
  const auto section = "[Home]\ntype = sip\nlisten = " + Free() + "\naccount = sip:100@" + registrar.address;
  auto line = Use(section + "\npassword = wrong\n");
  EXPECT_TRUE(Shows(line, "Registration failed: 401")) << lines.State(line);
  line = Use(section + "\npassword = secret\n");
  EXPECT_TRUE(Shows(line, "Registered")) << lines.State(line);
  EXPECT_FALSE(service.Replace({})) << "an open line was taken away";
  EXPECT_TRUE(Result(line).passed);
  EXPECT_EQ(lines.State(line), "Registered") << "the test left the registration alone";
  line.password = "wrong";
  EXPECT_FALSE(Result(line).passed) << "the password on test is another one";
  EXPECT_EQ(lines.State(line), "Not in use yet");
}

TEST_F(TelephoneLinesTest, AServerThatCannotBeReachedIsNamedInTheListAndByTheTest) {
  for (const auto& [server, words] :
       {std::pair{"192.0.2.1"s, "0.0.0.0 as address for calls uses every network"},
        {"no-such-host.invalid"s, "no server named no-such-host"},
        {Free() + "\ntransport = tcp", "is refused"}}) {
    auto line = Use("[Far]\ntype = sip\naccount = sip:100@" + server + "\nlisten = " + Free() + '\n');
    ASSERT_TRUE(opened);
    EXPECT_TRUE(Shows(line, words)) << lines.State(line);
    EXPECT_THAT(Result(line).text, HasSubstr(words));
    line.listen = "192.0.2.1:5060";
    EXPECT_THAT(Result(line).text, HasSubstr("not an address of this computer"));
  }
}

TEST_F(TelephoneLinesTest, ALineIsTestedWithAllThatItIsOpenedWith) {
  const auto good = "[Home]\ntype = sip\nlisten = " + Free() + "\ntls_trust = trust.pem\n";
  auto line = Use(good);
  ASSERT_TRUE(opened);
  EXPECT_EQ(lines.State(line), "Waiting for calls");
  EXPECT_TRUE(Result(line).passed) << Result(line).text;
  line.ring_seconds = 9;
  EXPECT_TRUE(Result(line).passed) << "its own line holds the port: " << Result(line).text;
  line = Use(good + "tls_certificate = gone.pem\ntls_listen = " + Free() + '\n');
  EXPECT_FALSE(opened);
  EXPECT_THAT(Result(line).text, HasSubstr("gone.pem cannot be used"));
  EXPECT_THAT(lines.State(line), HasSubstr("gone.pem cannot be used"));
  line = Use(good + "tls_listen = " + Free() + '\n');
  EXPECT_TRUE(Result(line).passed) << Result(line).text;
  line.kind = LineKind::Sim;
  line.script = "calls.sim";
  PutFile(folder / "calls.sim", "1 offer\n2 sing\n");
  EXPECT_THAT(Result(line).text, HasSubstr("calls.sim:2:"));
}

TEST_F(TelephoneLinesTest, ASilentServerIsNamedAndTheTestOfOneCanBeStopped) {
  const auto silent = Socket::Udp();
  const auto listening = Socket::TcpListening();
  auto line = Account("127.0.0.1:" + std::to_string(silent.Port()));
  const auto probe = [](const TelephoneLine& tested) {
    const auto edit = EditOf(tested, nullptr);
    return ProbeSipLine(tested, SipSettingsOf({edit.name, 0, edit.type, edit.values}, ""),
                        {.patience = milliseconds(300)}, std::atomic<bool>(false));
  };
  EXPECT_THAT(probe(line).text, HasSubstr("no answer"));
  EXPECT_NE(silent.ReceiveText(milliseconds(5000)), "") << "nobody was asked";
  auto encrypted = Account("127.0.0.1:" + std::to_string(listening.Port()));
  encrypted.transport = "tls";
  EXPECT_THAT(probe(encrypted).text, HasSubstr("often 5061"));
  bool told = false;
  lines.Test(line, [&](const LineTestResult&) { told = true; });
  EXPECT_NE(silent.ReceiveText(milliseconds(5000)), "");
  lines.CancelTest();
  line.kind = LineKind::Sim;
  EXPECT_TRUE(Result(line).passed);
  EXPECT_FALSE(told);
}

}  // namespace
}  // namespace orven::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);  // serial ports and the event loop need one
  return RUN_ALL_TESTS();
}
