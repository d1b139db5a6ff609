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

/// The menu bar, the list's two context menus and the tray's menu of the main window. Every action and
/// menu is a child of the window, named as the command.
class MainMenus : public QObject {
  Q_OBJECT

 public:
  /// `list` is where the keys that play, delete and move in the list work.
  MainMenus(QMainWindow& window, QWidget& list);

  /// Connects the commands: those that duplicate a button press it.
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

/// Gives each action of one menu that has no accelerator yet one that no other action there has: a
/// word's first letter where that is free, else any letter. Texts may be in any language.
void AssignMnemonics(const QList<QAction*>& actions);

}  // namespace orven
