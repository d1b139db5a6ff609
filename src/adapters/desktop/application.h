// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <memory>

namespace orven {

/// Makes the program's QApplication, named "ORVEN", which runs on without a visible window. Without a
/// QT_QPA_PLATFORM of the user's it tries X, then Wayland, then offscreen: Wayland lets no program place a
/// window or keep it on top, and a display that cannot be reached must not end the program. Child processes
/// do not inherit what it chooses for Qt. `argc` and `argv` must outlive the application; Qt removes its own
/// options from them.
std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv);

/// Whether the windows are shown on Wayland.
bool OnWayland();

/// Wayland: `token` (xdg-activation) lets the next window that is activated take the focus. Elsewhere it does
/// nothing.
void UseActivationToken(const QString& token);

/// Raises this process's limit of open files as far as the system allows, so that strangers who hold many
/// connections to the telephone line leave room for recordings and logs. Child processes inherit the limit.
void RaiseFileLimit();

}  // namespace orven
