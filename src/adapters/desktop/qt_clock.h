// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QString>

#include "platform/clock.h"

namespace orven {

/// The system's clocks with the local time zone (TZ) and the user's locale (LC_ALL, LC_TIME, LANG).
class QtClock final : public Clock {
 public:
  /// `locale` formats the texts.
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
