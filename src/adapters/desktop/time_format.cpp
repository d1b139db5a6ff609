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

}  // namespace

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

QString TimePattern(const QString& short_pattern, const QString& long_pattern) {
  if (HasSeconds(short_pattern)) return WithoutZone(short_pattern);
  if (HasSeconds(long_pattern)) return WithoutZone(long_pattern);
  return QStringLiteral("HH:mm:ss");
}

}  // namespace orven
