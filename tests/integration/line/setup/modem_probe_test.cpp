// SPDX-License-Identifier: GPL-3.0-or-later
// What the test of a modem says of what answers at a pseudo-terminal.
#include "adapters/line/setup/modem_probe.h"

#include <gmock/gmock.h>
#include <pty.h>
#include <sys/fsuid.h>
#include <unistd.h>

#include <array>
#include <thread>

#include "support/scratch_folder.h"

namespace orven::test {
namespace {

/// The answer to a command.
using Modem = std::function<std::string(const std::string& command)>;

Modem Offering(const std::string& classes) {
  return [classes](const std::string& command) {
    const std::string echo = command + "\r";  // most modems repeat what they are told
    return command == "AT+FCLASS=?" ? echo + "\r\n" + classes + "\r\n\r\nOK\r\n" : echo + "\r\nOK\r\n";
  };
}

std::string Probed(const Modem& modem, const std::atomic<bool>& cancelled = false) {
  int own = -1;
  int port = -1;
  std::array<char, 128> path{};
  termios raw{};
  ::cfmakeraw(&raw);
  EXPECT_EQ(::openpty(&own, &port, path.data(), &raw, nullptr), 0);
  std::thread thread([&] {
    std::string command;
    for (char letter = 0; ::read(own, &letter, 1) == 1;) {
      command += letter;
      if (letter != '\r') continue;
      const auto text = modem(command.substr(0, command.size() - 1));
      (void)!::write(own, text.data(), text.size());
      command.clear();
    }
  });
  const auto result = ProbeModem(path.data(), cancelled);
  ::close(port);  // reading ends
  thread.join();
  ::close(own);
  EXPECT_EQ(result.passed, result.text.starts_with("A voice modem answers at ")) << result.text;
  return result.text;
}

TEST(ModemProbe, TellsVoiceModemsFromAllElse) {
  int asked = 0;
  const std::pair<Modem, const char*> rows[] = {
      {Offering("0,1,2,8"), "A voice modem"},
      {Offering("+FCLASS: (0,1,8)"), "A voice modem"},
      {[&](const std::string& command) { return ++asked == 1 ? "" : Offering("8")(command); },
       "A voice modem"},
      {Offering("0,1,1.0,2,18"), "no voice modem"},
      {Offering("0,80"), "no voice modem"},
      {[](const std::string&) { return ""; }, "Nothing answers"},
      {[](const std::string&) { return "ERROR\r\n"; }, "not as a modem"},
      {[](const std::string&) { return std::string(100'000, 'x'); }, "Nothing"}};
  for (const auto& [modem, words] : rows) EXPECT_THAT(Probed(modem), testing::HasSubstr(words));
  std::atomic<bool> cancelled = false;
  int commands = 0;
  Probed([&](const std::string&) { return ++commands, cancelled = true, ""; }, cancelled);
  EXPECT_EQ(commands, 1) << "a cancelled test asks nothing more";
}

TEST(ModemProbe, SaysWhatIsWrongWithAPort) {
  const ScratchFolder folder;
  PutFile(folder / "port", "");
  const std::atomic<bool> never = false;
  EXPECT_THAT(ProbeModem("/dev/ttyACM99", never).text, testing::HasSubstr("no port /dev/ttyACM99"));
  EXPECT_THAT(ProbeModem(folder / "port", never).text, testing::HasSubstr("not a serial port"));
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  std::string text;
  std::thread([&] {
    constexpr uid_t kNobody = 65534;
    ::setfsuid(kNobody);  // of this thread
    text = ProbeModem(folder / "port", never).text;
  }).join();
  EXPECT_THAT(text, testing::HasSubstr("dialout"));
}

TEST(SerialPorts, AreFoundUnderTheNameThatStays) {
  const ScratchFolder folder;
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
