// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QString>

#include "platform/clock.h"

namespace orven {

/// The pattern in which a locale's times are written here, from its own two in Qt's notation ("HH:mm:ss t";
/// text between apostrophes is literal): the short one when that shows seconds, else the long one without the
/// zone, the brackets around it and the blanks beside it, else plain "HH:mm:ss". A finer time of day (B, as
/// in Taiwan), which Qt would write out as that letter, becomes forenoon or afternoon.
QString TimePattern(const QString& short_pattern, const QString& long_pattern);

/// The clock port on the system's clocks, the local time zone (TZ) and the user's locale (LC_ALL,
/// LC_TIME, LANG).
class QtClock final : public Clock {
 public:
  /// `locale` writes the texts.
  explicit QtClock(const QLocale& locale = QLocale::system());

  std::chrono::milliseconds Uptime() const override;
  WallTime Now() const override;
  std::string DateText(WallTime at) const override;
  std::string TimeText(WallTime at) const override;
  std::chrono::year_month_day LocalDay(WallTime at) const override;
  WallTime Midnight(std::chrono::year_month_day day) const override;

 private:
  QLocale locale_;
  QString time_pattern_;
};

}  // namespace orven
