// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>
#include <utility>
#include <vector>

namespace orven {

/// A push button of the greeting creator; `icon` is a Freedesktop icon name, null for none.
QPushButton* MakeButton(const char* name, const QString& caption, const char* icon, QWidget* parent);

/// Enables and disables buttons, given in the order in which they are used. The focus of one that is
/// disabled goes on to the next one that can be pressed, else back to one before it.
void EnableButtons(const std::vector<std::pair<QPushButton*, bool>>& buttons);

}  // namespace orven
