// SPDX-License-Identifier: GPL-3.0-or-later
// The test of a modem: another modem answers at a pseudo-terminal each time.
#include "adapters/line/setup/modem_probe.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <functional>
#include <thread>

#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using testing::HasSubstr;

/// A modem that answers each command by `answer`, on a thread of its own.
class Modem {
 public:
  using Answer = std::function<std::string(const std::string& command)>;

  explicit Modem(Answer answer) : answer_(std::move(answer)) {
    std::array<char, 128> name{};
    termios raw{};
    ::cfmakeraw(&raw);
    if (::openpty(&own_, &port_, name.data(), &raw, nullptr) != 0) throw std::runtime_error("openpty");
    path_ = name.data();
    thread_ = std::thread([this] { Run(); });
  }
  Modem(const Modem&) = delete;
  Modem& operator=(const Modem&) = delete;
  ~Modem() {
    ended_ = true;
    thread_.join();
    ::close(port_);
    ::close(own_);
  }

  const std::string& Path() const { return path_; }

 private:
  void Run() {
    std::string command;
    while (!ended_) {
      pollfd ready{own_, POLLIN, 0};
      char letter = 0;
      if (::poll(&ready, 1, 20) != 1 || ::read(own_, &letter, 1) != 1) continue;
      command += letter;
      if (letter != '\r') continue;
      const auto text = answer_(command.substr(0, command.size() - 1));
      (void)!::write(own_, text.data(), text.size());
      command.clear();
    }
  }

  Answer answer_;
  int own_ = -1;
  int port_ = -1;
  std::string path_;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

LineTestResult Probed(const std::string& path) {
  const std::atomic<bool> cancelled = false;
  return ProbeModem(path, cancelled);
}

LineTestResult Probed(Modem::Answer answer) {
  const Modem modem(std::move(answer));
  return Probed(modem.Path());
}

Modem::Answer Offering(const std::string& classes) {
  return [classes](const std::string& command) {
    const std::string echo = command + "\r";  // most modems repeat what they are told
    return command == "AT+FCLASS=?" ? echo + "\r\n" + classes + "\r\n\r\nOK\r\n" : echo + "\r\nOK\r\n";
  };
}

TEST(ModemProbe, TellsVoiceModemsFromOthers) {
  for (const char* classes : {"0,1,2,8", "+FCLASS: (0,1,8)", "8"}) {
    const auto voice = Probed(Offering(classes));
    EXPECT_TRUE(voice.passed) << classes << ": " << voice.text;
  }
  for (const char* classes : {"0,1,1.0,2,18", "0,80"}) {
    const auto fax = Probed(Offering(classes));
    EXPECT_FALSE(fax.passed) << classes;
    EXPECT_THAT(fax.text, HasSubstr("no voice modem"));
  }
  int asked = 0;
  const auto sleepy =
      Probed([&](const std::string& command) { return ++asked == 1 ? "" : Offering("8")(command); });
  EXPECT_TRUE(sleepy.passed) << sleepy.text;
}

TEST(ModemProbe, SaysWhatIsWrong) {
  EXPECT_THAT(Probed("/dev/ttyACM99").text, HasSubstr("no port /dev/ttyACM99"));
  EXPECT_THAT(Probed([](const std::string&) { return ""; }).text, HasSubstr("Nothing answers"));
  EXPECT_THAT(Probed([](const std::string&) { return "ERROR\r\n"; }).text, HasSubstr("not as a modem"));
  EXPECT_THAT(Probed([](const std::string&) { return std::string(100'000, 'x'); }).text,
              HasSubstr("Nothing"));
  const ScratchFolder folder;
  PutFile(folder / "port", "");
  EXPECT_THAT(Probed(folder / "port").text, HasSubstr("no serial port"));
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  const Modem modem(Offering("8"));
  ASSERT_EQ(::chmod(modem.Path().c_str(), 0600), 0);
  std::string text;
  std::thread([&] {
    constexpr uid_t kNobody = 65534;
    ::setfsuid(kNobody);  // of this thread
    text = Probed(modem.Path()).text;
  }).join();
  EXPECT_THAT(text, HasSubstr("dialout"));
}

TEST(ModemProbe, CanBeStopped) {
  std::atomic<bool> cancelled = false;
  const Modem modem([&](const std::string&) {
    cancelled = true;
    return "";
  });
  EXPECT_FALSE(ProbeModem(modem.Path(), cancelled).passed) << "and did not wait for a second question";
}

}  // namespace
}  // namespace orven::test
