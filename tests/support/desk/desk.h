// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QTest>

#include "adapters/audio/file_wave_control.h"
#include "adapters/audio/waveform_reader.h"
#include "adapters/database/sqlite_database.h"
#include "adapters/desktop/qt_clock.h"
#include "adapters/desktop/qt_event_loop.h"
#include "adapters/files/disk_files.h"
#include "adapters/line/service/line_service.h"
#include "adapters/line/sim/sim_line.h"
#include "adapters/registry/registry_file.h"
#include "shell/frmMain.h"
#include "shell/main_window.h"
#include "support/desk/silent_card.h"
#include "support/recording_views.h"
#include "support/scratch_folder.h"

namespace orven::test {

/// A call for the list. `message` is the sample that its message consists of, 0 for no message.
struct FiledCall {
  std::string name;
  std::int16_t message = 0;
};

/// The main window on its engine as in the running program: settings, records and audio are files in
/// a folder of their own. The test plays the line, the sound card and the desktop's boxes, tray and mouse.
class Desk {
 public:
  explicit Desk(const std::string& settings = "");

  /// Files calls, the last one being the newest; before Start, or followed by makeList.
  void File(const std::vector<FiledCall>& calls);
  /// Starts the program and shows the window.
  void Start();

  /// The control of this name; there must be one.
  template <class Control>
  Control& Get(const char* name) {
    auto* control = window.findChild<Control*>(QString::fromLatin1(name));
    EXPECT_NE(control, nullptr) << name;
    if (control == nullptr) std::abort();
    return *control;
  }
  /// Chooses the menu item or presses the toolbar button ("Toolbar1.Save") of this name, when it is enabled.
  void Do(const char* command);

  /// Clicks on a row, 1-based; the mouse port sees the button down meanwhile.
  void ClickRow(int row, Qt::MouseButton button = Qt::LeftButton);
  /// A cell's text, 1-based.
  QString Cell(int row, int column);
  std::string Setting(const std::string& name);

  AnsweringMachine& Machine() { return engine->Machine(); }

  ScratchFolder home;
  SharedOptions shared;
  QtEventLoop loop;
  QtClock clock;
  DiskFiles files;
  PostedBackground background{loop};
  RegistryFile registry;
  SqliteDatabase database;
  SimLine* line = nullptr;
  std::unique_ptr<LineService> Tapi1;
  SilentCard card;
  std::unique_ptr<AllAudioDevices> line_devices;
  FileWaveControl WavePlay;
  std::unique_ptr<FileWaveControl> Wave1;
  FileWaveformReader waveforms{loop}, take_waveforms{loop};
  ScriptedExchange uDat;
  ScriptedCards cards;
  ScriptedDialogs dialogs;
  ScriptedShell shell;
  ScriptedMouse mouse;
  ScriptedMail Mail1;
  ScriptedSystem system;
  RecordingDialogFactory dialog_factory;
  RecordingViews other_views;
  frmMain window;
  int ends = 0;  ///< how often the program was ended
  std::unique_ptr<MainWindow> engine;
};

}  // namespace orven::test
