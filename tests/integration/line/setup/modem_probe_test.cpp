// SPDX-License-Identifier: GPL-3.0-or-later
// What the test of a modem says of what answers at a pseudo-terminal.
#include "adapters/line/setup/modem_probe.h"

#include <gmock/gmock.h>
#include <pty.h>
#include <sys/fsuid.h>
#include <unistd.h>

#include <array>
#include <thread>

#include "adapters/line/modem/modem_line.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

/// The answer to a command.
using Modem = std::function<std::string(const std::string& command)>;

std::string Probed(const Modem& modem, const std::atomic<bool>& cancelled = false) {
  int own = -1, port = -1;
  std::array<char, 128> path{};
  termios raw{};
  ::cfmakeraw(&raw);
  EXPECT_EQ(::openpty(&own, &port, path.data(), &raw, nullptr), 0);
  std::thread thread([&] {
    std::string command;
    for (char letter = 0; ::read(own, &letter, 1) == 1;) {
      command += letter;
      if (letter != '\r') continue;
      const auto text = modem(std::exchange(command, ""));
      if (text == "unplugged") break;
      (void)!::write(own, text.data(), text.size());
    }
    ::close(own);
  });
  const auto result = ProbeModem(path.data(), cancelled);
  ::close(port);  // reading ends
  thread.join();
  EXPECT_EQ(result.passed, result.text.find("its sound has") != std::string::npos) << result.text;
  return result.text;
}

TEST(ModemProbe, TellsVoiceModemsFromAllElse) {
  int commands = 0;
  const auto with = [&](const std::string& classes, const std::string& formats = "") {
    return [&commands, classes, formats](const std::string& command) {
      const auto told = command.starts_with("AT+FCLASS=?") ? classes + "\r\n\r\n"
                        : command.starts_with("AT+VSM=?")  ? formats
                                                           : "";
      return ++commands == 1 ? "" : command + "\r\n" + told + "\r\nOK\r\n";  // it is late, and has an echo
    };
  };
  const std::pair<Modem, const char*> rows[] = {
      {with("+FCLASS: (0,1,8)"), "(its sound has 8 bits)"},
      {with("8", "4,\"ULAW\",8,0,8000"), "8 bits, mu-law"},
      {with("8", "131,\"16 BIT LINEAR\",16,0,8000"), "16 bits"},
      {[](const auto& asked) { return asked.starts_with("AT+VSM") ? "ERROR\r\n" : "8\r\nOK\r\n"; },
       "no supported audio"},
      {[](const auto&) { return "unplugged"; }, "is gone."},
      {with("0,1,1.0,80,18"), "not a voice modem"},
      {[](const std::string&) { return ""; }, "Nothing answers"},
      {[](const std::string&) { return "ERROR\r\n"; }, "not as a modem"},
      {[](const std::string&) { return std::string(100'000, 'x'); }, "Nothing"}};
  for (const auto& [modem, words] : rows) EXPECT_THAT(Probed(modem), testing::HasSubstr(words));
  std::atomic<bool> cancelled = false;
  commands = 0;
  Probed([&](const std::string&) { return ++commands, cancelled = true, ""; }, cancelled);
  EXPECT_EQ(commands, 1) << "a cancelled test asks nothing more";
}

TEST(ModemProbe, SaysWhatIsWrongWithAPort) {
  const ScratchFolder folder;
  PutFile(folder / "port", "");
  const std::atomic<bool> never = false;
  EXPECT_THAT(ProbeModem("/dev/ttyACM99", never).text, testing::HasSubstr("no port /dev/ttyACM99"));
  EXPECT_THAT(ProbeModem(folder / "port", never).text, testing::HasSubstr("not a serial port"));
  EXPECT_EQ(ProbeModem(kAnyPort, never).text == "No modem is plugged in.", FindSerialPorts().empty());
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  std::thread([&] {
    ::setfsuid(65534);  // of this thread: nobody
    EXPECT_THAT(ProbeModem(folder / "port", never).text, testing::HasSubstr("dialout"));
  }).join();
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
