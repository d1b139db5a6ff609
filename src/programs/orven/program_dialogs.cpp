// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/program_dialogs.h"

#include "actions/actions_dialog.h"
#include "actions/frmActions.h"
#include "greetings/frmGreetC.h"
#include "notify/events_dialog.h"
#include "notify/frmEvents.h"
#include "options/frmLines.h"
#include "options/lines_dialog.h"

namespace orven {

void ProgramDialogs::Attach(AnsweringMachine& machine, QWidget& window) {
  machine_ = &machine;
  window_ = &window;
}

bool ProgramDialogs::Offers(Dialog dialog) const {
  return dialog == Dialog::frmEvents || dialog == Dialog::frmActions || dialog == Dialog::frmGreetC;
}

void ProgramDialogs::Open(Dialog dialog, int tab) {
  if (dialog == Dialog::frmEvents) OpenEvents(tab);
  if (dialog == Dialog::frmActions) OpenActions(tab);
  if (dialog == Dialog::frmGreetC) OpenGreetingCreator();
}

void ProgramDialogs::OpenEvents(int tab) {
  auto& machine = *machine_;
  EventsDialog engine({machine.settings, machine.store, machine.shared, ports_.files, machine.sounds,
                       machine.player, ports_.dialogs, machine.caller_view});
  frmEvents(engine, tab, window_).exec();
}

void ProgramDialogs::AttachLines(TelephoneLines& lines, std::function<bool()> use_changed) {
  lines_ = &lines;
  use_changed_lines_ = std::move(use_changed);
}

void ProgramDialogs::OpenLines(QWidget* parent) {
  auto& machine = *machine_;
  LinesDialog engine(
      {*lines_, ports_.dialogs, machine.log, machine.store, machine.settings, use_changed_lines_});
  frmLines(engine, parent).exec();
}

void ProgramDialogs::OpenGreetingCreator() {
  look_for_cards_();  // a microphone may just have been plugged in
  frmGreetC window(window_);
  GreetingCreator engine(machine_->ForGreetingCreator(nullptr), window);
  window.Attach(engine);
  window.exec();
}

void ProgramDialogs::OpenActions(int tab) {
  auto& machine = *machine_;
  ActionsDialog engine({ports_.registry, machine.log, ports_.dialogs, ports_.shell, ports_.clock,
                        [&machine] { machine.store.GetMainAction(); }});
  frmActions(engine, tab, window_).exec();
}

}  // namespace orven
