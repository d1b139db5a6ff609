// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "core/settings_store.h"
#include "log/log_files.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "platform/telephony.h"
#include "platform/wave.h"
#include "records/call_list.h"
#include "records/call_store.h"
#include "shell/main_window_view.h"
#include "shell/quick_options.h"
#include "telephony/call_sequence.h"

namespace orven {

/// Every port that the engine needs.
struct EnginePorts {
  Clock& clock;
  EventLoop& loop;
  Files& files;
  Registry& registry;
  Dialogs& dialogs;
  DatabaseControl& DataBase1;
  TelephonyControl& Tapi1;
  WaveControl& Wave1;     ///< the line
  WaveControl& WavePlay;  ///< the sound card
};

/// The engine, composed: all run-time state of the main window and the classes that work on it, in
/// the order in which they need each other. It must outlive no port or view. User-interface thread.
class AnsweringMachine {
 public:
  AnsweringMachine(EnginePorts ports, MainWindowViews views, SharedOptions& shared);
  ~AnsweringMachine();

  AnsweringMachine(const AnsweringMachine&) = delete;
  AnsweringMachine& operator=(const AnsweringMachine&) = delete;

  SharedOptions& shared;
  Settings settings;
  bool window_hidden = false;  ///< the main window is hidden in the tray
  Call call;
  CallProgress progress;

  LogFiles log;
  SettingsStore store;
  QuickOptions quick_options;
  CallList ListView1;
  CallStore calls;
  LineManager line;
  CallContext context;
  CallControl control;
  Recorder recorder;
  RemoteAccess remote;
  Greeter greeter;
  AfterCall after_call;
  CallSequence sequence;

 private:
  EnginePorts ports_;
};

}  // namespace orven
