// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace orven::test {

/// Writes pictures of the options dialog's tabs; `picture` names them: "options", with "_dark" or "_scaled".
/// False when that fails.
bool MakeOptions(const QString& folder, const QByteArray& picture);

}  // namespace orven::test
