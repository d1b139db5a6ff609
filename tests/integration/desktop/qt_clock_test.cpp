// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_clock.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <ctime>

#include "adapters/desktop/time_format.h"

namespace orven {
namespace {

using std::chrono::hours;
using std::chrono::seconds;
using std::chrono::year_month_day;

/// Sets the process's time zone, in POSIX notation so that no zone database is needed.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) : earlier_(qgetenv("TZ")), had_one_(qEnvironmentVariableIsSet("TZ")) {
    qputenv("TZ", zone);
    tzset();
  }
  ~TimeZone() {
    if (had_one_) {
      qputenv("TZ", earlier_);
    } else {
      qunsetenv("TZ");
    }
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  QByteArray earlier_;
  bool had_one_;
};

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* kBrasilia2018 = "<-03>3<-02>,M10.3.0/0,M2.3.0/0";  // summer time began at midnight

Clock::WallTime Utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0) {
  using namespace std::chrono;
  return sys_days(year_month_day(std::chrono::year(year), std::chrono::month(month), std::chrono::day(day))) +
         hours(hour) + minutes(minute) + seconds(second);
}

TEST(QtClock, WritesDateAndTimeAsTheLocaleDoesAlwaysWithSeconds) {
  const TimeZone zone(kBerlin);
  const auto at = Utc(2003, 12, 31, 13, 5, 7);
  const QtClock american(QLocale("en_US"));
  EXPECT_EQ(american.DateText(at), "12/31/03");
  EXPECT_EQ(QString::fromStdString(american.TimeText(at)).replace(QChar(0x202f), u' '), "2:05:07 PM");
  const QtClock german(QLocale("de_DE"));
  EXPECT_EQ(german.DateText(at), "31.12.03");
  EXPECT_EQ(german.TimeText(at), "14:05:07");
  const QtClock plain{QLocale::c()};
  EXPECT_EQ(plain.DateText(at), "31 Dec 2003");
  EXPECT_EQ(plain.TimeText(at), "14:05:07");
}

TEST(QtClock, TellsSecondsApartAndNamesNoZoneInAnyLocale) {
  const auto at = Utc(2003, 12, 31, 13, 5, 7);
  const auto locales =
      QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
  ASSERT_GT(locales.size(), 300);
  for (const QLocale& locale : locales) {
    const QtClock clock(locale);
    const std::string text = clock.TimeText(at);
    EXPECT_NE(text, clock.TimeText(at + seconds(1))) << locale.name().toStdString();
    EXPECT_NE(text, clock.TimeText(at + hours(1))) << locale.name().toStdString();
    for (const char* zone : {"UTC", "GMT", "()", "[]", "CET"}) {
      EXPECT_EQ(text.find(zone), std::string::npos) << locale.name().toStdString() << " " << text;
    }
    for (const std::string& shown : {text, clock.DateText(at)}) {
      EXPECT_FALSE(shown.empty()) << locale.name().toStdString();
      EXPECT_TRUE(std::none_of(shown.begin(), shown.end(), [](char letter) {
        return static_cast<unsigned char>(letter) < ' ';
      })) << locale.name().toStdString();
    }
  }
}

TEST(TimeFormat, LeavesOutTheZoneWhereverItStands) {
  EXPECT_EQ(WithoutZone("HH:mm:ss t"), "HH:mm:ss");
  EXPECT_EQ(WithoutZone("H:mm:ss (t)"), "H:mm:ss");
  EXPECT_EQ(WithoutZone("tttt HH:mm:ss"), "HH:mm:ss");
  EXPECT_EQ(WithoutZone("h:mm:ss t AP"), "h:mm:ss AP");
  EXPECT_EQ(WithoutZone("HH 'ut' mm 'min' ss 's' t"), "HH 'ut' mm 'min' ss 's'");
}

TEST(TimeFormat, TakesTheShortFormOnlyWithSeconds) {
  EXPECT_EQ(TimePattern("HH:mm:ss", "HH:mm:ss t"), "HH:mm:ss");
  EXPECT_EQ(TimePattern("HH:mm", "HH.mm.ss t"), "HH.mm.ss");
  EXPECT_EQ(TimePattern("HH 'hours' mm", "HH:mm:ss"), "HH:mm:ss");
  EXPECT_EQ(TimePattern("HH:mm", "HH:mm"), "HH:mm:ss");
}

TEST(QtClock, FindsTheLocalDayAndItsMidnightAcrossSummerTime) {
  using namespace std::chrono_literals;
  const TimeZone zone(kBerlin);
  const QtClock clock{QLocale::c()};
  EXPECT_EQ(clock.LocalDay(Utc(2026, 6, 30, 22, 30)), year_month_day(2026y, std::chrono::July, 1d));
  EXPECT_EQ(clock.LocalDay(Utc(2026, 1, 1, 22, 59, 59)), year_month_day(2026y, std::chrono::January, 1d));
  EXPECT_EQ(clock.Midnight(year_month_day(2026y, std::chrono::July, 1d)), Utc(2026, 6, 30, 22));
  EXPECT_EQ(clock.Midnight(year_month_day(2026y, std::chrono::January, 1d)), Utc(2025, 12, 31, 23));
  EXPECT_EQ(clock.Midnight(year_month_day(2026y, std::chrono::June, 31d)), Utc(2026, 6, 30, 22));
}

TEST(QtClock, BeginsADayWithoutMidnightAtItsFirstMoment) {
  using namespace std::chrono_literals;
  const TimeZone zone(kBrasilia2018);
  const QtClock clock{QLocale::c()};
  EXPECT_EQ(clock.Midnight(year_month_day(2018y, std::chrono::October, 21d)), Utc(2018, 10, 21, 3));
}

TEST(QtClock, UptimeFollowsNoWallClockAndNowIsNow) {
  const QtClock clock{QLocale::c()};
  const auto first = clock.Uptime();
  EXPECT_GE(clock.Uptime(), first);
  EXPECT_LT(std::chrono::abs(clock.Now() - std::chrono::system_clock::now()), hours(1));
}

}  // namespace
}  // namespace orven
