// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/dialog_focus.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QTimer>
#include <QWindow>

namespace orven {

DialogFocus::DialogFocus() {
  QCoreApplication::instance()->installEventFilter(this);
}

bool DialogFocus::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Hide || event->spontaneous()) return false;
  const auto* dialog = qobject_cast<QDialog*>(watched);
  if (dialog == nullptr || dialog->parentWidget() == nullptr) return false;
  // Whoever works in another program meanwhile keeps the keyboard there.
  if (QGuiApplication::focusWindow() != dialog->windowHandle()) return false;
  QWidget* below = dialog->parentWidget()->window();
  // Not before the dialog is gone: until then Qt takes it for the one with the keyboard, and the request goes
  // past the window manager, whose own choice comes later and wins.
  QTimer::singleShot(0, below, [below] {
    if (below->isVisible()) below->activateWindow();
  });
  return false;
}

}  // namespace orven
