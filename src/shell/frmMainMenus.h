// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QList>
#include <QMainWindow>
#include <QMenu>
#include <functional>

#include "shell/main_window.h"
#include "widgets/button_bar.h"

namespace orven {

/// The main window's menu bar, the list's two context menus and the tray menu. Every action and menu is a
/// child of the window and has the command's name.
class MainMenus : public QObject {
  Q_OBJECT

 public:
  /// The shortcuts that play, delete and move work only in `list`.
  MainMenus(QMainWindow& window, QWidget& list);

  /// Connects the commands. A command that has a toolbar button presses the button.
  void Attach(MainWindow& engine, const ButtonBar& Toolbar1, const ButtonBar& ToolBarPlayer);

  /// Which of `mnuOn` and `mnuOff` can be chosen.
  void ShowLine(bool on, bool trying);

  QMenu& RightClick(bool message) { return message ? *right_click_ : *no_message_right_click_; }
  QMenu& Systry() { return *systry_; }

 private:
  struct Item;
  void AddBar();
  void AddContextMenus();
  void AddShortcuts(QWidget& list);
  QMenu* AddMenu(const char* name, const char* caption, std::initializer_list<Item> items);
  QAction* Find(const char* name) const;
  void On(const char* name, std::function<void()> command);
  void AttachButtons(const ButtonBar& Toolbar1, const ButtonBar& ToolBarPlayer);
  void AttachDialogs(MainCommands& commands);
  void AttachList(ListCommands& list);
  void AttachProgram(MainWindow& engine);

  QMainWindow& window_;
  QMenu* right_click_ = nullptr;
  QMenu* no_message_right_click_ = nullptr;
  QMenu* systry_ = nullptr;
};

/// Gives each action of a menu a unique accelerator, unless it has one: the first free initial of its words,
/// else any free letter. Texts may be in any language.
void AssignMnemonics(const QList<QAction*>& actions);

}  // namespace orven
