// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <QTest>
#include <QtWidgets>

#include "adapters/audio/file_wave_control.h"
#include "adapters/audio/waveform_reader.h"
#include "adapters/database/sqlite_database.h"
#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/files/disk_files.h"
#include "adapters/registry/registry_file.h"
#include "base/paths.h"
#include "shell/frmMain.h"
#include "shell/main_window.h"
#include "support/desk/test_device.h"
#include "support/recording_views.h"
#include "support/scratch_folder.h"
#include "support/test_line.h"
#include "telephony/telephony_control.h"

namespace orven::test {

/// A call for the list. Its message repeats the sample `message`; 0 means no message.
struct FiledCall {
  std::string name;
  std::int16_t message = 0;
};

/// The main window with its engine, as in the running program. Settings, records and audio are files in a
/// temporary folder. The line, the sound card, and the desktop's dialogs, tray and mouse are simulated.
class Desk : public ScriptedPorts {
 public:
  /// Without `driver` the line is `line`.
  explicit Desk(const std::string& settings = "", std::unique_ptr<LineDriver> driver = nullptr);

  /// Files calls, oldest first. Call it before Start, or call makeList afterwards.
  void File(const std::vector<FiledCall>& calls);
  /// Starts the program and shows the window.
  void Start();

  /// Returns the control with this name, which must exist.
  template <class Control>
  Control& Get(const char* name) {
    auto* control = window.findChild<Control*>(QString::fromLatin1(name));
    EXPECT_NE(control, nullptr) << name;
    if (control == nullptr) std::abort();
    return *control;
  }
  /// Triggers the menu item or the toolbar button ("Toolbar1.Save") of this name if it is enabled.
  void Do(const char* command);

  /// Clicks on a row (1-based). The mouse port reports the button as down while it is pressed.
  void ClickRow(int row, Qt::MouseButton button = Qt::LeftButton);
  /// Returns the text of a cell (1-based).
  QString Cell(int row, int column);
  std::string Setting(const std::string& name);

  AnsweringMachine& Machine() { return engine->Machine(); }

  ScratchFolder home;
  ApplicationFolder folder{home.Path()};
  QtEventLoop loop;
  QtClock clock;
  DiskFiles files;
  PostedBackground background{loop};
  RegistryFile registry;
  SqliteDatabase database;
  TestLine* line = nullptr;
  std::unique_ptr<TelephonyControl> Tapi1;
  SilentCard card;
  std::unique_ptr<AllAudioDevices> line_devices;
  FileWaveControl WavePlay;
  std::unique_ptr<FileWaveControl> Wave1;
  FileWaveformReader waveforms{loop}, take_waveforms{loop};
  RecordingViews other_views;
  frmMain window;
  int ends = 0;  ///< how often the program ended
  std::unique_ptr<MainWindow> engine;
};

}  // namespace orven::test
