// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <QCoreApplication>
#include <mutex>

#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/line/modem/modem_line.h"
#include "modem_emulator/modem_emulator.h"
#include "modem_emulator/program/pseudo_terminal.h"
#include "platform/wave.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

/// A modem at a port of its own, and what a line there tells from its thread.
struct ModemPortTest : testing::Test, LineDriverEvents, AudioSource {
  void Offered(CallNumber call) override { Tell("Offered " + std::to_string(call)); }
  void Ring(CallNumber, std::int32_t) override {}
  void CallerId(CallNumber, const std::string&, const std::string&) override {}
  void RequestDone(std::int32_t number, std::int32_t result) override {
    Tell("Done " + std::to_string(number) + (result == kTelephonyOk ? "" : " failed"));
  }
  void Connected(CallNumber) override { Tell("Connected"); }
  void Digit(CallNumber, char digit) override { Tell(std::string("Digit ") + digit); }
  void Disconnected(CallNumber) override { Tell("Disconnected"); }
  void Idle(CallNumber) override { Tell("Idle"); }
  void Trouble(const std::string& text) override { Tell("Trouble " + text); }
  bool Read(std::span<std::int16_t> block) override {
    std::ranges::fill(block, std::int16_t(8000));
    return --blocks >= 0;
  }
  void Tell(const std::string& text) {
    const std::lock_guard lock(mutex);
    told += text + "|";
  }

  void Plug() {
    port.emplace(
        folder / "modem", [this] { return modem.Room(); }, [this](auto bytes) { modem.FromHost(bytes); });
  }
  std::unique_ptr<LineDriver> Opened(const std::string& path) {
    ModemLineSettings settings;
    settings.port = path;
    settings.report = [this](const std::string& text) { Tell(text); };
    settings.state_news = settings.report;
    auto line = MakeModemLine(settings, clock);
    EXPECT_EQ(line->Open(*this), kTelephonyOk);
    return line;
  }
  /// Waits until the latest that was told is `end`, and forgets it.
  void Expect(const std::string& end) {
    const auto found = [&] {
      if (port) port->Read();
      const std::lock_guard lock(mutex);
      return told.ends_with(end);
    };
    EXPECT_TRUE(QTest::qWaitFor(found, 60'000)) << end << " / " << told;
    const std::lock_guard lock(mutex);
    told.clear();
  }

  int count = 1;
  char* arguments[1] = {};
  QCoreApplication application{count, arguments};
  QtEventLoop loop;
  QtClock clock;
  ScratchFolder folder;
  std::optional<emulator::PseudoTerminal> port;
  ModemEmulator modem{*FindModemProfile("lucent"), {}, loop, clock, [this](auto bytes) {
                        if (port) port->Write(bytes);
                      }};
  std::mutex mutex;
  std::string told;
  std::atomic<int> blocks = 50;
};

TEST_F(ModemPortTest, ALineTakesCallsAtItsPortAndFindsAModemThatIsPluggedInAgain) {
  Plug();
  const auto line = Opened(folder / "modem");
  EXPECT_EQ(line->Open(*this), kTelephonyLineInUse);
  const auto& can = line->Capabilities();
  EXPECT_TRUE(can.caller_id && can.monitor_digits && can.data_mode && can.interactive_voice &&
              can.automated_voice);
  Expect("Waiting for calls|");
  EXPECT_GT(port->Rate(), modem.NeededPortRate());
  modem.Ring();
  Expect("Offered 1|");
  line->Answer(1, 7);
  Expect("Done 7|Connected|");
  line->MonitorDigits(1, true);
  modem.Press('5');
  Expect("Digit 5|");
  EXPECT_EQ(line->Audio().StartPlay(*this), kWaveOk);
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return std::ranges::count(modem.Heard(), 8000) == 50 * kBlockSamples; }, 60'000));
  line->Drop(1, 8);
  Expect("Done 8|Idle|");
  EXPECT_FALSE(modem.OffHook());

  port.reset();
  Expect("Trouble The modem was unplugged|");
  modem.PowerCycle();
  Plug();
  Expect("works again|Trouble |");
  modem.Ring();
  Expect("Offered 2|");
  line->Close();
  Expect("Idle|");
  EXPECT_EQ(line->Open(*this), kTelephonyOk);
  Expect("Waiting for calls|");
}

TEST_F(ModemPortTest, APortThatCannotBeUsedIsNamed) {
  const std::pair<std::string, std::string> rows[] = {
      {folder / "none", ": is the modem plugged in?|Trouble The modem is not plugged in|"},
      {folder / "", " cannot be opened: Is a directory.|Trouble The modem's port cannot be used|"},
      {"/dev/null", " is not a serial port.|Trouble The modem's port cannot be used|"}};
  for (const auto& [path, problem] : rows) {
    const auto line = Opened(path);
    Expect(path + problem);
  }
}

}  // namespace
}  // namespace orven::test
