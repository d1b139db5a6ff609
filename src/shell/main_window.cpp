// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/main_window.h"

#include "core/error_trap.h"
#include "core/mdlWinVersion.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

// Extended styles of a list view: LVS_EX_FULLROWSELECT and LVS_EX_GRIDLINES.
constexpr std::uint32_t kRowSelectAndGrid = 0x21;

// Toolbar style TBSTYLE_FLAT.
constexpr std::uint32_t kFlat = 0x800;

constexpr auto kClockInterval = 1s;

/// A desktop or panel that is starting shows its notification area within twice this time.
constexpr auto kTrayPatience = 10s;

/// The setting that the first close of the window leaves.
constexpr const char* kClosedBefore = "ClosedBefore";

}  // namespace

MainWindow::MainWindow(EnginePorts ports, MainWindowViews views, const ApplicationFolder& home,
                       const OperatingSystem& system, DialogFactory& dialogs,
                       std::function<void()> end_process)
    : ports_(ports),
      views_(views),
      system_(system),
      end_process_(std::move(end_process)),
      machine_(ports, views, home, [this] { BringToFront(); }),
      commands_({machine_.list_commands, machine_.player, machine_.greetings, dialogs, ports.dialogs,
                 ports.shell, home, machine_.log, [this](bool on) { on ? TurnOn() : TurnOff(); }}),
      TimerPannel(ports.loop.MakeTimer([this] { ShowClock(); })),
      TrayWatch_(ports.loop.MakeTimer([this] { WatchTray(); })) {}

void MainWindow::LoadHidden() {
  if (ended_) return;
  machine_.window_hidden = true;
  Load();
  StartUp();
  TrayWatch_->Start(kTrayPatience);
}

void MainWindow::Show() {
  if (ended_) return;
  Load();
  StartUp();
  // While a message box of the start-up is open, an exit command may arrive.
  if (!ended_) views_.frame.Show();
}

void MainWindow::Load() {
  loaded_ = true;
  machine_.line.ShowMonitoring();
  ReadSettings();
  views_.frame.ShowQuickToolbar(machine_.settings.pQuickToolbar != 0);
  views_.frame.SetGridLines(machine_.store.GetGridLines());
  ShowListStyle();
  machine_.ListView1.RangeListTitle();
  views_.boxes.ShowRings(machine_.settings.NumOfRing);
  const ErrorTrap trap(machine_.log, "ErrorLoadFormMain->");
  trap([&] { machine_.greetings.Fill(machine_.settings.Greeting); });
  views_.boxes.ShowRecordMessage(machine_.settings.RecordMessage != 0);
  ports_.Wave1.SetRecordToDisk(true);
  machine_.log.WriteSystem("Load ORVEN");
  machine_.log.WriteCalls("Load ORVEN");
  machine_.log.WriteSystem("LineInitialize->" + ports_.Tapi1.ErrorText(ports_.Tapi1.LineInitialize()));
}

void MainWindow::ReadSettings() {
  auto& store = machine_.store;
  store.GetMainOptions();
  store.GetMainAction();
  store.GetMainEvents();
  store.GetView(views_.frame);
  store.GetAppOptions([&machine = machine_] {
    machine.folders.Serve(machine.settings.MassagesPath, !machine.move.Interrupted().empty());
  });
}

void MainWindow::ShowListStyle() {
  views_.frame.SetListStyle(kRowSelectAndGrid, views_.frame.GridLines() ? kRowSelectAndGrid : 0);
}

void MainWindow::ChangeGridLines() {
  ShowListStyle();
  machine_.store.SetGridLines(views_.frame.GridLines());
}

void MainWindow::SightChanged(bool seen) {
  if (!seen) return TimerPannel->Stop();
  if (TimerPannel->Enabled()) return;
  ShowClock();
  TimerPannel->Start(kClockInterval);
}

void MainWindow::ShowClock() {
  const auto now = ports_.clock.Now();
  views_.frame.ShowClock(ports_.clock.TimeText(now), ports_.clock.DateText(now));
}

void MainWindow::StartUp() {
  const ErrorTrap trap(machine_.log, "ErrorInitializeFormMain->");
  SetToolbarStyles();
  machine_.ListView1.Clear();
  trap([&] { OpenRecords(); });
  machine_.filing.Start();
  machine_.ListView1.makeList();
  trap([&] { machine_.move.GoOn(); });
  if (machine_.line.SelectModemDevice()) {
    machine_.line.OpenLine(machine_.settings.Modem);
    machine_.sounds.PlayWave(machine_.home.Path("\\beep.wav"));
  }
  views_.player.EnableSlider(false);
  views_.frame.ShowSetupOffers(machine_.steps.Offers());
  const auto& note = machine_.folders.Note();
  if (!note.Empty()) machine_.status.ShowStatus(note);
}

void MainWindow::OpenRecords() {
  const auto note = ports_.DataBase1.Open(machine_.home.Path("\\Calls"));
  if (note.empty()) return;
  machine_.log.WriteSystem(note);
  TellOfLoss(note);
}

void MainWindow::TellOfLoss(const Words& text) {
  ports_.loop.Post(lifeline_.Bind([this, text] {
    if (ended_) return;
    machine_.ListView1.makeList();
    ports_.dialogs.Information(text);
  }));
}

