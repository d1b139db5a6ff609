// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace orven::test {

/// One picture of the greeting creator as a PNG file in `folder`: "creator", "creator_dark" or
/// "creator_scaled". False when it fails.
bool MakeCreator(const QString& folder, const QByteArray& picture);

}  // namespace orven::test
