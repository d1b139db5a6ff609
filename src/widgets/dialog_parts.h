// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QPushButton>

namespace orven {

/// Gives a dialog its object name, its title and the program's icon, and makes it modal to the main window
/// only, so that a call that comes in can be answered in the caller view.
void SetUpDialog(QDialog& dialog, const char* name, const QString& title);

/// A push button; `name` is its object name, `icon` a Freedesktop icon name, null for none.
QPushButton* MakeButton(const char* name, const QString& caption, const QString& tip, QWidget* parent,
                        const char* icon = nullptr);

/// The row of buttons that closes a dialog.
struct ClosingButtons {
  QHBoxLayout* row;
  QPushButton* cmdOK;      ///< pressed by Return; does nothing by itself
  QPushButton* cmdCancel;  ///< rejects the dialog
};
ClosingButtons MakeClosingButtons(QDialog& dialog);

}  // namespace orven
