// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace orven {

/// Keeps the mouse wheel from changing `control`, a list or a slider, unless a person has chosen it: what
/// it shows is a choice, and a wheel that turns to scroll or by accident is none.
void IgnoreStrayWheel(QWidget& control);

}  // namespace orven
