// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/answering_machine.h"

namespace orven {

AnsweringMachine::AnsweringMachine(EnginePorts ports, MainWindowViews views, SharedOptions& shared_options)
    : shared(shared_options),
      log(ports.clock, ports.files, ports.loop, settings, shared),
      store(ports.registry, log, settings, shared),
      quick_options(store, log, settings, shared),
      ListView1(ports.DataBase1, log, views.list, views.tray),
      calls({ports.DataBase1, ports.files, ports.Wave1, ports.dialogs, views.player, log, log}, ListView1,
            settings, shared),
      line({ports.Tapi1, ports.dialogs, log, views.line}, store, settings),
      context{ports.Tapi1, ports.Wave1, log, settings, shared, call, progress, line},
      control(context),
      recorder({ports.clock, ports.loop, ports.files}, context, control),
      remote(context, control, recorder, ListView1, views.line),
      greeter(context, control, recorder, remote),
      after_call({views.caller_view, views.sounds, views.tray, views.actions}, calls, ListView1, log,
                 settings, shared, [this] { return window_hidden; }),
      sequence(context,
               {control, greeter, recorder, remote, after_call, views.line, views.caller_view, ports.clock}),
      ports_(ports) {
  ports_.Tapi1.SetEvents(&sequence);
  ports_.Wave1.SetEvents(&greeter);
}

AnsweringMachine::~AnsweringMachine() {
  ports_.Tapi1.SetEvents(nullptr);
  ports_.Wave1.SetEvents(nullptr);
}

}  // namespace orven
