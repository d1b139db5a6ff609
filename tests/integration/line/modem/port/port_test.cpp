// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <QCoreApplication>

#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/line/modem/modem_line.h"
#include "modem_emulator/modem_emulator.h"
#include "modem_emulator/program/pseudo_terminal.h"
#include "support/line_events.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

/// A modem at a port, and the events that a line there reports from its thread.
struct ModemPortTest : testing::Test {
  void Tell(const std::string& text) {
    loop.Post([this, text] { told += text + "|"; });
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
    EXPECT_FALSE(line->Open(sink));
    return line;
  }
  /// Waits until the reported events end with `end`, and forgets them.
  void Expect(const std::string& end) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.ends_with(end); }, 60'000)) << end << " / " << told;
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
  std::string told;
  const LineSink sink = [this](const LineEvent& event) { Tell(ToText(event)); };
};

TEST_F(ModemPortTest, ALineTakesCallsAndFindsAModemThatIsPluggedInAgain) {
  Plug();
  const auto line = Opened(folder / "modem");
  EXPECT_EQ(line->Open(sink).value().result, kTelephonyLineInUse);
  Expect("Waiting for calls|");
  EXPECT_GT(port->Rate(), modem.NeededPortRate());
  modem.Ring();
  Expect("Ring 1 1|");
  line->Answer(1, 7);
  Expect("Done 7 0|Connected 1|");
  line->MonitorDigits(1, true);
  modem.Press('5');
  Expect("Digit 5|");
  line->Drop(1, 8);
  Expect("Done 8 0|Idle 1|");

  port.reset();
  Expect("Trouble The modem was unplugged|");
  modem.PowerCycle();
  Plug();
  Expect("works again|Trouble |");
  modem.Ring();
  Expect("Ring 2 1|");
  line->Close();
  Expect("Idle 2|");
  EXPECT_FALSE(line->Open(sink));
  Expect("Waiting for calls|");
}

TEST_F(ModemPortTest, APortThatCannotBeUsedIsReported) {
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
