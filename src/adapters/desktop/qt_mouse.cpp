// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_mouse.h"

#include <QGuiApplication>

namespace orven {

bool QtMouse::IsDown(MouseKey button) const {
  return QGuiApplication::mouseButtons().testFlag(button == kLeftButton ? Qt::LeftButton : Qt::RightButton);
}

}  // namespace orven
