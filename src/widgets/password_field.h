// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QLineEdit>

namespace orven {

/// Hides what is typed in `field`, which gets a button that shows it.
void HidePassword(QLineEdit& field);

/// A label that says what is wrong with the password for remote access in `field`, or how it is entered.
QLabel* MakePasswordHint(QLineEdit& field, QWidget* parent);

}  // namespace orven
