// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_event_loop.h"

#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <stdexcept>
#include <thread>

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

}  // namespace
}  // namespace orven
