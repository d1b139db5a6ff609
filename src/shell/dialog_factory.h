// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orven {

/// The program's windows that the main window opens.
enum class Dialog { frmLog, frmEvents, frmActions, frmOptions, frmGreetC, frmAbout };

/// Opens the main window's dialogs, modally. User-interface thread.
class DialogFactory {
 public:
  virtual ~DialogFactory() = default;

  /// Whether this program has that dialog; commands for one that it lacks are disabled.
  virtual bool Offers(Dialog dialog) const = 0;

  /// Opens it on the tab with this 0-based index; dialogs without tabs ignore it.
  virtual void Open(Dialog dialog, int tab) = 0;
};

}  // namespace orven
