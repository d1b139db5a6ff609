// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "actions/actions_dialog.h"
#include "adapters/desktop/qt_dialogs.h"
#include "options/lines_dialog.h"
#include "platform/own_caller.h"
#include "platform/telephone_lines.h"
#include "programs/orven/check_up_ports.h"
#include "shell/answering_machine.h"
#include "shell/main_commands.h"

namespace orven {

/// Opens the main window's dialogs over the engine. User-interface thread.
class ProgramDialogs : public DialogFactory {
 public:
  /// `ports` are the engine's; `look_for_cards` updates the list of sound cards.
  ProgramDialogs(EnginePorts ports, std::function<void()> look_for_cards)
      : ports_(ports), look_for_cards_(std::move(look_for_cards)) {}

  /// Sets the engine and the parent of the dialogs. To be called before the first dialog.
  void Attach(AnsweringMachine& machine, QWidget& window);

  /// The telephone lines to set up. `use_changed` opens the changed lines, at once (true) or when the call is
  /// over.
  void AttachLines(TelephoneLines& lines, std::function<bool()> use_changed);

  /// Opens the dialog of the telephone lines, on top of the options dialog `parent`.
  std::string OpenLines(QWidget* parent);

  /// What Tools, Check-up works with: who calls the machine's own line, and the ports of one check-up.
  void AttachCheckUp(OwnCaller& caller, std::function<std::unique_ptr<CheckUpPorts>()> ports);

  void Open(Dialog dialog, int tab) override;

 private:
  void OpenEvents(int tab);
  void OpenActions(int tab);
  void OpenGreetingCreator();
  void OpenOptions(int tab);
  void OpenSetup(int page);
  std::optional<std::string> MakeGreeting(QWidget* parent, CreatorTab first = CreatorTab::Speaker);
  void OpenLog();
  void OpenCheckUp();

  DialogFocus focus_;
  EnginePorts ports_;
  std::function<void()> look_for_cards_;
  AnsweringMachine* machine_ = nullptr;
  QWidget* window_ = nullptr;
  TelephoneLines* lines_ = nullptr;
  OwnCaller* own_caller_ = nullptr;
  std::function<std::unique_ptr<CheckUpPorts>()> check_up_ports_;
  std::function<bool()> use_changed_lines_;
};

}  // namespace orven
