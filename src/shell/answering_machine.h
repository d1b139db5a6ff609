// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "actions/actions_dialog.h"
#include "actions/actions_engine.h"
#include "base/paths.h"
#include "checkup/check_up.h"
#include "checkup/own_call.h"
#include "core/settings_store.h"
#include "greetings/greeting_creator.h"
#include "greetings/greeting_library.h"
#include "greetings/microphone_take.h"
#include "log/mdlLog.h"
#include "notify/call_notices.h"
#include "notify/caller_view.h"
#include "notify/events_dialog.h"
#include "notify/line_alarm.h"
#include "notify/tray_icon.h"
#include "options/options_dialog.h"
#include "platform/audio_device.h"
#include "platform/clock.h"
#include "platform/data_exchange.h"
#include "platform/database.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/notifications.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/sleep_guard.h"
#include "platform/telephony.h"
#include "platform/wave.h"
#include "records/call_filing.h"
#include "records/call_list.h"
#include "records/call_store.h"
#include "records/list_commands.h"
#include "records/local_player.h"
#include "records/message_files.h"
#include "records/message_move.h"
#include "records/open_calls.h"
#include "setup/setup_assistant.h"
#include "setup/setup_steps.h"
#include "shell/main_commands.h"
#include "shell/main_window_view.h"
#include "telephony/call_sequence.h"

namespace orven {

/// Every port that the engine needs.
struct EnginePorts {
  Clock& clock;
  EventLoop& loop;
  Files& files;
  Background& background;
  Registry& registry;
  Dialogs& dialogs;
  Shell& shell;
  Mouse& mouse;
  MailControl& Mail1;
  MailTests& mail_tests;
  DatabaseControl& DataBase1;
  TelephonyControl& Tapi1;
  WaveControl& Wave1;     ///< the line
  WaveControl& WavePlay;  ///< the sound card
  WaveformReader& waveforms;
  WaveformReader& take_waveforms;  ///< the greeting creator's
  DataExchange& uDat;              ///< the speech helper
  SoundCardNames& cards;
  Notifications& notifications;
  SleepGuard& sleep;
  Translation translation;  ///< for what leaves the program as text: mails
};

/// The composed engine: all run-time state of the main window and the classes that work on it, in the
/// order of their dependencies. Ports and views must outlive it. User-interface thread.
class AnsweringMachine {
 public:
  /// `bring_to_front` shows the main window.
  AnsweringMachine(EnginePorts ports, MainWindowViews views, const ApplicationFolder& home,
                   std::function<void()> bring_to_front);
  ~AnsweringMachine();

  AnsweringMachine(const AnsweringMachine&) = delete;
  AnsweringMachine& operator=(const AnsweringMachine&) = delete;

  const ApplicationFolder& home;
  Settings settings;
  bool window_hidden = false;  ///< the main window is hidden in the tray
  Call call;

  LogFiles log;
  SettingsStore store;
  QuickOptions quick_options;
  TrayIcon tray;
  CallNotices notices;
  CallList ListView1;
  MessageFolders folders;
  OpenCalls open_calls;
  CallFiling filing;
  LocalPlayer player;
  CallStore calls;
  MessageMove move;
  DeskSounds sounds;
  GreetingLibrary library;
  GreetingCommands greetings;
  ListCommands list_commands;
  StatusPanel status;
  LineAlarm line_alarm;
  LineManager line;
  SetupSteps steps;
  CallControl control;
  CallerView caller_view;
  ActionsEngine actions;
  MicrophoneTake microphone;
  Recorder recorder;
  RemoteAccess remote;
  AfterCall after_call;
  CallSequence sequence;

  /// The parts of a greeting creator. `saved` is called with the name of the saved greeting, after it has
  /// become the default.
  GreetingCreator::Parts ForGreetingCreator(std::function<void(const std::string& name)> saved);

  /// The parts of the options dialog's greeting toolbar; `add` opens a greeting creator.
  GreetingPlayer::Parts ForGreetingPlayer(std::function<std::optional<std::string>()> add);

  /// Keeps the computer awake while the line is on, if the setting `KeepAwake` says so. To be called when
  /// that was changed.
  void KeepAwake();

  /// The parts of the options dialog.
  OptionsDialog::Parts ForOptionsDialog();

  /// The parts of the actions dialog.
  ActionsDialog::Parts ForActionsDialog();

  /// The parts of the set-up assistant; `use_changed` opens changed lines (LinesDialog), `make_greeting`
  /// opens the greeting creator until it is closed.
  SetupAssistant::Parts ForSetupAssistant(TelephoneLines& lines, std::function<bool()> use_changed,
                                          std::function<void(CreatorTab)> make_greeting, OwnCaller& caller);

  /// The parts of a call that the machine makes to itself.
  OwnCall::Parts ForOwnCall(OwnCaller& caller);

  /// The parts of a check-up with its own `lines` and `reader`.
  CheckUp::Parts ForCheckUp(TelephoneLines& lines, WaveformReader& reader);

 private:
  std::optional<std::int32_t> LineLevel() const;
  bool SelectionTaken();
  void ShowOptions();

  EnginePorts ports_;
  MainWindowViews views_;
  Lifeline lifeline_;
};

}  // namespace orven
