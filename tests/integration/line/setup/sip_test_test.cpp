// SPDX-License-Identifier: GPL-3.0-or-later
// The test of a SIP line, and what the list says of one, against a real registrar.
#include <gmock/gmock.h>

#include "adapters/line/config/line_settings.h"
#include "adapters/line/service/line_service.h"
#include "adapters/line/setup/file_telephone_lines.h"
#include "adapters/line/setup/sip_probe.h"
#include "adapters/line/sip/sip_line.h"
#include "integration/line/setup/registrar.h"
#include "integration/line/setup/waiting_loop.h"
#include "integration/line/sip/network.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

class SipLineTestRun : public testing::Test {
 protected:
  static TelephoneLine Account(std::uint16_t server_port) {
    TelephoneLine line;
    line.name = "Home";
    line.listen = "127.0.0.1:" + std::to_string(FreePort());
    line.server = "127.0.0.1:" + std::to_string(server_port);
    line.user = "100";
    line.password = "secret";
    return line;
  }
  static SipLineSettings Settings(const TelephoneLine& line) {
    const auto edit = EditOf(line, nullptr);
    return SipSettingsOf({edit.name, 0, edit.type, edit.values}, "");
  }
  /// Takes what lines.ini has into use, as the program does, and gives its first line.
  TelephoneLine Use(const std::string& text) {
    PutFile(folder / "lines.ini", text);
    std::vector<TelephoneDevice> devices;
    states.Clear();
    for (const auto& section : ReadLines(folder / "lines.ini").sections) {
      auto settings = SipSettingsOf(section, folder / "");
      settings.registration_news = [state = states.Add(section).registration](const RegistrationNews& news) {
        state->Take(news);
      };
      devices.push_back({MakeSipLine(settings)});
    }
    service.LineClose(0);
    EXPECT_TRUE(service.Replace(std::move(devices)));
    return lines.Read().lines.at(0);
  }
  LineTestResult Result(const TelephoneLine& line) {
    std::optional<LineTestResult> result;
    lines.Test(line, [&](const LineTestResult& told) { result = told; });
    EXPECT_TRUE(loop.RunUntil([&] { return result.has_value(); }));
    return result.value_or(LineTestResult{});
  }

  ScratchFolder folder;
  WaitingLoop loop;
  LineStates states;
  LineService service{loop, {}};
  FileTelephoneLines lines{folder / "lines.ini", loop, service, states};
};

TEST_F(SipLineTestRun, TellsRightFromWrongLogins) {
  const Registrar registrar;
  auto line = Account(registrar.Port());
  for (const char* transport : {"udp", "tcp"}) {
    line.transport = transport;
    const auto right = Result(line);
    EXPECT_TRUE(right.passed) << right.text;
    EXPECT_THAT(right.text, HasSubstr("accepts the account 100"));
    line.password = "wrong";
    const auto wrong = Result(line);
    EXPECT_FALSE(wrong.passed);
    EXPECT_THAT(wrong.text, HasSubstr("password is wrong"));
    EXPECT_THAT(wrong.text, testing::Not(HasSubstr("\"wrong\""))) << "no text quotes a password";
    line.password = "secret";
  }
  line.auth_user = "101";
  EXPECT_THAT(Result(line).text, HasSubstr("the user \"101\""));
  line.auth_user.clear();
  line.transport = "tls";
  const std::atomic<bool> never = false;
  const auto plain = TestSipLine(line, Settings(line), {.patience = milliseconds(500)}, never);
  EXPECT_FALSE(plain.passed);
  EXPECT_THAT(plain.text, HasSubstr("often 5061"));
}

TEST_F(SipLineTestRun, AServerThatCannotBeReachedIsNamedInTheListAsInTheTest) {
  const auto address = "listen = 127.0.0.1:" + std::to_string(FreePort()) + '\n';
  for (const auto& [server, words] :
       {std::pair{"192.0.2.1"s, "0.0.0.0 as address for calls uses every network"},
        {"no-such-host.invalid"s, "no server named no-such-host"},
        {"127.0.0.1:" + std::to_string(FreePort()) + "\ntransport = tcp", "is refused"}}) {
    auto line = Use("[Far]\ntype = sip\naccount = sip:100@" + server + '\n' + address);
    ASSERT_EQ(service.LineOpen(0, 4, 8), kTelephonyOk);
    EXPECT_TRUE(loop.RunUntil([&] { return lines.State(line).find(words) != std::string::npos; }))
        << lines.State(line);
    EXPECT_THAT(Result(line).text, HasSubstr(words));
    line.listen = "192.0.2.1:5060";
    EXPECT_THAT(Result(line).text, HasSubstr("none of this computer's"));
  }
}

