// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QStandardPaths>
#include <QStringList>
#include <QTimer>
#include <QWindow>
#include <iostream>
#include <utility>

namespace orven {
namespace {

constexpr const char* kTitle = "ORVEN";

QMessageBox::Icon IconOf(QuestionIcon icon) {
  switch (icon) {
    case QuestionIcon::Question: return QMessageBox::Question;
    case QuestionIcon::Information: return QMessageBox::Information;
    case QuestionIcon::None: return QMessageBox::NoIcon;
  }
  return QMessageBox::NoIcon;
}

/// The window that a box blocks: the active one, else a visible main window; if a dialog is open over it,
/// that dialog, so that boxes are answered from the top. The tray's menu belongs to no window and keeps
/// working.
QWidget* Owner() {
  auto* owner = QApplication::activeWindow();
  for (auto* window : QApplication::topLevelWidgets()) {
    const bool seen = window->isVisible() && !window->isMinimized();
    if (owner == nullptr && seen && qobject_cast<QMainWindow*>(window) != nullptr) owner = window;
  }
  const auto open_over = [](const QWidget* below) -> QWidget* {
    for (auto* window : QApplication::topLevelWidgets()) {
      if (window->isModal() && window->isVisible() && window->parentWidget() == below) return window;
    }
    return nullptr;
  };
  while (owner != nullptr && open_over(owner) != nullptr) owner = open_over(owner);
  return owner;
}

/// Not every account has a folder for music; without one a dialog would open in the current folder.
QString Existing(const QString& folder) {
  return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

/// Shows a file dialog and keeps the folder of the chosen file in `folder`.
std::optional<std::string> Chosen(QFileDialog& dialog, QString& folder) {
  dialog.setWindowModality(Qt::WindowModal);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const QString path = dialog.selectedFiles().constFirst();
  folder = QFileInfo(path).absolutePath();
  return path.toStdString();
}

/// A "description NUL pattern NUL …" filter in Qt's form: "wav (*.wav);;All (*.*)".
QString QtFileFilter(const std::string& filter) {
  const QStringList parts =
      QString::fromStdString(filter).split(QChar(u'\0'), Qt::SkipEmptyParts, Qt::CaseSensitive);
  QStringList result;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    const QString pattern = QStringLiteral("(%1)").arg(QString(parts[i + 1]).replace(u';', u' '));
    // Qt takes the pattern from the brackets; a description that already shows it keeps its text.
    result << (parts[i].endsWith(pattern) ? parts[i] : parts[i] + u' ' + pattern);
  }
  return result.join(QLatin1String(";;"));
}

}  // namespace

bool HasDisplay() {
  const QString platform = QGuiApplication::platformName();
  return !platform.isEmpty() && platform != QLatin1String("offscreen") &&
         platform != QLatin1String("minimal");
}

QtDialogs::QtDialogs(Translation shown, bool has_display)
    : QtDialogs(std::move(shown), has_display, std::cerr) {}

QtDialogs::QtDialogs(Translation shown, bool has_display, std::ostream& text_output)
    : shown_(std::move(shown)),
      has_display_(has_display),
      text_output_(text_output),
      save_folder_(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)),
      open_folder_(QStandardPaths::writableLocation(QStandardPaths::MusicLocation)) {}

/// Shows a box and returns the button that closed it.
int QtDialogs::Ask(QMessageBox::Icon icon, const Words& text, QMessageBox::StandardButtons buttons,
                   QMessageBox::StandardButton safe, Qt::WindowFlags flags) const {
  QMessageBox box(icon, QString::fromUtf8(kTitle), Text(text), buttons, Owner());
  box.setWindowModality(Qt::WindowModal);  // before the flags: it resets them
  box.setWindowFlags(box.windowFlags() | flags);
  box.setTextFormat(Qt::PlainText);  // names of greetings and callers are not markup
  box.setDefaultButton(safe);
  box.setEscapeButton(safe);
  return box.exec();
}

QString QtDialogs::Text(const Words& words) const {
  return QString::fromStdString(shown_(words));
}

void QtDialogs::Message(const Words& text) {
  if (!has_display_) return Tell(text.English());
  Ask(QMessageBox::NoIcon, text, QMessageBox::Ok, QMessageBox::Ok, Qt::WindowStaysOnTopHint);
}

void QtDialogs::Information(const Words& text) {
  if (!has_display_) return Tell(text.English());
  Ask(QMessageBox::Information, text, QMessageBox::Ok, QMessageBox::Ok);
}

bool QtDialogs::Confirm(const Words& text, QuestionIcon icon) {
  if (!has_display_) {
    Tell(text.English() + " (answered No: there is no display)");
    return false;
  }
  return Ask(IconOf(icon), text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

std::optional<std::string> QtDialogs::SaveAs(const Words& title, const std::string& filter,
                                             const std::string& suggested_name) {
  if (!has_display_) {
    Tell(title.English() + ": " + suggested_name + " (cancelled: there is no display)");
    return std::nullopt;
  }
  const QString name = QString::fromStdString(suggested_name);
  QFileDialog dialog(Owner(), Text(title), Existing(save_folder_), QtFileFilter(filter));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QFileInfo(name).suffix());
  dialog.selectFile(name);
  return Chosen(dialog, save_folder_);
}

std::optional<std::string> QtDialogs::OpenFile(const Words& title, const std::string& filter) {
  if (!has_display_) {
    Tell(title.English() + " (cancelled: there is no display)");
    return std::nullopt;
  }
  QFileDialog dialog(Owner(), Text(title), Existing(open_folder_), QtFileFilter(filter));
  dialog.setFileMode(QFileDialog::ExistingFile);
  return Chosen(dialog, open_folder_);
}

std::string QtDialogs::BrowseFolder(const Words& title, const std::string& present) {
  if (!has_display_) {
    Tell(title.English() + " (cancelled: there is no display)");
    return {};
  }
  auto folder = QString::fromStdString(present);
  QFileDialog dialog(Owner(), Text(title), folder);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  return Chosen(dialog, folder).value_or("");
}

void QtDialogs::Tell(const std::string& text) {
  text_output_ << kTitle << ": " << text << std::endl;
}

DialogFocus::DialogFocus() {
  QCoreApplication::instance()->installEventFilter(this);
}

bool DialogFocus::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Hide || event->spontaneous()) return false;
  const auto* dialog = qobject_cast<QDialog*>(watched);
  if (dialog == nullptr || dialog->parentWidget() == nullptr) return false;
  // The keyboard focus may be in another program by now.
  if (QGuiApplication::focusWindow() != dialog->windowHandle()) return false;
  QWidget* below = dialog->parentWidget()->window();
  // Only after the dialog is hidden: while Qt regards the dialog as focused, it sets the focus without asking
  // the window manager, which then makes its own choice and overrides Qt's.
  QTimer::singleShot(0, below, [below] {
    if (below->isVisible()) below->activateWindow();
  });
  return false;
}

}  // namespace orven
