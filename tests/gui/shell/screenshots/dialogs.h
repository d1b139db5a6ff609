// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orven::test {

/// Pictures of the caller view and the dialogs, as PNG files in `folder`. False when one fails.
bool MakeDialogs(const QString& folder);

}  // namespace orven::test
