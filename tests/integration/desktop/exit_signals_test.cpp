// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/exit_signals.h"

#include <csignal>
#include <thread>

#include "integration/desktop/desktop_fixture.h"

namespace orven {
namespace {

/// What `signal` does now, put back at the end of a test.
class Handling {
 public:
  explicit Handling(int signal) : signal_(signal) { sigaction(signal, nullptr, &earlier_); }
  ~Handling() { sigaction(signal_, &earlier_, nullptr); }
  Handling(const Handling&) = delete;
  Handling& operator=(const Handling&) = delete;

 private:
  int signal_;
  struct sigaction earlier_ = {};
};

class ExitSignalsTest : public ::testing::TestWithParam<int> {
 private:
  Handling term_{SIGTERM}, interrupt_{SIGINT}, hang_up_{SIGHUP}, pipe_{SIGPIPE};
};

TEST_P(ExitSignalsTest, TheFirstSignalExitsOnceOnTheUiThreadAndLaterOnesDoNotKill) {
  int exits = 0;
  const auto ui_thread = std::this_thread::get_id();
  bool on_ui_thread = false;
  {
    const ExitSignals exit_signals([&] {
      ++exits;
      on_ui_thread = std::this_thread::get_id() == ui_thread;
    });
    std::thread([] { std::raise(GetParam()); }).join();  // whichever thread the system picks
    EXPECT_EQ(exits, 0) << "nothing runs inside the signal handler";
    ASSERT_TRUE(RunUntil([&] { return exits > 0; }));
    EXPECT_TRUE(on_ui_thread);
    std::raise(GetParam());
    std::raise(SIGTERM);
    QCoreApplication::processEvents();
  }
  std::raise(GetParam());  // the rest of the exit
  QCoreApplication::processEvents();
  EXPECT_EQ(exits, 1);
}

INSTANTIATE_TEST_SUITE_P(Each, ExitSignalsTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

int g_own_handler_calls = 0;

TEST(ExitSignals, ItsEndRestoresTheEarlierHandlingWhenNoSignalCame) {
  const Handling restore(SIGTERM);
  std::signal(SIGTERM, [](int) { ++g_own_handler_calls; });
  {
    const ExitSignals exit_signals([] {});
  }
  std::raise(SIGTERM);
  EXPECT_EQ(g_own_handler_calls, 1);
}

TEST(ExitSignals, AHangUpIgnoredByTheStarterStaysIgnored) {
  const Handling restore(SIGHUP);
  std::signal(SIGHUP, SIG_IGN);
  bool exit = false;
  const ExitSignals exit_signals([&] { exit = true; });
  std::raise(SIGHUP);
  QCoreApplication::processEvents();
  EXPECT_FALSE(exit);
}

}  // namespace
}  // namespace orven