TEST_F(SipLineTestRun, ALineIsTestedWithAllThatItIsOpenedWith) {
  const auto port = [] { return std::to_string(FreePort()); };
  const auto good = "[Home]\ntype = sip\nlisten = 127.0.0.1:" + port() + "\ntls_trust = trust.pem\n";
  auto line = Use(good);
  ASSERT_EQ(service.LineOpen(0, 4, 8), kTelephonyOk);
  EXPECT_EQ(lines.State(line), "Waiting for calls");
  EXPECT_TRUE(Result(line).passed) << Result(line).text;
  line.ring_seconds = 9;
  EXPECT_TRUE(Result(line).passed) << "its own line holds the port: " << Result(line).text;

  line = Use(good + "tls_certificate = gone.pem\ntls_listen = 127.0.0.1:" + port() + '\n');
  EXPECT_FALSE(Result(line).passed);
  EXPECT_THAT(Result(line).text, HasSubstr("gone.pem cannot be used"));
  ASSERT_NE(service.LineOpen(0, 4, 8), kTelephonyOk);
  EXPECT_THAT(lines.State(line), HasSubstr("gone.pem cannot be used"));
  line = Use(good + "tls_listen = 127.0.0.1:" + port() + '\n');
  EXPECT_TRUE(Result(line).passed) << Result(line).text;
}

TEST_F(SipLineTestRun, AScriptLiesBesideTheFileAndIsRead) {
  TelephoneLine line;
  line.kind = LineKind::Sim;
  line.script = "calls.sim";
  PutFile(folder / "calls.sim", "1 offer\n2 sing\n");
  EXPECT_THAT(Result(line).text, HasSubstr("calls.sim:2:"));
}

TEST_F(SipLineTestRun, AServerThatIsSilentIsNamedAndTheTestCanBeStopped) {
  const auto silent = Socket::Udp();
  const auto line = Account(silent.Port());
  const std::atomic<bool> never = false;
  const auto result = TestSipLine(line, Settings(line), {.patience = milliseconds(300)}, never);
  EXPECT_FALSE(result.passed);
  EXPECT_THAT(result.text, HasSubstr("no answer"));
  EXPECT_NE(silent.ReceiveText(milliseconds(5000)), "") << "nobody was asked";
  bool told = false;
  lines.Test(line, [&](const LineTestResult&) { told = true; });
  EXPECT_NE(silent.ReceiveText(milliseconds(5000)), "");
  lines.CancelTest();
  TelephoneLine sim;
  sim.kind = LineKind::Sim;
  EXPECT_TRUE(Result(sim).passed);
  EXPECT_FALSE(told);
}

TEST_F(SipLineTestRun, TheListShowsTheRegistrationAsItIsAndATestLeavesItAlone) {
  const Registrar registrar;
  const auto section = "[Home]\ntype = sip\nlisten = 127.0.0.1:" + std::to_string(FreePort()) +
                       "\naccount = sip:100@127.0.0.1:" + std::to_string(registrar.Port()) + "\npassword = ";
  TelephoneLine line;
  for (const auto& [password, state] :
       {std::pair{"wrong", "Registration failed: 401"}, {"secret", "Registered"}}) {
    line = Use(section + password + '\n');
    ASSERT_EQ(service.LineOpen(0, 4, 8), kTelephonyOk);
    EXPECT_TRUE(loop.RunUntil([&] { return lines.State(line).find(state) != std::string::npos; }))
        << lines.State(line);
  }
  EXPECT_FALSE(service.Replace({})) << "an open line was taken away";
  EXPECT_TRUE(Result(line).passed);
  line.password = "wrong";
  EXPECT_FALSE(Result(line).passed) << "the password on test is another one";
  EXPECT_EQ(lines.State(line), "Not in use yet");
  service.LineClose(0);
}

}  // namespace
}  // namespace orven::test
