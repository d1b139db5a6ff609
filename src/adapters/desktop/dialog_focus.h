// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace orven {

/// Gives the keyboard to the window below when a dialog closes that had it: some window managers give it to
/// nobody while the caller view is on the screen. For all dialogs and boxes of the application that have a
/// parent, as long as this object lives. User-interface thread.
class DialogFocus final : public QObject {
 public:
  DialogFocus();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace orven
