// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/answering_machine.h"

namespace orven {

AnsweringMachine::AnsweringMachine(EnginePorts ports, MainWindowViews views, SharedOptions& shared_options)
    : shared(shared_options),
      log(ports.clock, ports.files, ports.loop, settings, shared),
      store(ports.registry, log, settings, shared),
      quick_options(store, log, settings, shared),
      tray(ports.loop, ports.shell, log, [&frame = views.frame] { return frame.Handle(); }),
      ListView1(ports.DataBase1, log, views.list, tray),
      player({ports.loop, ports.WavePlay, ports.waveforms, views.player, log}, ListView1, settings, shared,
             [this](std::int32_t row) { calls.MarkAsReadUnRead(row, true); }),
      calls({ports.DataBase1, ports.files, ports.background, ports.Wave1, ports.dialogs, player, log, log},
            ListView1, settings, shared),
      sounds(ports.WavePlay, player, settings, log),
      greetings(ports.files, player, sounds, views.boxes, shared),
      list_commands({ListView1, calls, player, ports.dialogs, ports.mouse, views.list, settings, shared,
                     [this] { return call.in_progress && call.remote_playback; }}),
      status(views.line),
      line({ports.Tapi1, ports.dialogs, log, status}, store, settings),
      context{ports.Tapi1, ports.Wave1, log, settings, shared, call, progress, line},
      control(context),
      caller_view(ports.loop, views.caller_view,
                  {.answer =
                       [this] {
                         if (call.in_progress) control.AnswerToCall(context.Line(), 0, true);
                       },
                   .drop =
                       [this] {
                         if (call.in_progress) control.DropInComeCall();
                       },
                   .do_nothing = [this] { call.do_nothing = true; }}),
      actions({ports.loop, ports.Mail1, ports.shell, log, status}, settings,
              [this] { line.ShowMonitoring(); }),
      recorder({ports.clock, ports.loop, ports.files}, context, control),
      remote(context, control, recorder, ListView1, status),
      greeter(context, control, recorder, remote),
      after_call({caller_view, sounds, tray, actions}, calls, ListView1, log, settings, shared,
                 [this] { return window_hidden; }),
      sequence(context, {control, greeter, recorder, remote, after_call, status, caller_view, ports.clock}),
      ports_(ports) {
  ports_.Tapi1.SetEvents(&sequence);
  ports_.Wave1.SetEvents(&greeter);
  ListView1.SetSelectionListener([this] { player.ShowSelected(); });
}

AnsweringMachine::~AnsweringMachine() {
  ports_.Tapi1.SetEvents(nullptr);
  ports_.Wave1.SetEvents(nullptr);
}

}  // namespace orven
