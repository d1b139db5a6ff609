// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_event_loop.h"

#include <array>
#include <stdexcept>
#include <thread>
#include <vector>

#include "integration/desktop/desktop_fixture.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

TEST(QtEventLoop, RunsTasksOfEveryThreadOnItsOwnInTheOrderOfPosting) {
  constexpr int kThreads = 4;
  constexpr int kTasks = 500;
  QtEventLoop loop;
  const auto own_thread = std::this_thread::get_id();
  std::array<std::vector<int>, kThreads> seen;
  int elsewhere = 0;
  int total = 0;
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kTasks; ++i) {
        loop.Post([&, t, i] {
          seen[t].push_back(i);
          elsewhere += std::this_thread::get_id() != own_thread;
          ++total;
        });
      }
    });
  }
  ASSERT_TRUE(RunUntil([&] { return total == kThreads * kTasks; }));
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(elsewhere, 0);
  for (const std::vector<int>& order : seen) EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(QtEventLoop, NeverRunsATaskInsidePostOrAfter) {
  QtEventLoop loop;
  std::string order;
  loop.Post([&] {
    loop.Post([&] { order += "posted "; });
    order += "poster ";
  });
  loop.After(milliseconds(0), [&] { order += "after "; });
  order += "caller ";
  ASSERT_TRUE(RunUntil([&] { return order.size() == std::string("caller poster after posted ").size(); }));
  EXPECT_EQ(order.find("caller poster "), 0U);
}

TEST(QtEventLoop, DelaysRunInTheOrderOfTheirEnds) {
  QtEventLoop loop;
  std::string order;
  QElapsedTimer since;
  since.start();
  loop.After(milliseconds(40), [&] { order += "b"; });
  loop.After(milliseconds(20), [&] { order += "a"; });
  ASSERT_TRUE(RunUntil([&] { return order.size() == 2; }));
  EXPECT_EQ(order, "ab");
  EXPECT_GE(since.elapsed(), 40);
}

TEST(QtEventLoop, ATimerTicksFromStartToStopAndALateTickComesOnce) {
  QtEventLoop loop;
  int ticks = 0;
  const auto timer = loop.MakeTimer([&] { ++ticks; });
  EXPECT_FALSE(timer->Enabled());
  timer->Start(milliseconds(5));
  EXPECT_TRUE(timer->Enabled());
  ASSERT_TRUE(RunUntil([&] { return ticks >= 3; }));

  QElapsedTimer busy;
  busy.start();
  while (busy.elapsed() < 60) {
  }
  const int before = ticks;
  QCoreApplication::processEvents();
  EXPECT_EQ(ticks, before + 1);

  timer->Stop();
  EXPECT_FALSE(timer->Enabled());
  bool later = false;
  loop.After(milliseconds(20), [&] { later = true; });
  ASSERT_TRUE(RunUntil([&] { return later; }));
  EXPECT_EQ(ticks, before + 1);
}

TEST(QtEventLoop, ATimerMayDestroyItselfInItsTick) {
  QtEventLoop loop;
  std::string text(100, 'x');  // on the heap, so that a sanitizer sees a tick that outlives its captures
  std::unique_ptr<Timer> timer;
  std::string seen;
  timer = loop.MakeTimer([&, text] {
    timer.reset();
    seen = text;
  });
  timer->Start(milliseconds(1));
  ASSERT_TRUE(RunUntil([&] { return !seen.empty(); }));
  EXPECT_EQ(seen, text);
}

TEST(QtEventLoop, AnExceptionInATaskIsToldAndTheNextTaskRuns) {
  std::vector<std::string> faults;
  QtEventLoop loop([&](const std::string& text) { faults.push_back(text); });
  bool next = false;
  loop.Post([] { throw std::runtime_error("disk on fire"); });
  loop.Post([] { throw 42; });
  loop.Post([&] { next = true; });
  ASSERT_TRUE(RunUntil([&] { return next; }));
  EXPECT_EQ(faults, (std::vector<std::string>{"disk on fire", "unknown exception"}));
}

TEST(QtEventLoop, DropsWhatIsStillQueuedWhenItEnds) {
  int run = 0;
  {
    QtEventLoop dying;
    dying.Post([&] { ++run; });
    dying.After(milliseconds(0), [&] { ++run; });
  }
  QtEventLoop loop;
  bool later = false;
  loop.After(milliseconds(5), [&] { later = true; });
  ASSERT_TRUE(RunUntil([&] { return later; }));
  EXPECT_EQ(run, 0);
}

}  // namespace
}  // namespace orven
