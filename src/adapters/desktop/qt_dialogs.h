// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <iosfwd>

#include "platform/dialogs.h"

namespace orven {

/// Whether a person can see this application's windows: false on the offscreen and minimal platforms.
bool HasDisplay();

/// A "description NUL pattern NUL …" filter in Qt's form: "wav (*.wav);;All (*.*)".
QString QtFileFilter(const std::string& filter);

/// The dialogs port on Qt's boxes, modal to the active window and those below it; without a display on a
/// text stream, with the safe answer. While a box is open, other tasks and timers keep running, and the
/// tray's menu works.
class QtDialogs final : public Dialogs {
 public:
  explicit QtDialogs(bool has_display = HasDisplay());
  QtDialogs(bool has_display, std::ostream& text_output);

  void Message(const std::string& text) override;
  void Information(const std::string& text) override;
  bool Confirm(const std::string& text, QuestionIcon icon) override;
  std::optional<std::string> SaveAs(const std::string& title, const std::string& filter,
                                    const std::string& suggested_name) override;
  std::optional<std::string> OpenFile(const std::string& title, const std::string& filter) override;
  std::string BrowseFolder(const std::string& title, const std::string& present) override;

 private:
  void Tell(const std::string& text);

  bool has_display_;
  std::ostream& text_output_;
  QString save_folder_;  ///< where the last file was saved
  QString open_folder_;  ///< where the last file was opened
};

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
