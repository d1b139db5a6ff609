// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_clock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

namespace orven {
namespace {

using namespace std::chrono;

/// A process's time zone, in POSIX notation so that no zone database is needed.
void SetZone(const char* zone) {
  qputenv("TZ", zone);
  tzset();
}

TEST(QtClock, TellsSecondsApartAndNamesNoZoneInAnyLocale) {
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  constexpr Clock::WallTime kAt = sys_days(2003y / 12 / 31) + 13h + 5min + 7s;
  EXPECT_EQ(QtClock(QLocale("de_DE")).DateText(kAt), "31.12.03");
  EXPECT_EQ(QtClock(QLocale("de_DE")).TimeText(kAt), "14:05:07");
  EXPECT_EQ(QtClock(QLocale("zh_TW")).TimeText(kAt), "下午2:05:07");
  for (const QLocale& locale :
       QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
    const QtClock clock(locale);
    const std::string text = clock.TimeText(kAt);
    EXPECT_NE(text, clock.TimeText(kAt + 1s)) << locale.name().toStdString();
    for (const char* zone : {"CET", "GMT", "()", "[]"}) EXPECT_EQ(text.find(zone), std::string::npos) << text;
    EXPECT_TRUE(std::ranges::none_of(text + clock.DateText(kAt), [](unsigned char letter) {
      return letter < ' ';
    })) << text;
  }
}

TEST(QtClock, FindsTheLocalDayAndItsBeginAcrossSummerTime) {
  const QtClock clock{QLocale::c()};
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(clock.LocalDay(sys_days(2026y / 6 / 30) + 22h + 30min), 2026y / 7 / 1);
  EXPECT_EQ(clock.LocalDay(sys_days(2026y / 1 / 1) + 22h + 59min), 2026y / 1 / 1);
  EXPECT_EQ(clock.Midnight(2026y / 6 / 31), sys_days(2026y / 6 / 30) + 22h) << "31 June is 1 July";
  SetZone("<-03>3<-02>,M10.3.0/0,M2.3.0/0");  // where summer time began at midnight
  EXPECT_EQ(clock.Midnight(2018y / 10 / 21), sys_days(2018y / 10 / 21) + 3h);
}

}  // namespace
}  // namespace orven
