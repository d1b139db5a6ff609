// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <memory>
#include <string>

namespace orven {

/// What the environment says about the session's displays; true where the variable is not empty.
struct DisplayVariables {
  bool platform = false;  ///< QT_QPA_PLATFORM: the user has chosen
  bool x11 = false;       ///< DISPLAY
  bool wayland = false;   ///< WAYLAND_DISPLAY
};

/// The Qt platforms to try, in QT_QPA_PLATFORM's notation ("xcb;offscreen"); empty leaves the user's
/// choice. X comes first because Wayland lets no client place a window or keep it on top; offscreen
/// comes last so that a display which cannot be reached does not end the program.
std::string ChoosePlatform(const DisplayVariables& variables);

/// The program's QApplication on the platform chosen from the environment, named "ORVEN", which
/// goes on without a visible window. Child processes do not inherit the choice. `argc` and `argv`
/// live as long as the application; copy the command line first, Qt takes its own options out.
std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv);

/// Raises this process's limit of open files as far as the system lets it, so that strangers who hold
/// many connections to the telephone line leave room for recordings and logs. Child processes inherit
/// the limit. Does nothing where the system refuses.
void RaiseFileLimit();

}  // namespace orven
