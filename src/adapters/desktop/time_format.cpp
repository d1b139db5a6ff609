// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/time_format.h"

#include <QRegularExpression>

namespace orven {
namespace {

/// The pattern with every quoted literal blanked out by underscores, so that a letter in it is not
/// taken for a field. Positions stay the same.
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
    // Between two other fields one blank has to remain of those on both sides.
    const bool inside = match.capturedStart() > 0 && match.capturedEnd() < result.size();
    result.replace(match.capturedStart(), match.capturedLength(), inside ? QStringLiteral(" ") : QString());
  }
  return result.trimmed();
}

}  // namespace

QString TimePattern(const QString& short_pattern, const QString& long_pattern) {
  for (const QString& pattern : {short_pattern, long_pattern})
    if (HasSeconds(pattern)) return WithKnownDayPeriod(WithoutZone(pattern));
  return QStringLiteral("HH:mm:ss");
}

}  // namespace orven
