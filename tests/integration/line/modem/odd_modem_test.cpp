// SPDX-License-Identifier: GPL-3.0-or-later
// Modems that answer late, not as they should, or with the end of the call.
#include <map>

#include "adapters/line/modem/modem_reader.h"
#include "integration/line/modem/emulated_line.h"

namespace orven::test {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::HasSubstr;

/// A modem that is answered by hand: whatever it is asked it says OK to, unless told otherwise.
struct OddModem final : ModemLink {
  explicit OddModem(VirtualTime& its_time) : time(its_time) {}
  std::optional<LinkProblem> Open(const std::string&, int, ModemLinkEvents& events) override {
    host = &events;
    return std::nullopt;
  }
  void Close() override { host = nullptr; }
  bool SetRate(int) override { return true; }
  void DiscardUnsent() override {}
  std::size_t Unsent() const override { return 0; }
  void Write(std::span<const std::uint8_t> bytes) override {
    std::string command(bytes.begin(), bytes.end());
    if (!command.starts_with("AT")) return Say(command.find(char(kCan)) < 9 ? "OK" : "", 50ms);
    command = command.substr(0, command.find('\r'));
    commands.push_back(command);
    if (const auto odd = answers.find(command); odd != answers.end()) {
      return Say(odd->second.first, odd->second.second);
    }
    Say(command == "AT+FCLASS=?"                     ? "0,8\r\nOK"
        : command == "AT+VTX" || command == "AT+VRX" ? "CONNECT"
                                                     : "OK",
        50ms);
  }
  void Say(const std::string& text, std::chrono::milliseconds delay = 0ms) {
    if (text.empty()) return;
    time.After(delay, [this, line = "\r\n" + text + "\r\n"] {
      if (host == nullptr) return;
      host->Received(std::span(reinterpret_cast<const std::uint8_t*>(line.data()), line.size()));
    });
  }

  VirtualTime& time;
  ModemLinkEvents* host = nullptr;
  std::map<std::string, std::pair<std::string, std::chrono::milliseconds>> answers;
  std::vector<std::string> commands;
};

struct OddLine : EmulatedLine {
  void SetUp() override {
    ModemLineSettings settings;
    settings.port = "/dev/modem";
    settings.state_news = [this](const std::string& text) { state = text; };
    settings.report = [this](const std::string& text) { log.push_back(text); };
    agent = std::make_unique<ModemAgent>(settings, ModemAgent::Ports{odd, time, time, audio, events});
    agent->Start();
  }
  void TearDown() override { agent.reset(); }
  void Ring() {
    ASSERT_TRUE(Until([this] { return state == kModemReady; }));
    odd.Say("RING A");
    ASSERT_TRUE(Wait("Ring 1 1"));
    odd.commands.clear();
  }
  bool OnHookAfterAll() const { return !odd.commands.empty() && odd.commands.back() == "AT+FCLASS=0"; }

  OddModem odd{time};
};

TEST_F(OddLine, AModemThatGoesOffHookLateIsHungUp) {
  Ring();
  odd.answers["AT+VLS=1"] = {"OK", 4s};
  agent->Answer(1, 5);
  ASSERT_TRUE(Wait("Idle 1", 15s));
  EXPECT_TRUE(events.Has("Done 5 " + std::to_string(kTelephonyDeviceFailed)));
  EXPECT_THAT(odd.commands, Contains("ATH"));
}

TEST_F(OddLine, TheLineIsClosedInWhateverStateAndLeftOnHook) {
  Ring();
  odd.answers["AT+VLS=1"] = {"OK", 400ms};
  agent->Answer(1, 5);
  agent->Drop(1, 6);
  agent->Drop(1, 7);
  bool closed = false;
  agent->Shutdown([&] { closed = true; });
  ASSERT_TRUE(Until([&] { return closed; }, 1500ms));
  EXPECT_THAT(odd.commands, Contains("ATH"));
  EXPECT_TRUE(events.Has("Done 6 0") && events.Has("Done 7 0") && events.Has("Idle 1"));
  for (auto at = 0ms; at < 4s; at += 70ms) {  // while the modem is being asked
    SetUp();
    time.RunFor(at);
    agent->Shutdown([] {});
    time.RunFor(5s);
  }
}

TEST_F(OddLine, ANoCarrierAtTheEndOfTheSoundIsTheCallersEnd) {
  Ring();
  agent->Answer(1, 5);
  ASSERT_TRUE(Wait("Connected 1"));
  time.RunFor(1s);
  odd.Say("\x10\x03\r\nNO CARRIER");
  EXPECT_TRUE(Wait("Disconnected 1", 1s));
  EXPECT_TRUE(Wait("Idle 1", 5s));
  EXPECT_EQ(std::ranges::count(odd.commands, "AT+VLS=1"), 1) << "it is not answered again";
  EXPECT_THAT(log, Contains(HasSubstr("hung up")));
}

TEST_F(OddLine, AnEchoThatCannotBeSwitchedOffIsLeft) {
  for (const char* command : {"AT", "ATM0"}) odd.answers[command] = {std::string(command) + "\r\nOK", 50ms};
  ASSERT_TRUE(Until([this] { return state == kModemReady; }));
  odd.commands.clear();
  time.RunFor(10min);
  EXPECT_LE(odd.commands.size(), 10U);
}

}  // namespace
}  // namespace orven::test
