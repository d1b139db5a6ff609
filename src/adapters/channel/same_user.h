// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocalSocket>

namespace orven {

/// Whether the process at the other end of `socket` belongs to the user of this one.
bool IsSameUser(const QLocalSocket& socket);

}  // namespace orven
