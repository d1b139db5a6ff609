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

TEST(ExitSignals, TheFirstSignalExitsOnceOnTheUiThreadAndLaterOnesDoNotKill) {
  std::signal(SIGHUP, SIG_IGN);
  int exits = 0;
  std::thread::id where;
  const auto exit = [&] {
    ++exits;
    where = std::this_thread::get_id();
  };
  {
    const ExitSignals exit_signals(exit);
    std::raise(SIGHUP);
    QCoreApplication::processEvents();
    EXPECT_EQ(exits, 0) << "a hang-up that the starter ignores stays ignored";
  }
  std::signal(SIGHUP, SIG_DFL);
  {
    const ExitSignals exit_signals(exit);
    std::thread([] { std::raise(SIGINT); }).join();  // whichever thread the system picks
    EXPECT_EQ(exits, 0) << "nothing runs inside the signal handler";
    ASSERT_TRUE(QTest::qWaitFor([&] { return exits > 0; }));
    EXPECT_EQ(where, std::this_thread::get_id());
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) std::raise(signal);
    QCoreApplication::processEvents();
  }
  std::raise(SIGTERM);  // during the rest of the exit
  EXPECT_EQ(exits, 1);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) std::signal(signal, SIG_DFL);
}

TEST(QuitRequests, TheEndOfTheSessionIsKeptFromQtUntilTheProgramHasEnded) {
  int asked = 0;
  const QuitRequests requests([&] { return ++asked == 1; });
  QEvent quit(QEvent::Quit);
  QEvent other(QEvent::LocaleChange);
  QObject receiver;
  EXPECT_TRUE(QCoreApplication::sendEvent(QCoreApplication::instance(), &quit));
  QCoreApplication::sendEvent(QCoreApplication::instance(), &other);
  QCoreApplication::sendEvent(&receiver, &quit);
  EXPECT_EQ(asked, 1) << "other events and other objects' are their own";
}

}  // namespace
}  // namespace orven
