// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/answering_machine.h"

namespace orven {
AnsweringMachine::AnsweringMachine(EnginePorts ports, MainWindowViews views,
                                   const ApplicationFolder& application_folder,
                                   std::function<void()> bring_to_front)
    : home(application_folder),
      log(ports.clock, ports.files, ports.loop, settings, home),
      store(ports.registry, log, settings, home),
      quick_options(store, log, settings),
      tray(ports.loop, ports.shell, log, [&frame = views.frame] { return frame.Handle(); }),
      notices({ports.notifications, tray, store, ListView1,
               [&frame = views.frame] { return frame.InFront(); },
               [this](const CallRow& shown) { list_commands.Play(shown); },
               [this, bring_to_front](const CallRow& shown) {
                 bring_to_front();
                 list_commands.Show(shown);
               }}),
      ListView1(ports.DataBase1, log, views.list, notices),
      folders(ports.files, log, home),
      open_calls(ports.DataBase1, ports.files, ports.clock, ports.loop, log, home.Path("\\")),
      filing({ports.files, ports.clock, ports.loop, ports.Wave1, ports.DataBase1, log, log, open_calls,
              ListView1, folders, home, call,
              [this](const Call& interrupted) { return after_call.IsListed(interrupted); },
              // Posted: these mails go after those already in the outbox, once the start is over.
              [this] { ports_.loop.Post(lifeline_.Bind([this] { after_call.SendDueMails(); })); }}),
      player({ports.loop, folders, ports.WavePlay, ports.waveforms, views.player, log,
              [this] { return SelectionTaken(); }},
             ListView1, settings, [this](std::int32_t row) { calls.MarkAsReadUnRead(row, true); }),
      calls({ports.DataBase1, ports.files, folders, ports.background, ports.dialogs, player, log, filing},
            ListView1),
      move({ports.registry, ports.dialogs, log, ports.files, ports.background, filing, folders, settings}),
      sounds(ports.WavePlay, player, settings, log),
      library(ports.files, home),
      greetings(library, player, sounds, views.boxes, ports.files, status),
      list_commands({ListView1, calls, player, ports.dialogs, ports.mouse, views.list, settings,
                     [this] { return SelectionTaken(); }}),
      status(views.line),
      line_alarm(ports.loop, ports.notifications, bring_to_front),
      line({ports.loop, ports.Tapi1, ports.dialogs, log, status}, store, settings),
      steps(store, settings, ports.Tapi1),
      control({ports.Tapi1, ports.Wave1, log, settings, home, call, line, open_calls}),
      caller_view(ports.loop, views.caller_view,
                  {.answer =
                       [this] {
                         if (call.InProgress()) control.AnswerToCall(control.Line(), 0, true);
                       },
                   .drop =
                       [this] {
                         if (call.InProgress()) control.DropInComeCall();
                       },
                   .do_nothing =
                       [this] {
                         if (call.InProgress()) log.WriteSystem("DoNothing" + LineTag(control.Line()));
                       }}),
      actions({ports.loop, ports.Mail1, ports.shell, log, status, views.mail, folders, ports.translation},
              settings, [this] { line.ShowMonitoring(); }),
      microphone({ports.Wave1, log, home, [this] { return call.InProgress() && control.Connected(); }}),
      recorder({ports.clock, ports.loop, ports.files, folders, microphone}, control),
      remote(control, recorder, ListView1, folders, status),
      after_call({caller_view, sounds, tray, notices, actions}, filing, ListView1, log, settings, home,
                 [this] { return window_hidden; }),
      sequence(control, {recorder, remote, after_call, status, caller_view, ports.clock}),
      ports_(ports),
      views_(views) {
  ports_.Tapi1.SetEvents([this](const LineEvent& event) { sequence.Handle(event); });
  ports_.Wave1.SetEvents(&sequence);
  line.Listen([this](const LineHealth& health) {
    tray.ShowLine(health);
    line_alarm.Take(health);
    KeepAwake();
  });
  ListView1.SetSelectionListener([this] { player.ShowSelected(); });
}

GreetingCreator::Parts AnsweringMachine::ForGreetingCreator(std::function<void(const std::string&)> saved) {
  return {ports_.loop,
          ports_.clock,
          ports_.files,
          ports_.background,
          ports_.dialogs,
          ports_.WavePlay,
          player,
          ports_.take_waveforms,
          log,
          microphone,
          {ports_.loop, ports_.registry, ports_.shell, ports_.uDat},
          library,
          settings,
          home,
          [this, saved = std::move(saved)](const std::string& name) {
            quick_options.SetGreeting(name);
            greetings.Fill(name);
            if (saved) saved(name);
          }};
}

GreetingPlayer::Parts AnsweringMachine::ForGreetingPlayer(std::function<std::optional<std::string>()> add) {
  return {library,
          sounds,
          player,
          ports_.dialogs,
          std::move(add),
          [this] { greetings.Fill({}); },
          [this](const std::string& name) { quick_options.SetGreeting(name); }};
}

OptionsDialog::Parts AnsweringMachine::ForOptionsDialog() {
  return {ports_.loop,
          ports_.registry,
          log,
          ports_.dialogs,
          ports_.Tapi1,
          ports_.cards,
          store,
          settings,
          home,
          folders,
          line,
          move,
          [this] { return LineLevel(); },
          [this](const std::string& greeting) { greetings.Fill(greeting); },
          [this](const std::string& folder) { move.Begin(folder); },
          [this] { ShowOptions(); }};
}

ActionsDialog::Parts AnsweringMachine::ForActionsDialog() {
  return {store,        log,          ports_.dialogs,    ports_.shell,
          ports_.clock, ports_.Mail1, ports_.mail_tests, [this] { store.GetMainAction(); }};
}

SetupAssistant::Parts AnsweringMachine::ForSetupAssistant(TelephoneLines& lines,
                                                          std::function<bool()> use_changed,
                                                          std::function<void(CreatorTab)> make_greeting,
                                                          OwnCaller& caller) {
  return {ports_.loop,
          {lines, ports_.dialogs, log, store, settings, std::move(use_changed)},
          ForActionsDialog(),
          store,
          settings,
          steps,
          line,
          library,
          sounds,
          player,
          std::move(make_greeting),
          ForOwnCall(caller),
          [this] { KeepAwake(); }};
}

OwnCall::Parts AnsweringMachine::ForOwnCall(OwnCaller& caller) {
  return {ports_.loop,     ports_.background, caller, call,     line, ports_.Tapi1,
          ports_.WavePlay, ListView1,         player, settings, home};
}

CheckUp::Parts AnsweringMachine::ForCheckUp(TelephoneLines& lines, WaveformReader& reader) {
  return {ports_.loop,
          ports_.background,
          ports_.clock,
          ports_.files,
          lines,
          reader,
          ports_.cards,
          ports_.mail_tests,
          ports_.Mail1,
          store,
          ports_.DataBase1,
          line,
          folders,
          settings,
          home};
}

std::optional<std::int32_t> AnsweringMachine::LineLevel() const {
  const auto state = call.state;
  const bool heard =
      state == CallState::Greeting || state == CallState::Beep || state == CallState::Recording;
  if (!heard) return std::nullopt;
  return ports_.Wave1.InputLevel(std::chrono::milliseconds(0));
}

/// While the owner listens by telephone, the selection shows which message is playing.
bool AnsweringMachine::SelectionTaken() {
  if (!call.InProgress() || !call.remote_playback) return false;
  status.ShowStatus(Words("Messages are played to the telephone: the selection stays on them"));
  return true;
}

void AnsweringMachine::KeepAwake() {
  ports_.sleep.Hold(line.LineOn() && store.IsOn("KeepAwake"));
}

void AnsweringMachine::ShowOptions() {
  KeepAwake();
  views_.boxes.ShowRings(settings.NumOfRing);
  views_.boxes.ShowRecordMessage(settings.RecordMessage != 0);
  views_.frame.ShowQuickToolbar(settings.pQuickToolbar != 0);
  line.ShowLine();
}

AnsweringMachine::~AnsweringMachine() {
  ports_.Tapi1.SetEvents({});
  ports_.Wave1.SetEvents(nullptr);
}

}  // namespace orven
