// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orven {

/// Formats here are patterns in Qt's notation ("HH:mm:ss t"); text between apostrophes is literal.

/// Whether the pattern shows seconds.
bool HasSeconds(const QString& pattern);

/// The pattern without its time zone field, the brackets around it and the blanks beside it.
QString WithoutZone(const QString& pattern);

/// The pattern in which a locale's times are written here: its short one when that shows seconds,
/// else its long one without the zone, else plain "HH:mm:ss".
QString TimePattern(const QString& short_pattern, const QString& long_pattern);

}  // namespace orven
