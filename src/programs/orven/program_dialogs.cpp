// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/program_dialogs.h"

#include <curl/curlver.h>
#include <opus.h>
#include <pulse/version.h>
#include <samplerate.h>
#include <sndfile.h>
#include <sqlite3.h>

#include <QtGlobal>
#include <algorithm>
#include <memory>
#include <string>

#include "actions/actions_dialog.h"
#include "actions/frmActions.h"
#include "adapters/line/sip/libre.h"
#include "checkup/frmCheckUp.h"
#include "core/mMain.h"
#include "greetings/frmGreetC.h"
#include "log/frmLog.h"
#include "notify/events_dialog.h"
#include "notify/frmEvents.h"
#include "options/frmLines.h"
#include "options/frmOptions.h"
#include "options/lines_dialog.h"
#include "setup/frmSetup.h"
#include "shell/frmAbout.h"

namespace orven {
namespace {

/// The number in "libopus 1.3.1", "libsndfile-1.2.0" and "libsamplerate-0.2.2 (c) …".
std::string NumberIn(const std::string& text) {
  const auto begin = std::min(text.find_first_of("0123456789"), text.size());
  return text.substr(begin, text.find(' ', begin) - begin);
}

/// The libraries of this program, with the versions that are loaded, if a library tells its version.
std::vector<Component> ProgramComponents() {
  return {
      {"Qt", qVersion(), "LGPL-3.0-only", Words("windows")},
      {"libre", sys_libre_version_get(), "BSD-3-Clause", Words("the telephone line (SIP)")},
      {"OpenSSL", ORVEN_OPENSSL_VERSION, "Apache-2.0", Words("encrypted calls and mail")},
      {"spandsp", ORVEN_SPANDSP_VERSION, "LGPL-2.1-only", Words("touch tones, G.711 and G.722")},
      {"Opus", NumberIn(opus_get_version_string()), "BSD-3-Clause", Words("calls in Opus")},
      {"libsndfile", NumberIn(sf_version_string()), "LGPL-2.1-or-later", Words("sound files")},
      {"libsamplerate", NumberIn(src_get_version()), "BSD-2-Clause", Words("sample rate conversion")},
      {"SQLite", sqlite3_libversion(), "public domain", Words("the records of calls")},
      {"libcurl", LIBCURL_VERSION, "curl", Words("mail")},
      {"PulseAudio client", pa_get_library_version(), "LGPL-2.1-or-later", Words("sound cards")},
      {"eSpeak NG", ORVEN_ESPEAK_VERSION, "GPL-3.0-or-later", Words("typed greetings (helper TTS)")},
      {"GLib", ORVEN_GLIB_VERSION, "LGPL-2.1-or-later", Words("the start at login")},
      {"Breeze icons", "", "LGPL-3.0-or-later", Words("pictures of the commands")},
  };
}

}  // namespace

void ProgramDialogs::Attach(AnsweringMachine& machine, QWidget& window) {
  machine_ = &machine;
  window_ = &window;
}

void ProgramDialogs::Open(Dialog dialog, int tab) {
  if (dialog == Dialog::frmEvents) OpenEvents(tab);
  if (dialog == Dialog::frmActions) OpenActions(tab);
  if (dialog == Dialog::frmGreetC) OpenGreetingCreator();
  if (dialog == Dialog::frmLog) OpenLog();
  if (dialog == Dialog::frmOptions) OpenOptions(tab);
  if (dialog == Dialog::frmCheckUp) OpenCheckUp();
  if (dialog == Dialog::frmSetup) OpenSetup(tab);
  if (dialog == Dialog::frmAbout) frmAbout(kApplicationVersion, ProgramComponents(), window_).exec();
}

void ProgramDialogs::OpenEvents(int tab) {
  auto& machine = *machine_;
  EventsDialog engine({machine.settings, machine.store, machine.home, ports_.files, machine.sounds,
                       machine.player, ports_.dialogs, machine.caller_view});
  frmEvents(engine, tab, window_).exec();
}

void ProgramDialogs::AttachLines(TelephoneLines& lines, std::function<bool()> use_changed) {
  lines_ = &lines;
  use_changed_lines_ = std::move(use_changed);
}

std::string ProgramDialogs::OpenLines(QWidget* parent) {
  auto& machine = *machine_;
  LinesDialog engine(
      {*lines_, ports_.dialogs, machine.log, machine.store, machine.settings, use_changed_lines_});
  frmLines(engine, parent).exec();
  return engine.Added();
}

void ProgramDialogs::AttachCheckUp(OwnCaller& caller, std::function<std::unique_ptr<CheckUpPorts>()> ports) {
  own_caller_ = &caller;
  check_up_ports_ = std::move(ports);
}

void ProgramDialogs::OpenCheckUp() {
  look_for_cards_();
  const auto ports = check_up_ports_();
  frmCheckUp(machine_->ForCheckUp(ports->lines, ports->reader), machine_->ForOwnCall(*own_caller_), window_)
      .exec();
}

void ProgramDialogs::OpenSetup(int page) {
  frmSetup window(window_);
  SetupAssistant engine(
      machine_->ForSetupAssistant(
          *lines_, use_changed_lines_, [&](CreatorTab tab) { MakeGreeting(&window, tab); }, *own_caller_),
      window);
  window.Attach(engine);
  engine.Open(static_cast<SetupPage>(page));
  window.exec();
}

void ProgramDialogs::OpenGreetingCreator() {
  MakeGreeting(window_);
}

std::optional<std::string> ProgramDialogs::MakeGreeting(QWidget* parent, CreatorTab first) {
  look_for_cards_();  // a microphone may have been plugged in
  // A greeting may be saved shortly after its window was closed.
  const auto saved = std::make_shared<std::optional<std::string>>();
  frmGreetC window(parent);
  GreetingCreator engine(machine_->ForGreetingCreator([saved](const std::string& name) { *saved = name; }),
                         window);
  window.Attach(engine, first);
  window.exec();
  return *saved;
}

void ProgramDialogs::OpenOptions(int tab) {
  QWidget* parent = window_;
  OptionsDialog engine(machine_->ForOptionsDialog());
  GreetingPlayer greetings(machine_->ForGreetingPlayer([&] { return MakeGreeting(parent); }));
  std::function<std::string()> open_lines;
  if (lines_ != nullptr) open_lines = [&] { return OpenLines(parent); };
  frmOptions window({engine, greetings, open_lines}, tab, window_);
  parent = &window;
  window.exec();
}

void ProgramDialogs::OpenLog() {
  auto& machine = *machine_;
  frmLog(
      {machine.log, ports_.files, ports_.background, machine.store, machine.settings, ports_.dialogs,
       [&machine](const std::string& path) { machine.calls.SaveFile(path); }},
      [&machine](LogViewer& viewer, QWidget& parent) {
        LogProperties engine(machine.settings, machine.store, machine.log, viewer.Refresher());
        frmLogProp(engine, &parent).exec();
      },
      window_)
      .exec();
}

void ProgramDialogs::OpenActions(int tab) {
  ActionsDialog engine(machine_->ForActionsDialog());
  frmActions window(engine, tab, window_);
  ports_.Mail1.Acknowledge();  // the window shows it, but not what fails from now on
  window.exec();
}

}  // namespace orven
