// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include "shell/answering_machine.h"
#include "shell/dialog_factory.h"

namespace orven {

/// Opens the main window's dialogs over the engine. User-interface thread.
class ProgramDialogs : public DialogFactory {
 public:
  /// `ports` are the engine's.
  explicit ProgramDialogs(EnginePorts ports) : ports_(ports) {}

  /// Before the first dialog: the engine and the window that the dialogs belong to.
  void Attach(AnsweringMachine& machine, QWidget& window);

  bool Offers(Dialog dialog) const override;
  void Open(Dialog dialog, int tab) override;

 private:
  void OpenEvents(int tab);
  void OpenActions(int tab);
  void OpenGreetingCreator();

  EnginePorts ports_;
  AnsweringMachine* machine_ = nullptr;
  QWidget* window_ = nullptr;
};

}  // namespace orven
