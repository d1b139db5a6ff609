// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of the program's process: the application, its event loop, its exit and its clock.
#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <csignal>
#include <ctime>
#include <thread>

#include "adapters/desktop/application.h"
#include "adapters/desktop/exit_requests.h"
#include "adapters/desktop/instance_link.h"
#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "support/scratch_folder.h"

namespace orven {
namespace {

using namespace std::chrono;

TEST(QtEventLoop, RunsTasksInOrderOneAtATimeAndReportsExceptions) {
  std::string told;
  QtEventLoop loop([&](const std::string& text) { told += text + ", "; });
  std::thread([&] { loop.Post([] { throw std::runtime_error("disk on fire"); }); }).join();
  loop.Post([] { throw 42; });
  loop.Post([&] {
    loop.Post([&] { told += "c"; });
    told += "b";
  });
  ASSERT_TRUE(QTest::qWaitFor([&] { return told.ends_with("c"); }));
  EXPECT_EQ(told, "disk on fire, unknown exception, bc");
}

TEST(QtEventLoop, NothingRunsAfterATimerStopsOrTheLoopEnds) {
  int ticks = 0;
  QtEventLoop loop;
  const auto timer = loop.MakeTimer([&] { ++ticks; });
  timer->Start(1ms);
  ASSERT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }));
  timer->Stop();
  const int before = ticks;
  {
    QtEventLoop dying;
    dying.Post([&] { ++ticks; });
    dying.After(0ms, [&] { ++ticks; });
  }
  loop.After(20ms, [&] { ticks = ticks == before ? -1 : -2; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return ticks < 0; }));
  EXPECT_EQ(ticks, -1);
}

TEST(ExitSignals, TheFirstSignalExitsOnceInTheEventLoopAndLaterOnesDoNotKill) {
  int exits = 0;
  const auto raise = [](const std::vector<int>& numbers) {
    for (const int number : numbers) std::raise(number);
    QCoreApplication::processEvents();
  };
  {
    const ExitSignals exit_signals([&] { ++exits; });
    std::thread([] { std::raise(SIGINT); }).join();  // any thread may get the signal
    EXPECT_EQ(exits, 0) << "nothing runs inside the signal handler";
    ASSERT_TRUE(QTest::qWaitFor([&] { return exits > 0; }));
    raise({SIGTERM, SIGINT, SIGHUP});
  }
  raise({SIGTERM});  // while the program is still exiting
  EXPECT_EQ(exits, 1);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) std::signal(signal, SIG_DFL);
}

TEST(QuitRequests, TheProgramHandlesTheEndOfTheSessionInsteadOfQt) {
  bool asked = false;
  const QuitRequests requests([&] { return asked = true; });
  QEvent quit(QEvent::Quit);
  EXPECT_TRUE(QCoreApplication::sendEvent(QCoreApplication::instance(), &quit) && asked);
}

TEST(InstanceLink, AnswersAlsoLateAndInALongFolderWhereAKilledProgramLeftItsSocket) {
  const test::ScratchFolder scratch;
  const auto folder = scratch / std::string(200, 'a');
  std::filesystem::create_directory(folder);
  test::PutFile(folder + "/.link", "left by a killed program");
  QtEventLoop loop;
  const auto ask = [&](const std::string& request) {
    std::optional<std::string> text;
    bool done = false;
    std::thread asking([&] {
      const auto answer = AskRunningProgram(folder, request, 10s);
      if (answer) text = std::to_string(answer->code) + answer->text;
      loop.Post([&] { done = true; });
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return done; }, 15'000)) << request;
    asking.join();
    return text;
  };
  {
    InstanceLink link(folder);
    link.On("raise", [](const std::string& token, const InstanceLink::Answer& answer) {
      answer({0, token});
    });
    link.On("check", [&](const std::string&, const InstanceLink::Answer& answer) {
      loop.After(50ms, [answer] { answer({1, "two\nlines"}); });
    });
    EXPECT_EQ(link.Open(), "");
    EXPECT_EQ(std::filesystem::status(folder + "/.link").permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(ask("raise a token"), "0a token");
    EXPECT_EQ(ask("check"), "1two\nlines");
    EXPECT_EQ(ask("nonsense"), std::nullopt);
    EXPECT_EQ(ask(std::string(10'000, 'x')), std::nullopt);
  }
  EXPECT_EQ(ask("raise"), std::nullopt) << "the program has ended";
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

/// Sets the time zone, in POSIX notation, so that no zone database is needed.
void SetZone(const char* zone) {
  qputenv("TZ", zone);
  tzset();
}

TEST(QtClock, ShowsSecondsAndNoTimeZoneInAnyLocale) {
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  constexpr Clock::WallTime kAt = sys_days(2003y / 12 / 31) + 13h + 5min + 7s;
  EXPECT_EQ(QtClock(QLocale("de_DE")).DateText(kAt), "31.12.03");
  for (const QLocale& locale :
       QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
    const QtClock clock(locale);
    const std::string text = clock.TimeText(kAt);
    EXPECT_NE(text, clock.TimeText(kAt + 1s)) << locale.name().toStdString();
    for (const char* zone : {"CET", "GMT", "()", "[]"}) EXPECT_EQ(text.find(zone), std::string::npos) << text;
    for (const char letter : text + clock.DateText(kAt)) EXPECT_FALSE(letter >= 0 && letter < ' ') << text;
  }
}

TEST(QtClock, FindsTheLocalDayAndItsStartAcrossSummerTime) {
  const QtClock clock{QLocale::c()};
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(clock.LocalDay(sys_days(2026y / 6 / 30) + 22h + 30min), 2026y / 7 / 1);
  EXPECT_EQ(clock.Midnight(2026y / 6 / 31), sys_days(2026y / 6 / 30) + 22h) << "31 June is 1 July";
  SetZone("<-03>3<-02>,M10.3.0/0,M2.3.0/0");  // where summer time began at midnight
  EXPECT_EQ(clock.Midnight(2018y / 10 / 21), sys_days(2018y / 10 / 21) + 3h);
}

}  // namespace
}  // namespace orven

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Starts as the program does without a display; with another Qt platform it would end here.
  for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) qunsetenv(variable);
  const auto application = orven::MakeApplication(argc, argv);
  return RUN_ALL_TESTS();
}