void MainWindow::SetToolbarStyles() {
  using enum WindowFrame::Toolbar;
  auto& frame = views_.frame;
  if (!IsOldWindows(GetWindowsVersionName(system_.Version()))) {
    const auto style = frame.ToolbarStyle(Toolbar1);
    if ((style & kFlat) == 0) frame.SetToolbarStyle(Toolbar1, style | kFlat);
  }
  for (const auto toolbar : {ToolBarPlayer, TBQuickOption}) {
    frame.SetToolbarStyle(toolbar, frame.ToolbarStyle(toolbar) & ~kFlat);
  }
}

bool MainWindow::Unload() {
  const ErrorTrap trap(machine_.log, "ErrForm_Unload ");
  if (!exiting_) {
    machine_.window_hidden = true;
    machine_.store.SetView(views_.frame, machine_.window_hidden);
    trap([&] { PutAway(); });
    trap([&] { TellThatItGoesOn(); });
    return false;
  }
  trap([&] { CloseOtherWindows(); });
  trap([&] { StopSounds(); });
  machine_.line.CloseLine(machine_.settings.Modem);
  // A call that ended with the line has opened the caller view and played a sound again.
  trap([&] { CloseOtherWindows(); });
  trap([&] { StopSounds(); });
  machine_.filing.FileWaitingCalls();
  machine_.log.WriteSystem("Unload ORVEN");
  machine_.log.WriteCalls("Unload ORVEN");
  machine_.store.SetView(views_.frame, machine_.window_hidden);
  machine_.tray.ShowNothing();
  return true;
}

void MainWindow::CloseOtherWindows() {
  machine_.caller_view.Unload();
  views_.frame.CloseOtherWindows();
}

void MainWindow::StopSounds() {
  // A message that is being recorded at exit is kept.
  if (machine_.recorder.Recording()) machine_.recorder.StopRecMessage();
  if (machine_.microphone.Recording()) machine_.microphone.Stop();
  if (ports_.Wave1.IsPlaying()) ports_.Wave1.StopPlay();
  machine_.player.Stop();
}

void MainWindow::Exit() {
  if (ended_) return;
  exiting_ = true;
  // A second instance has loaded nothing: everything belongs to the first.
  if (loaded_ && !Unload()) return;
  ended_ = true;
  end_process_();
}

void MainWindow::TurnOn() {
  machine_.line.OpenLine(machine_.settings.Modem);
  // The button shows the actual state, even if no line could be opened.
  machine_.line.ShowLine();
  if (machine_.settings.Modem < 0) machine_.line.TellToSelectDevice();
}

void MainWindow::TurnOff() {
  machine_.line.CloseLine(machine_.settings.Modem);
}

void MainWindow::Hide() {
  machine_.window_hidden = true;
  views_.frame.Minimise();
  PutAway();
}

/// Hides the window when an icon can bring it back; otherwise only minimises it.
void MainWindow::PutAway() {
  tray_missed_ = false;
  if (ports_.shell.HasNotificationArea()) {
    views_.frame.Hide();
    TrayWatch_->Start(kTrayPatience);
    return;
  }
  TrayWatch_->Stop();
  views_.frame.Minimise();
  machine_.log.WriteSystem("No notification area: the window is minimised, not hidden");
}

/// Once, at the first close: who closes a window may think that the program has ended.
void MainWindow::TellThatItGoesOn() {
  if (machine_.store.Value(kClosedBefore) == "1") return;
  machine_.store.Set(kClosedBefore, "1");
  const auto hidden = Words(
      "ORVEN goes on answering calls. Its icon in the notification area opens this window again. To end it, "
      "choose Exit in the menu of the icon, or File, Exit in the window.");
  const auto minimised = Words(
      "ORVEN goes on answering calls: its window is only minimised, because this desktop has no notification "
      "area. To end it, choose File, Exit in the window.");
  const auto& text = ports_.shell.HasNotificationArea() ? hidden : minimised;
  ports_.loop.Post(lifeline_.Bind([this, text] {
    if (!ended_) ports_.dialogs.Information(text);
  }));
}

/// Minimises a hidden window whose icon has disappeared, because nothing else could bring it back.
void MainWindow::WatchTray() {
  if (!machine_.window_hidden || ended_) return TrayWatch_->Stop();
  const bool there = ports_.shell.HasNotificationArea();
  // The panel that holds it may be restarting.
  if (!there && tray_missed_) PutAway();
  tray_missed_ = !there;
}

void MainWindow::Open() {
  machine_.window_hidden = false;
  views_.frame.Restore();
}

void MainWindow::TrayMouseMove(double x, double twips_per_pixel) {
  machine_.tray.MouseMove(
      x, twips_per_pixel, [this] { BringToFront(); }, [this] { views_.frame.PopUpTrayMenu(); });
}

void MainWindow::BringToFront() {
  if (!loaded_ || ended_) return;
  views_.frame.Restore();
  CameBack();
}

void MainWindow::CameBack() {
  machine_.window_hidden = false;
  machine_.tray.StopBlinking();
  machine_.tray.MakeSysTryBaloon(machine_.ListView1.Count(), machine_.ListView1.NewCalls());
}

void MainWindow::ActivationChanged() {
  auto& list = machine_.ListView1;
  if (!loaded_ || ended_ || list.Count() > 0) return;
  if (machine_.filing.RecordsAreOpen()) list.FollowRecords();
  views_.frame.ShowSetupOffers(machine_.steps.Offers());
}

}  // namespace orven
