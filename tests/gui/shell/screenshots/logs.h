// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace orven::test {

/// Pictures of the log viewer, the log properties and the about box, as PNG files in `folder`; the name
/// "logs_dark" asks for a dark desktop. False when one fails.
bool MakeLogs(const QString& folder, const QByteArray& name);

}  // namespace orven::test
