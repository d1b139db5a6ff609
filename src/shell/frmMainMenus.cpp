// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainMenus.h"

#include <QAction>
#include <QMenuBar>
#include <QSet>
#include <utility>

#include "widgets/controls.h"
#include "widgets/icons.h"

namespace orven {
namespace {

constexpr QChar kMark = u'&';

/// The letter after the mark, or a null character.
QChar MnemonicOf(const QString& text) {
  const auto mark = text.indexOf(kMark);
  return mark >= 0 && mark + 1 < text.size() ? text[mark + 1].toUpper() : QChar();
}

qsizetype FreeLetter(const QString& text, const QSet<QChar>& taken) {
  for (const bool initials_only : {true, false}) {
    for (qsizetype i = 0; i < text.size(); ++i) {
      if (!text[i].isLetterOrNumber() || taken.contains(text[i].toUpper())) continue;
      if (!initials_only || i == 0 || text[i - 1].isSpace()) return i;
    }
  }
  return -1;
}

}  // namespace

/// One command, or a separator when it has no name. Captions are untranslated.
struct MainMenus::Item {
  const char* name = nullptr;
  const char* caption = nullptr;
  const char* icon = nullptr;
};

MainMenus::MainMenus(QMainWindow& window, QWidget& list) : QObject(&window), window_(window) {
  AddBar();
  AddContextMenus();
  AddShortcuts(list);
  ShowLine(false, false);
}

void MainMenus::AddBar() {
  auto& bar = *window_.menuBar();
  bar.addMenu(AddMenu("MnuFile", QT_TR_NOOP("File"),
                      {{"mnuSave", QT_TR_NOOP("Save"), "document-save-as"},
                       {"mnuDelete", QT_TR_NOOP("Delete"), "edit-delete"},
                       {"mnuClear", QT_TR_NOOP("Clear"), "edit-clear-all"},
                       {},
                       {"mnuLog", QT_TR_NOOP("Log"), "view-list-text"},
                       {},
                       {"mnuHide", QT_TR_NOOP("Hide"), "view-hidden"},
                       {"mnuExit", QT_TR_NOOP("&Exit"), "application-exit"}}));
  bar.addMenu(AddMenu("mnuEdit", QT_TR_NOOP("Edit"),
                      {{"mnuFirst", QT_TR_NOOP("First"), "go-top"},
                       {"mnuLast", QT_TR_NOOP("Last"), "go-bottom"},
                       {"mnuNext", QT_TR_NOOP("Next"), "go-next"},
                       {"mnuBack", QT_TR_NOOP("Back"), "go-previous"},
                       {},
                       {"mnuPlay", QT_TR_NOOP("Play"), "media-playback-start"},
                       {"mnuStop", QT_TR_NOOP("Stop"), "media-playback-stop"}}));
  bar.addMenu(AddMenu("mnuEvents", QT_TR_NOOP("Events"),
                      {{"mnuEventsGeneral", QT_TR_NOOP("General")},
                       {"mnuInComingCall", QT_TR_NOOP("In Coming Call"), "call-start"},
                       {"mnuIdelCall", QT_TR_NOOP("Disconnect Call"), "call-stop"}}));
  bar.addMenu(AddMenu("mnuActions", QT_TR_NOOP("Actions"),
                      {{"mnuMail", QT_TR_NOOP("E-Mail"), "mail-message"},
                       {"mnuAplication", QT_TR_NOOP("Application"), "system-run"}}));
  bar.addMenu(AddMenu("mnuOptions", QT_TR_NOOP("Options"),
                      {{"mnuGeneral", QT_TR_NOOP("General"), "configure"},
                       {"mnuDevices", QT_TR_NOOP("Devices")},
                       {"mnuAnswerMode", QT_TR_NOOP("Answer Mode")},
                       {"mnuAdvance", QT_TR_NOOP("Advance")}}));
  bar.addMenu(AddMenu("mnuTools", QT_TR_NOOP("Tools"),
                      {{"mnuGreetingCreator", QT_TR_NOOP("Greeting Creator"), "list-add"},
                       {},
                       {"mnuGreetingsPage", QT_TR_NOOP("Web Page on Greetings"), "internet-services"},
                       {"mnuSoundsPage", QT_TR_NOOP("Web Page on Sounds"), "internet-services"},
                       {},
                       {"mnuSetup", QT_TR_NOOP("Set-up Assistant…")},
                       {"mnuCheckUp", QT_TR_NOOP("Check-up…")}}));
  bar.addMenu(AddMenu("mnuHelp", QT_TR_NOOP("Help"),
                      {{"mnuContents", QT_TR_NOOP("Contents"), "help-contents"},
                       {"mnuHomePage", QT_TR_NOOP("ORVEN Web Page"), "internet-services"},
                       {},
                       {"mnuAbout", QT_TR_NOOP("About"), "help-about"}}));
  AssignMnemonics(bar.actions());
}

void MainMenus::AddContextMenus() {
  right_click_ = AddMenu("mnuRightClick", QT_TR_NOOP("Message"),
                         {{"mnuRCPlay", QT_TR_NOOP("Play"), "media-playback-start"},
                          {"mnuTCStop", QT_TR_NOOP("Stop"), "media-playback-stop"},
                          {},
                          {"mnuRCSave", QT_TR_NOOP("Save As"), "document-save-as"},
                          {"mnuRCMessageDelete", QT_TR_NOOP("Delete"), "edit-delete"},
                          {},
                          {"mnuMarkasunread", QT_TR_NOOP("Mark as unread"), "mail-mark-unread"},
                          {"mnuRCMarkAsRead", QT_TR_NOOP("Mark as read"), "mail-mark-read"}});
  no_message_right_click_ =
      AddMenu("mnuNoMessageRightClick", QT_TR_NOOP("Call"),
              {{"mnuNoMessageDeleteRC", QT_TR_NOOP("Delete"), "edit-delete"},
               {},
               {"mnuNoMesMarkasunread", QT_TR_NOOP("Mark as unread"), "mail-mark-unread"},
               {"mnuNoMesMarkasRead", QT_TR_NOOP("Mark as read"), "mail-mark-read"}});
  systry_ = AddMenu("mnuSystry", QT_TR_NOOP("ORVEN"),
                    {{"mnuExitSys", QT_TR_NOOP("Exit"), "application-exit"},
                     {},
                     {"mnuOff", QT_TR_NOOP("Off"), "call-stop"},
                     {"mnuOn", QT_TR_NOOP("On"), "call-start"},
                     {},
                     {"mnuOpen", QT_TR_NOOP("Open"), "window"}});
}

QMenu* MainMenus::AddMenu(const char* name, const char* caption, std::initializer_list<Item> items) {
  auto* menu = MakeNamed<QMenu>(name, tr(caption), &window_);
  for (const auto& item : items) {
    if (item.name == nullptr) {
      menu->addSeparator();
      continue;
    }
    auto* action = MakeNamed<QAction>(item.name, tr(item.caption), &window_);
    if (item.icon != nullptr) action->setIcon(ThemeIcon(item.icon));
    menu->addAction(action);
  }
  AssignMnemonics(menu->actions());
  return menu;
}

void MainMenus::AddShortcuts(QWidget& list) {
  Find("mnuSave")->setShortcut(QKeySequence::Save);
  Find("mnuExit")->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
  Find("mnuNext")->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
  Find("mnuBack")->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
  Find("mnuStop")->setShortcut(QKeySequence(Qt::Key_Escape));
  Find("mnuContents")->setShortcut(QKeySequence::HelpContents);

  // In other controls these keys press buttons, move in boxes and delete letters.
  Find("mnuDelete")->setShortcut(QKeySequence::Delete);
  Find("mnuPlay")->setShortcuts({Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter});
  Find("mnuFirst")->setShortcut(Qt::Key_Home);
  Find("mnuLast")->setShortcut(Qt::Key_End);
  for (const char* name : {"mnuDelete", "mnuPlay", "mnuFirst", "mnuLast"}) {
    Find(name)->setShortcutContext(Qt::WidgetShortcut);
    list.addAction(Find(name));
  }
}

QAction* MainMenus::Find(const char* name) const {
  return window_.findChild<QAction*>(QString::fromLatin1(name), Qt::FindDirectChildrenOnly);
}

void MainMenus::On(const char* name, std::function<void()> command) {
  connect(Find(name), &QAction::triggered, this, [command = std::move(command)] { command(); });
}

void MainMenus::Attach(MainWindow& engine, const ButtonBar& Toolbar1, const ButtonBar& ToolBarPlayer) {
  AttachButtons(Toolbar1, ToolBarPlayer);
  AttachDialogs(engine.Commands());
  AttachList(engine.Machine().list_commands);
  AttachProgram(engine);
}

void MainMenus::AttachButtons(const ButtonBar& Toolbar1, const ButtonBar& ToolBarPlayer) {
  const struct {
    const char* name;
    const ButtonBar& bar;
    const char* key;
  } commands[] = {{"mnuSave", Toolbar1, "Save"},
                  {"mnuRCSave", Toolbar1, "Save"},
                  {"mnuDelete", Toolbar1, "Delete"},
                  {"mnuRCMessageDelete", Toolbar1, "Delete"},
                  {"mnuNoMessageDeleteRC", Toolbar1, "Delete"},
                  {"mnuClear", Toolbar1, "Clear"},
                  {"mnuLog", Toolbar1, "Log"},
                  {"mnuNext", Toolbar1, "Next"},
                  {"mnuBack", Toolbar1, "Back"},
                  {"mnuPlay", ToolBarPlayer, "Play"},
                  {"mnuRCPlay", ToolBarPlayer, "Play"},
                  {"mnuStop", ToolBarPlayer, "Stop"},
                  {"mnuTCStop", ToolBarPlayer, "Stop"}};
  for (const auto& command : commands) {
    auto* button = command.bar.Find(command.key);
    On(command.name, [button] { button->click(); });
    const auto follow = [item = Find(command.name), button] {
      item->setEnabled(button->defaultAction()->isEnabled());
    };
    connect(button->defaultAction(), &QAction::changed, this, follow);
    follow();
  }
}

void MainMenus::AttachDialogs(MainCommands& commands) {
  constexpr struct {
    const char* name;
    Dialog dialog;
    int tab;
  } kTabs[] = {{"mnuEventsGeneral", Dialog::frmEvents, 0}, {"mnuInComingCall", Dialog::frmEvents, 1},
               {"mnuIdelCall", Dialog::frmEvents, 2},      {"mnuMail", Dialog::frmActions, 0},
               {"mnuAplication", Dialog::frmActions, 1},   {"mnuGeneral", Dialog::frmOptions, 0},
               {"mnuDevices", Dialog::frmOptions, 1},      {"mnuAnswerMode", Dialog::frmOptions, 2},
               {"mnuAdvance", Dialog::frmOptions, 3},      {"mnuSetup", Dialog::frmSetup, 0},
               {"mnuCheckUp", Dialog::frmCheckUp, 0},
               {"mnuAbout", Dialog::frmAbout, 0}};
  for (const auto& item : kTabs)
    On(item.name, [&commands, item] { commands.OpenDialog(item.dialog, item.tab); });
  On("mnuGreetingCreator", [&commands] { commands.DisplayGreetingCreator(); });
}

void MainMenus::AttachList(ListCommands& list) {
  On("mnuFirst", [&list] { list.First(); });
  On("mnuLast", [&list] { list.Last(); });
  for (const char* name : {"mnuMarkasunread", "mnuNoMesMarkasunread"})
    On(name, [&list] { list.MarkAsUnread(); });
  for (const char* name : {"mnuRCMarkAsRead", "mnuNoMesMarkasRead"}) On(name, [&list] { list.MarkAsRead(); });
}

void MainMenus::AttachProgram(MainWindow& engine) {
  for (const char* name : {"mnuExit", "mnuExitSys"}) On(name, [&engine] { engine.Exit(); });
  On("mnuHide", [&engine] { engine.Hide(); });
  On("mnuOpen", [&engine] { engine.Open(); });
  On("mnuOn", [&engine] { engine.TurnOn(); });
  On("mnuOff", [&engine] { engine.TurnOff(); });
  auto& commands = engine.Commands();
  for (const char* name : {"mnuContents", "mnuHomePage"})
    On(name, [&commands] { commands.ShowPage(kStartPage); });
  On("mnuGreetingsPage", [&commands] { commands.ShowPage(kGreetingsPage); });
  On("mnuSoundsPage", [&commands] { commands.ShowPage(kSoundsPage); });
}

void MainMenus::ShowLine(bool on, bool trying) {
  Find("mnuOn")->setEnabled(!on);
  Find("mnuOff")->setEnabled(on || trying);
}

void AssignMnemonics(const QList<QAction*>& actions) {
  QSet<QChar> taken;
  for (const auto* action : actions) taken.insert(MnemonicOf(action->text()));
  for (auto* action : actions) {
    auto text = action->text();
    if (action->isSeparator() || text.contains(kMark)) continue;
    const auto place = FreeLetter(text, taken);
    if (place < 0) continue;
    taken.insert(text[place].toUpper());
    action->setText(text.insert(place, kMark));
  }
}

}  // namespace orven
