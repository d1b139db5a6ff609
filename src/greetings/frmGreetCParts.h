// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>
#include <initializer_list>
#include <utility>

namespace orven {

/// A push button of the greeting creator; `icon` is a Freedesktop icon name, null for none.
QPushButton* MakeButton(const char* name, const QString& caption, const char* icon, QWidget* parent);

/// Enables and disables buttons together. The focus of one that is disabled goes on to one that can be
/// pressed next.
void EnableButtons(std::initializer_list<std::pair<QPushButton*, bool>> buttons);

}  // namespace orven
