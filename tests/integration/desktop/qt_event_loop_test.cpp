// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_event_loop.h"

#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <vector>

namespace orven {
namespace {

using std::chrono::milliseconds;

TEST(QtEventLoop, RunsTasksOfAnotherThreadOnItsOwnInTheOrderOfPosting) {
  QtEventLoop loop;
  const auto own_thread = std::this_thread::get_id();
  std::vector<int> order;
  int elsewhere = 0;
  std::thread poster([&] {
    for (int i = 0; i < 500; ++i) {
      loop.Post([&, i] {
        order.push_back(i);
        elsewhere += std::this_thread::get_id() != own_thread;
      });
    }
  });
  EXPECT_TRUE(QTest::qWaitFor([&] { return order.size() == 500; }));
  poster.join();
  EXPECT_EQ(elsewhere, 0);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(QtEventLoop, RunsNoTaskInsideACall) {
  QtEventLoop loop;
  std::string posted;
  loop.Post([&] {
    loop.Post([&] { posted += "c"; });
    posted += "b";
  });
  posted += "a";
  ASSERT_TRUE(QTest::qWaitFor([&] { return posted.size() == 3; }));
  EXPECT_EQ(posted, "abc");
}

TEST(QtEventLoop, AnExceptionIsToldAndTheNextTaskRuns) {
  std::vector<std::string> faults;
  QtEventLoop loop([&](const std::string& text) { faults.push_back(text); });
  bool next = false;
  loop.Post([] { throw std::runtime_error("disk on fire"); });
  loop.Post([] { throw 42; });
  loop.Post([&] { next = true; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return next; }));
  EXPECT_EQ(faults, (std::vector<std::string>{"disk on fire", "unknown exception"}));
}

TEST(QtEventLoop, NothingRunsAfterATimersStopOrTheLoopsEnd) {
  int ticks = 0;
  int dropped = 0;
  QtEventLoop loop;
  const auto timer = loop.MakeTimer([&] { ++ticks; });
  timer->Start(milliseconds(1));
  ASSERT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }));
  timer->Stop();
  const int before = ticks;
  {
    QtEventLoop dying;
    dying.Post([&] { ++dropped; });
    dying.After(milliseconds(0), [&] { ++dropped; });
  }
  bool later = false;
  loop.After(milliseconds(20), [&] { later = true; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return later; }));
  EXPECT_EQ(ticks, before);
  EXPECT_EQ(dropped, 0);
}

}  // namespace
}  // namespace orven
