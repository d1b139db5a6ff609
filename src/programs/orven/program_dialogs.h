// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "adapters/desktop/qt_dialogs.h"
#include "platform/telephone_lines.h"
#include "shell/answering_machine.h"
#include "shell/frmAbout.h"
#include "shell/main_commands.h"

namespace orven {

/// The libraries that this program is made with; the versions are those that run now, where a library
/// tells its own.
std::vector<Component> ProgramComponents();

/// Opens the main window's dialogs over the engine. User-interface thread.
class ProgramDialogs : public DialogFactory {
 public:
  /// `ports` are the engine's; `look_for_cards` brings what is known of the sound cards up to date.
  ProgramDialogs(EnginePorts ports, std::function<void()> look_for_cards)
      : ports_(ports), look_for_cards_(std::move(look_for_cards)) {}

  /// Before the first dialog: the engine and the window that the dialogs belong to.
  void Attach(AnsweringMachine& machine, QWidget& window);

  /// The telephone lines to set up; `use_changed` takes stored changes into use and says whether it did
  /// at once: otherwise it does when the call is over.
  void AttachLines(TelephoneLines& lines, std::function<bool()> use_changed);

  /// Opens the dialog of the telephone lines, on top of the options dialog `parent`.
  void OpenLines(QWidget* parent);

  bool Offers(Dialog dialog) const override;
  void Open(Dialog dialog, int tab) override;

 private:
  void OpenEvents(int tab);
  void OpenActions(int tab);
  void OpenGreetingCreator();
  void OpenOptions(int tab);
  std::optional<std::string> MakeGreeting(QWidget* parent);
  void OpenLog();

  DialogFocus focus_;
  EnginePorts ports_;
  std::function<void()> look_for_cards_;
  AnsweringMachine* machine_ = nullptr;
  QWidget* window_ = nullptr;
  TelephoneLines* lines_ = nullptr;
  std::function<bool()> use_changed_lines_;
};

}  // namespace orven
