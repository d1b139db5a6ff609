// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_clock.h"

#include <QDateTime>
#include <QRegularExpression>

namespace orven {
namespace {

/// The pattern with quoted literals replaced by underscores of the same length, so that only fields remain.
QString FieldsOnly(const QString& pattern) {
  QString fields = pattern;
  bool quoted = false;
  for (QChar& letter : fields) {
    if (letter == u'\'') quoted = !quoted;
    if (quoted || letter == u'\'') letter = u'_';
  }
  return fields;
}

/// The pattern with AP in place of the finer times of day, B and b, that Qt does not know.
QString WithKnownDayPeriod(const QString& pattern) {
  const QString fields = FieldsOnly(pattern);
  QString result = pattern;
  for (qsizetype at = fields.size() - 1; at >= 0; --at)
    if (fields[at] == u'B' || fields[at] == u'b') result.replace(at, 1, QStringLiteral("AP"));
  return result;
}

bool HasSeconds(const QString& pattern) {
  return FieldsOnly(pattern).contains(u's');
}

QString WithoutZone(const QString& pattern) {
  static const QRegularExpression zone(QStringLiteral(R"(\s*([(\[]t+[)\]]|t+)\s*)"),
                                       QRegularExpression::UseUnicodePropertiesOption);
  QString result = pattern;
  for (;;) {
    const QRegularExpressionMatch match = zone.match(FieldsOnly(result));
    if (!match.hasMatch()) break;
    // One blank must remain between two other fields.
    const bool inside = match.capturedStart() > 0 && match.capturedEnd() < result.size();
    result.replace(match.capturedStart(), match.capturedLength(), inside ? QStringLiteral(" ") : QString());
  }
  return result.trimmed();
}

/// The pattern for times, from a locale's two in Qt's notation ("HH:mm:ss t"; text between apostrophes is
/// literal): the short one if it shows seconds, else the long one without the zone, its brackets and blanks,
/// else "HH:mm:ss". A finer time of day (B, as in Taiwan), which Qt would print as that letter, becomes AP.
QString TimePattern(const QString& short_pattern, const QString& long_pattern) {
  for (const QString& pattern : {short_pattern, long_pattern})
    if (HasSeconds(pattern)) return WithKnownDayPeriod(WithoutZone(pattern));
  return QStringLiteral("HH:mm:ss");
}

using std::chrono::milliseconds;

QDateTime Local(Clock::WallTime at) {
  return QDateTime::fromMSecsSinceEpoch(std::chrono::floor<milliseconds>(at.time_since_epoch()).count());
}

/// The texts become parts of file names and log lines: a control character in a locale's data would break
/// both.
std::string Text(QString text) {
  text.removeIf([](QChar letter) { return letter.category() == QChar::Other_Control; });
  return text.trimmed().toStdString();
}

}  // namespace

QtClock::QtClock(const QLocale& locale)
    : locale_(locale),
      time_pattern_(
          TimePattern(locale_.timeFormat(QLocale::ShortFormat), locale_.timeFormat(QLocale::LongFormat))) {}

milliseconds QtClock::Uptime() const {
  return std::chrono::floor<milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

Clock::WallTime QtClock::Now() const {
  return std::chrono::system_clock::now();
}

std::string QtClock::DateText(WallTime at) const {
  return Text(locale_.toString(Local(at).date(), QLocale::ShortFormat));
}

std::string QtClock::TimeText(WallTime at) const {
  return Text(locale_.toString(Local(at).time(), time_pattern_));
}

std::chrono::year_month_day QtClock::LocalDay(WallTime at) const {
  const QDate day = Local(at).date();
  return std::chrono::year_month_day{std::chrono::year(day.year()),
                                     std::chrono::month(static_cast<unsigned>(day.month())),
                                     std::chrono::day(static_cast<unsigned>(day.day()))};
}

Clock::WallTime QtClock::Midnight(std::chrono::year_month_day day) const {
  // Through sys_days, so that 31 June counts as 1 July rather than as no day at all.
  const std::chrono::year_month_day real{std::chrono::sys_days(day)};
  const QDate date(static_cast<int>(real.year()), static_cast<int>(static_cast<unsigned>(real.month())),
                   static_cast<int>(static_cast<unsigned>(real.day())));
  return WallTime(milliseconds(date.startOfDay().toMSecsSinceEpoch()));
}

}  // namespace orven
