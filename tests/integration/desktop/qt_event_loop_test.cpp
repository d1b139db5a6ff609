// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_event_loop.h"

#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <QEvent>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "adapters/desktop/application.h"
#include "adapters/desktop/exit_requests.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

TEST(QtEventLoop, RunsTasksOfAnotherThreadOnItsOwnInTheOrderOfPosting) {
  QtEventLoop loop;
  const auto own_thread = std::this_thread::get_id();
  int next = 0;
  std::thread poster([&] {
    for (int i = 0; i < 500; ++i)
      loop.Post([&, i] { next += i == next && std::this_thread::get_id() == own_thread; });
  });
  EXPECT_TRUE(QTest::qWaitFor([&] { return next == 500; }));
  poster.join();
}

TEST(QtEventLoop, TellsAnExceptionAndRunsTheNextTaskAndNoneInsideAnother) {
  std::string told;
  QtEventLoop loop([&](const std::string& text) { told += text + ", "; });
  loop.Post([] { throw std::runtime_error("disk on fire"); });
  loop.Post([] { throw 42; });
  loop.Post([&] {
    loop.Post([&] { told += "c"; });
    told += "b";
  });
  told += "a, ";
  ASSERT_TRUE(QTest::qWaitFor([&] { return told.ends_with("c"); }));
  EXPECT_EQ(told, "a, disk on fire, unknown exception, bc");
}

TEST(QtEventLoop, NothingRunsAfterATimersStopOrTheLoopsEnd) {
  int ticks = 0;
  QtEventLoop loop;
  const auto timer = loop.MakeTimer([&] { ++ticks; });
  timer->Start(milliseconds(1));
  ASSERT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }));
  timer->Stop();
  const int before = ticks;
  {
    QtEventLoop dying;
    dying.Post([&] { ++ticks; });
    dying.After(milliseconds(0), [&] { ++ticks; });
  }
  bool later = false;
  loop.After(milliseconds(20), [&] { later = true; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return later; }));
  EXPECT_EQ(ticks, before);
}

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

TEST(Application, RunsOffscreenWithoutADisplay) {
  EXPECT_EQ(QGuiApplication::platformName(), "offscreen");
  EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
}

}  // namespace
}  // namespace orven

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // As the program itself would start where there is no display.
  for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) qunsetenv(variable);
  const auto application = orven::MakeApplication(argc, argv);
  return RUN_ALL_TESTS();
}
