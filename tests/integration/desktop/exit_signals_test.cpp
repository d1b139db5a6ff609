// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/exit_requests.h"

#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <QCoreApplication>
#include <QEvent>
#include <csignal>
#include <thread>

namespace orven {
namespace {

class ExitSignalsTest : public ::testing::Test {
 protected:
  ~ExitSignalsTest() override {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) std::signal(signal, SIG_DFL);
  }
};

TEST_F(ExitSignalsTest, TheFirstSignalExitsOnceOnTheUiThreadAndLaterOnesDoNotKill) {
  int exits = 0;
  std::thread::id where;
  {
    const ExitSignals exit_signals([&] {
      ++exits;
      where = std::this_thread::get_id();
    });
    std::thread([] { std::raise(SIGINT); }).join();  // whichever thread the system picks
    EXPECT_EQ(exits, 0) << "nothing runs inside the signal handler";
    ASSERT_TRUE(QTest::qWaitFor([&] { return exits > 0; }));
    EXPECT_EQ(where, std::this_thread::get_id());
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) std::raise(signal);
    QCoreApplication::processEvents();
  }
  std::raise(SIGTERM);  // during the rest of the exit
  EXPECT_EQ(exits, 1);
}

TEST_F(ExitSignalsTest, AHangUpIgnoredByTheStarterStaysIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  bool exit = false;
  const ExitSignals exit_signals([&] { exit = true; });
  std::raise(SIGHUP);
  QCoreApplication::processEvents();
  EXPECT_FALSE(exit);
}

TEST(QuitRequests, TheEndOfTheSessionIsKeptFromQtUntilTheProgramHasEnded) {
  int asked = 0;
  bool ended = false;
  const QuitRequests requests([&] {
    ++asked;
    return !ended;
  });
  QEvent quit(QEvent::Quit);
  QEvent other(QEvent::LocaleChange);
  auto* application = QCoreApplication::instance();
  EXPECT_TRUE(QCoreApplication::sendEvent(application, &quit));
  QCoreApplication::sendEvent(application, &other);
  EXPECT_EQ(asked, 1);
  QObject receiver;
  ended = true;
  QCoreApplication::sendEvent(&receiver, &quit);
  EXPECT_EQ(asked, 1) << "other objects' events are their own";
}

}  // namespace
}  // namespace orven
