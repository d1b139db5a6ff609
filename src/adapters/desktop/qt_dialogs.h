// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QString>
#include <iosfwd>

#include "platform/dialogs.h"

namespace orven {

/// Whether this application's windows are visible to a user: false on the offscreen and minimal platforms.
bool HasDisplay();

/// Message boxes and file dialogs, modal to the active window and those below it. Without a display the texts
/// go to a stream, and the answer is the safe one. While a box is open, tasks, timers and the tray's menu
/// work.
class QtDialogs final : public Dialogs {
 public:
  /// `shown` translates what is shown on a display.
  explicit QtDialogs(Translation shown, bool has_display = HasDisplay());
  QtDialogs(Translation shown, bool has_display, std::ostream& text_output);

  void Message(const Words& text) override;
  void Information(const Words& text) override;
  bool Confirm(const Words& text, QuestionIcon icon) override;
  std::optional<std::string> SaveAs(const Words& title, const std::string& filter,
                                    const std::string& suggested_name) override;
  std::optional<std::string> OpenFile(const Words& title, const std::string& filter) override;
  std::string BrowseFolder(const Words& title, const std::string& present) override;

 private:
  int Ask(QMessageBox::Icon icon, const Words& text, QMessageBox::StandardButtons buttons,
          QMessageBox::StandardButton safe, Qt::WindowFlags flags = {}) const;
  QString Text(const Words& words) const;
  void Tell(const std::string& text);

  const Translation shown_;
  bool has_display_;
  std::ostream& text_output_;
  QString save_folder_;  ///< where the last file was saved
  QString open_folder_;  ///< where the last file was opened
};

/// Gives the keyboard focus of a dialog that closes to the window below: some window managers give it to no
/// window while the caller view is shown. As long as this object lives, for all dialogs and boxes with a
/// parent. User-interface thread.
class DialogFocus final : public QObject {
 public:
  DialogFocus();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace orven
