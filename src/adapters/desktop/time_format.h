// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orven {

/// The pattern in which a locale's times are written here, from its own two in Qt's notation ("HH:mm:ss t";
/// text between apostrophes is literal): the short one when that shows seconds, else the long one without the
/// zone, the brackets around it and the blanks beside it, else plain "HH:mm:ss". A finer time of day (B, as
/// in Taiwan), which Qt would write out as that letter, becomes forenoon or afternoon.
QString TimePattern(const QString& short_pattern, const QString& long_pattern);

}  // namespace orven
