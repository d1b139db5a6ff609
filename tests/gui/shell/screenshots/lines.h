// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orven::test {

/// Pictures of the telephone lines and of one line, as PNG files `picture` in `folder`; its name says
/// whether they are dark. False when it fails.
bool MakeLines(const QString& folder, const QByteArray& picture);

}  // namespace orven::test
