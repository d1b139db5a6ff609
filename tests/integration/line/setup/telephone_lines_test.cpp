// SPDX-License-Identifier: GPL-3.0-or-later
// The configured telephone lines, with a real file, a real registrar and a pseudo-terminal.
#include <gmock/gmock.h>
#include <qtestsupport_core.h>

#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/line/config/line_settings.h"
#include "adapters/line/modem/modem_line.h"
#include "adapters/line/setup/file_telephone_lines.h"
#include "adapters/line/setup/modem_probe.h"
#include "adapters/line/setup/sip_probe.h"
#include "base/runtime_error.h"
#include "integration/line/sip/sip_line_test.h"
#include "modem_emulator/program/pseudo_terminal.h"
#include "support/scratch_folder.h"
#include "telephony/telephony_control.h"

namespace orven::test {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

std::string Free() {
  return "127.0.0.1:" + std::to_string(FreePort());
}

class TelephoneLinesTest : public testing::Test {
 protected:
  TelephoneLines::Configured Given(const std::string& text) {
    PutFile(path, text);
    return lines.Read();
  }
  /// Writes `text` to lines.ini, takes its lines into use as the program does, and returns the first one.
  TelephoneLine Use(const std::string& text) {
    const auto first = Given(text).lines.at(0);
    Tapi1.LineClose(0);
    std::vector<std::string> problems;
    EXPECT_TRUE(Tapi1.Replace(MakeTelephoneLines(
        path, loop, clock, problems, [](auto&) {}, states)));
    Tapi1.LineOpen(0, 4, 8);
    return first;
  }
  struct Told {
    bool passed;
    std::string text;
  };
  Told Result(const TelephoneLine& line) {
    std::optional<LineTestResult> result;
    lines.Test(line, [&](const LineTestResult& told) { result = told; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, 20'000));
    return result ? Told{result->passed, result->text.English()} : Told{};
  }

  /// Waits until the state of `line` contains `words`.
  void ExpectState(const TelephoneLine& line, const std::string& words) {
    const auto said = [&] { return lines.State(line).English().find(words) != std::string::npos; };
    EXPECT_TRUE(QTest::qWaitFor(said, 20'000)) << words << ": " << lines.State(line).English();
  }

  ScratchFolder folder;
  const std::string path = folder / "lines.ini";
  QtEventLoop loop;
  const QtClock clock;
  LineStates states;
  TelephonyControl Tapi1{loop, {}};
  FileTelephoneLines lines{
      path, loop,
      [this](std::int32_t index) {
        return FileTelephoneLines::Use{Tapi1.IsLineOpen(index), Tapi1.OpenFailureOf(index)};
      },
      states};
};

TEST_F(TelephoneLinesTest, InvalidPartsStayInTheFileAndABinaryFileIsSetAside) {
  auto given = lines.Read();
  given.lines.at(0).name = "Here";
  lines.Store(given.lines);
  EXPECT_EQ(lines.Read().lines.at(0).listen, "127.0.0.1:5060") << "the default line";
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
}

/// The registrar is a real one. It demands the password "secret" for the account "100" and answers any other
/// account with the status that the account is named after.
TEST_F(TelephoneLinesTest, TheTestAndTheListSayWhetherALineWorks) {
  const auto port = FreePort();
  const auto server = "127.0.0.1:" + std::to_string(port), own = Free();
  PutFile(folder / "routes", R"cfg(request_route {
  if ($fU != "100") { sl_send_reply("$(fU{s.int})", "As Asked"); exit; }
  if ($au != "100" || !pv_www_authenticate("home", "secret", "0")) { www_challenge("home", "1"); exit; }
  save("location");
})cfg");
  const auto command =
      "cd " + (folder / "") +
      " && kamailio -f routes -DD -E -n 1 -N 1 -m 16 -M 4 -w . -Y . -P ./pid -l udp:" + server +
      " -l tcp:" + server +
      " -L /usr/lib/x86_64-linux-gnu/kamailio/modules:/usr/lib/aarch64-linux-gnu/kamailio/modules"
      " --loadmodule=sl.so --loadmodule=pv.so --loadmodule=usrloc.so --loadmodule=registrar.so"
      " --loadmodule=auth.so >/dev/null 2>&1 & read end; kill $!; wait";
  const std::unique_ptr<FILE, int (*)(FILE*)> registrar(::popen(command.c_str(), "w"), ::pclose);
  const auto waiting = "timeout 20 bash -c 'until : </dev/tcp/127.0.0.1/" + std::to_string(port);
  ASSERT_EQ(std::system((waiting + "; do sleep 0.05; done' 2>/dev/null").c_str()), 0);
  const auto login = [&](const std::string& user) { return "account = sip:" + user + '@' + server; };
  const auto other = Socket::TcpListening();
  const auto taken = "127.0.0.1:" + std::to_string(other.Port());
  const auto wrong = "or the password is wrong."s, far = "* as address for calls uses every network"s;
  // The keys of a SIP line, and parts of its test result and of its state.
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {login("100") + "\npassword = secret", " accepts the account 100.", "Registered"},
      {login("100") + "\npassword = secret\ntransport = tcp", " accepts the account 100.", "Registered"},
      {login("100") + "\npassword = hidden", "the user \"100\" " + wrong, "Registration failed: 401"},
      {login("100") + "\nauth_user = 101", "the user \"101\" " + wrong, "Registration failed: 401"},
      {login("403"), "or the account may not be used from here.", "Registration failed: 403 As Asked"},
      {login("404"), "knows no user \"404\" (404 As Asked).", "Registration failed: 404 As Asked"},
      {login("406"), "does not accept it (406 As Asked).", "Registration failed: 406 As Asked"},
      {login("500"), "is there, but cannot do it now (500 As Asked).", "Registration failed: 500 As Asked"},
      {"account = sip:1@192.0.2.1", "network", far},
      {"account = sip:1@x.invalid", "network", "no server named x.invalid"},
      {"account = sip:1@" + Free() + "\ntransport = tcp", "Nothing listens at the server", "is refused"},
      {login("100") + "\nlisten = 192.0.2.1:5060", "not an address of this computer",
       "cannot listen on 192."},
      {login("100") + "\npassword = secret\naccount2 = sip:406@" + server,
       " does not accept it (406 As Asked).", "Registration failed: sip:406@" + server + ": 406 As Asked"},
      {login("100") + "\npassword = secret\naccount2 = sip:100@" + server + "\npassword2 = secret",
       "accepted: 100@" + server + ", 100@" + server + '.', "Registered"},
      {login("100") +
           "\npassword = secret\naccount2 = sip:1@home.test\ntransport2 = tls\ntls_trust = gone.pem",
       "expected a PEM file with certificates: correct", "Registration failed: sip:1@home.test: the file"},
      {"listen = x.invalid" + own.substr(own.find(':')),
       "is not found: choose another one in Options, Devices.", "address cannot be found"},
      {"listen = " + taken, "Port " + std::to_string(other.Port()) + " is taken by another program",
       "already in use"},
      {"tls_trust = trust.pem", "Calls can come in at " + own, "Waiting for calls"},
      {"tls_listen = " + Free(), "Calls can come in at " + own + ", with TLS", "Waiting for calls"},
      {"tls_certificate = gone.pem\ntls_listen = " + Free(), "gone.pem cannot be used",
       "gone.pem cannot be used"},
  };
  const auto home = "[Home]\ntype = sip\nlisten = " + own + '\n';
  for (const auto& [keys, words, state] : rows) {
    const auto line = Given(home + keys).lines.at(0);
    const auto result = Result(line);
    EXPECT_EQ(result.passed, state == "Registered" || state == "Waiting for calls") << keys;
    EXPECT_THAT(result.text, testing::AllOf(HasSubstr(words), testing::Not(HasSubstr("hidden")))) << keys;
    Use(home + keys);
    ExpectState(line, state);
  }
  auto line = Use(home);
  EXPECT_THAT(Result(line).text, HasSubstr("The line is open: calls can come in at " + own));
  line.ring_seconds = 9;
  EXPECT_TRUE(Result(line).passed) << "the port is taken by the line itself";
  line = Use(home + std::get<0>(rows[0]));
  ExpectState(line, "Registered");
  EXPECT_FALSE(Tapi1.Replace({})) << "an open line was taken away";
  EXPECT_TRUE(Result(line).passed);
  EXPECT_EQ(lines.State(line), Words("Registered")) << "the test left the registration alone";
  line.password = "wrong";
  EXPECT_FALSE(Result(line).passed) << "the entered password is tested, not the stored one";
  EXPECT_EQ(lines.State(line), Words("Not in use yet"));
  EXPECT_EQ(lines.FreeAddress(own), own) << "the line's own port can be used again";
  EXPECT_EQ(lines.FreeAddress(taken), "127.0.0.1:" + std::to_string(other.Port() + 2));
  EXPECT_EQ(lines.FreeAddress("192.0.2.1:5060"), "192.0.2.1:5060");
}

TEST_F(TelephoneLinesTest, ASilentServerIsReportedAndItsTestCanBeCancelled) {
  const auto silent = Socket::Udp(), listening = Socket::TcpListening();
  LineSection section{"Home", 0, "sip", {{"listen", Free()}}};
  const auto probe = [&section](const Socket& server, const char* transport) {
    section.values["account"] = "sip:1@127.0.0.1:" + std::to_string(server.Port());
    section.values["transport"] = transport;
    return ProbeSipLine(SipSettingsOf(section, ""), {.patience = milliseconds(300)}, false).text.English();
  };
  EXPECT_THAT(probe(listening, "tls"), HasSubstr("often 5061"));
  EXPECT_THAT(probe(silent, "udp"), HasSubstr("no answer"));
  EXPECT_NE(silent.Receive(), "") << "the server was not asked";
  bool told = false;
  lines.Test(LineOf(section), [&](const LineTestResult&) { told = true; });
  EXPECT_NE(silent.Receive(), "");
  lines.CancelTest();
  section = {"Sim", 0, "sim", {}};
  EXPECT_TRUE(Result(LineOf(section)).passed);
  EXPECT_FALSE(told);
}

TEST_F(TelephoneLinesTest, TheListSaysWhichLineIsOpenAndWhatIsWrongWithIt) {
  for (const auto& [port, problem] : {std::pair(folder / "none", "There is no port"),
                                      {folder / "", "cannot be opened: Is a directory"},
                                      {"/dev/null", "/dev/null is not a serial port"}}) {
    const auto line = Use("[USB]\ntype = modem\nport = " + port);
    ExpectState(line, problem);
    EXPECT_THAT(Result(line).text, testing::AllOf(HasSubstr("The line is open: "), HasSubstr(problem)));
  }
  PutFile(folder / "calls.sim", "0 offer\n");
  const auto other =
      Use("[SIP]\ntype = sip\nlisten = " + Free() + "\n[Sim]\ntype = sim\nscript = calls.sim\n");
  const auto sim = lines.Read().lines.at(1);
  ExpectState(other, "Waiting for calls");
  ExpectState(sim, "Another line is chosen");
  Tapi1.LineClose(0);
  ExpectState(sim, "Off");
  Tapi1.LineOpen(1, 4, 8);
  ExpectState(sim, "Waiting for calls");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Tapi1.HasCall(); }, 20'000)) << "the script is not played";
  EXPECT_THAT(Result(sim).text, HasSubstr("it has 1 steps."));
  PutFile(folder / "calls.sim", "1 offer\n2 sing\n");
  EXPECT_THAT(Result(sim).text, HasSubstr("calls.sim:2:"));
}

TEST_F(TelephoneLinesTest, TheTestTellsVoiceModemsFromOtherDevices) {
  std::string command, answer;
  int commands = 0;
  std::optional<emulator::PseudoTerminal> port;
  const auto read = [&](auto bytes) {
    command.append(bytes.begin(), bytes.end());
    if (!command.ends_with('\r') || ++commands == 1 || answer.empty()) return;  // the first answer is late
    const bool refused = answer == "8\r\nOK\r\n" && command.starts_with("AT+VSM");  // it has no formats
    const auto text = std::exchange(command, "") + "\r\n" + (refused ? "ERROR\r\n" : answer);  // with an echo
    port->Write(std::vector<std::uint8_t>(text.begin(), text.end()));
    if (answer == "unplugged") loop.Post([&port] { port.reset(); });
  };
  const auto line = LineOf({"USB", 0, "modem", {{"port", folder / "modem"}}});
  // What the modem answers to every command, and a part of the result.
  const std::pair<std::string, const char*> rows[] = {
      {"+FCLASS: (0,1,8)\r\n\r\nOK\r\n", "(its sound has 8 bits)"},
      {"8\r\n4,\"ULAW\",8,0,8000\r\nOK\r\n", "(its sound has 8 bits, mu-law)"},
      {"8\r\n131,\"16 BIT LINEAR\",16,0,8000\r\nOK\r\n", "(its sound has 16 bits)"},
      {"8\r\nOK\r\n", "supported"},
      {"unplugged", "is gone."},
      {"0,1,1.0,80,18\r\nOK\r\n", "not a voice modem"},
      {"", "Nothing answers"},
      {"ERROR\r\n", "not as a modem"},
      {std::string(100'000, 'x'), "Nothing answers"}};
  for (const auto& [text, words] : rows) {
    answer = text;
    port.emplace(
        folder / "modem", [] { return 4096; }, read);
    const auto result = Result(line);
    EXPECT_THAT(result.text, HasSubstr(words));
    EXPECT_EQ(result.passed, *words == '(') << words;
  }
  commands = 0;
  {
    FileTelephoneLines others(path, loop, {}, states);
    others.Test(line, [](auto&) {});
    EXPECT_TRUE(QTest::qWaitFor([&] { return commands == 1; }, 20'000));
  }  // it cancels its test and waits for the end
  port->Read();
  EXPECT_EQ(commands, 1) << "a cancelled test sends no more commands";
}

TEST_F(TelephoneLinesTest, SerialPortsAreFoundUnderTheirStableName) {
  EXPECT_EQ(ProbeModem(kAnyPort, false).text == Words("No modem is plugged in."), FindSerialPorts().empty());
  std::filesystem::create_directories(folder / "serial/by-id");
  for (const char* name : {"ttyACM0", "ttyUSB1", "tty0"}) PutFile(folder / name, "");
  std::filesystem::create_symlink("../../ttyACM0", folder / "serial/by-id/usb-Modem-if00");
  std::filesystem::create_symlink("../../ttyACM9", folder / "serial/by-id/usb-Gone-if00");
  std::vector<std::string> found;
  for (const auto& port : FindSerialPorts(folder / ""))
    found.push_back(std::filesystem::path(port.path).filename());
  EXPECT_THAT(found, testing::ElementsAre("usb-Modem-if00", "ttyUSB1"));
}

}  // namespace
}  // namespace orven::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);  // serial ports and the event loop need one
  return RUN_ALL_TESTS();
}
