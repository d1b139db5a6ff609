// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include "shell/main_commands.h"

namespace orven {

/// Opens the guide with F1: at the page about the dialog in front, or about its tab or its kind of line. The
/// main window's own F1 is the shortcut of a menu item, which an open dialog blocks. A table in the source
/// names the pages; a dialog that is not in it has the page of the window below it. User-interface thread.
class GuideKey : public QObject {
 public:
  /// Watches all windows of the QApplication. `commands` must outlive this object.
  GuideKey(MainCommands& commands, QObject* parent);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  MainCommands& commands_;
};

}  // namespace orven
