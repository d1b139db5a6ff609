// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "adapters/audio/file_wave_control.h"
#include "adapters/audio/waveform_reader.h"
#include "adapters/channel/local_exchange.h"
#include "adapters/database/sqlite_database.h"
#include "adapters/desktop/autostart.h"
#include "adapters/desktop/colour_scheme.h"
#include "adapters/desktop/desktop_notifications.h"
#include "adapters/desktop/desktop_system.h"
#include "adapters/desktop/installation.h"
#include "adapters/desktop/instance_link.h"
#include "adapters/desktop/logind_sleep_guard.h"
#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_dialogs.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/desktop/qt_shell.h"
#include "adapters/files/background_thread.h"
#include "adapters/files/disk_files.h"
#include "adapters/line/own_caller/sip_own_caller.h"
#include "adapters/line/setup/file_telephone_lines.h"
#include "adapters/mail/smtp_mail.h"
#include "adapters/mail/smtp_tests.h"
#include "adapters/registry/installed_classes.h"
#include "adapters/registry/registry_file.h"
#include "adapters/sound/sound_cards.h"
#include "base/paths.h"
#include "core/mMain.h"
#include "notify/caller_notice.h"
#include "notify/frmMSG.h"
#include "programs/orven/check_up_ports.h"
#include "programs/orven/program_dialogs.h"
#include "shell/frmMain.h"
#include "shell/main_window.h"
#include "telephony/telephony_control.h"

namespace orven {

/// The composition root: all concrete objects of the running program, in the order of their dependencies.
/// Needs a QApplication; user-interface thread.
class Program {
 public:
  /// Absolute folders. The application folder exists.
  struct Folders {
    std::string application;
    std::string executable;
    Assets assets;
  };

  explicit Program(Folders folders);
  ~Program();

  /// Starts the answering machine. False when another instance runs in the application folder.
  bool Start(const std::string& command_line);

  /// Runs the exit command; then the event loop ends.
  void Exit() { window_.Exit(); }

  /// Of the process, once the program has ended: failure if the line was to be opened and never was.
  int ExitCode() const;

  /// Whether the program has ended, perhaps during its start.
  bool Ended() const { return window_.Ended(); }

 private:
  void PrepareFolder(bool first_start);
  bool IsNewFolder() const;
  FirstStart::Sources FirstStartSources();
  void TellOfLostSettings();
  void TellOfTrouble(const LineHealth& line);
  EnginePorts Ports();
  CallerViewWindow& CallerWindow();
  void AnswerOtherStarts();
  std::unique_ptr<CheckUpPorts> PortsForCheckUp();
  void CheckForOther(const InstanceLink::Answer& answer);
  std::string HelperPath() const;
  AutostartSource Autostart() const;
  void Report(const std::string& problem);
  std::function<void(const std::string&)> ReportFromAnyThread();
  std::vector<TelephoneDevice> MakeLines();
  std::string LinesPath() const;
  FileTelephoneLines::Use UseOf(std::int32_t line) const;
  bool LineInUse() const;
  bool LineHasSound() const;
  bool UseChangedLines();
  void WaitForLines();

  const ApplicationFolder home_;
  Folders folders_;
  std::vector<std::string> early_problems_;  ///< found before the application folder was claimed
  bool prepared_ = false;
  Lifeline lifeline_;

  DesktopSystem system_;
  QtEventLoop loop_;
  QtClock clock_;
  QtDialogs dialogs_;
  DiskFiles files_;
  BackgroundThread background_;
  RegistryFile registry_file_;
  AutostartRegistry autostart_;
  InstalledClasses registry_;
  SqliteDatabase database_;
  LineStates line_states_;
  TelephonyControl lines_;
  FileTelephoneLines configured_lines_;
  SipOwnCaller own_caller_;
  bool trouble_told_ = false;  ///< on standard error
  bool lines_wait_ = false;    ///< changed lines are opened after the current call
  SoundCards cards_;
  AllAudioDevices line_devices_;  ///< for call screening while a message plays
  AllAudioDevices desk_devices_;
  FileWaveControl line_wave_;
  FileWaveControl desk_wave_;
  FileWaveformReader waveforms_;
  FileWaveformReader take_waveforms_;
  LocalExchange uDat_;
  frmMain frame_;
  frmMSG caller_view_;
  QtShell shell_;
  QtMouse mouse_;
  DesktopNotifications notifications_;
  CallerNotice caller_notice_;  ///< on Wayland, instead of `caller_view_`
  ColourScheme colours_;
  LogindSleepGuard sleep_;
  SmtpMail mail_;
  SmtpTests mail_tests_;
  ProgramDialogs program_dialogs_;
  MainWindow window_;
  InstanceLink link_;
  std::list<CheckUpForOther> checks_;  ///< that are not answered yet
};

}  // namespace orven
