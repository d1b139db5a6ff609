// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/desk/desk.h"

#include <filesystem>

#include "core/mdlReg.h"
#include "records/call.h"

namespace orven::test {
namespace {

const char* const kSettings = R"(Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\SOFTWARE\ORVEN]
"NumOfRing"="4"
"Greeting"="Holiday"
"RecordMessage"="1"
"MaxRec"="2"
"Modem"="-1"
"Sound"="0"
"WornDelete"="1"
"WornClear"="1"
"cLogSys"="1"
"cLogCalls"="1"
"pQuickToolbar"="1"
"MeTop"="600"
"MeLeft"="450"
"MeWidth"="10500"
"MeHeight"="7500"
)";

SharedOptions InFolder(const ScratchFolder& folder) {
  SharedOptions shared;
  shared.application_folder = folder / "";
  shared.application_folder.pop_back();
  for (const char* name : {"Greets", "Sound", "Log", "Messages"}) {
    std::filesystem::create_directories(folder / name);
  }
  return shared;
}

}  // namespace

Desk::Desk(const std::string& settings)
    : shared(InFolder(home)),
      registry(home / "registry.reg", [](const std::string& problem) { ADD_FAILURE() << problem; }),
      database({"Calls", {kCallFields.begin(), kCallFields.end()}, kRead}),
      WavePlay(loop, card, home / "Rescued") {
  PutFile(home / "registry.reg", kSettings + ("\"MassagesPath\"=\"" + home / "Messages/\"\n") + settings);
  for (const char* name : {"Default", "Holiday", "Office"}) {
    PutFile(home / ("Greets/" + std::string(name) + ".wav"), ToneOf(77, 500));
  }
  auto driver = std::make_unique<SimLine>("Home", loop);
  line = driver.get();
  std::vector<TelephoneDevice> devices;
  devices.push_back({std::move(driver)});
  Tapi1 = std::make_unique<LineService>(loop, std::move(devices));
  line_devices = std::make_unique<AllAudioDevices>(*Tapi1, card);
  Wave1 = std::make_unique<FileWaveControl>(loop, *line_devices, home / "Rescued");
  engine = std::make_unique<MainWindow>(
      EnginePorts{clock, loop, files, background, registry, dialogs, shell, mouse, Mail1, database, *Tapi1,
                  *Wave1, WavePlay, waveforms, take_waveforms, uDat, cards},
      window.Views(other_views.caller_view), shared, system, dialog_factory, [this] { ++ends; });
  window.Attach(*engine);
}

Desk::~Desk() = default;

void Desk::File(const std::vector<FiledCall>& calls) {
  SqliteDatabase records({"Calls", {kCallFields.begin(), kCallFields.end()}, kRead});
  records.Open(home / "Calls");
  int minute = records.RecordCount();
  for (const auto& call : calls) {
    const auto file = call.name + ".wav";
    if (call.message != 0) PutFile(home / ("Messages/" + file), ToneOf(call.message, 2000));
    records.AddNew();
    records.SetField(kCallName, call.name);
    records.SetField(kCallNumber, "555-01" + std::to_string(10 + minute % 90));
    records.SetField(kCallDate, "11/21/2026");
    records.SetField(kCallTime, "09:" + std::to_string(10 + minute++ % 50) + ":00");
    records.SetField(kCallMassageName, file);
    records.SetField(kType, call.message != 0 ? "2" : "-1");
    records.SetField(kRead, call.read ? 1 : 0);
    records.Update();
  }
}

Desk& Desk::Start() {
  engine->Show();
  // The beep that tells of the open line.
  card.StopPlay();
  WavePlay.StopPlay();
  EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
  return *this;
}

void Desk::Do(const char* command) {
  if (QString::fromLatin1(command).contains(u'.')) return Get<QToolButton>(command).click();
  Get<QAction>(command).trigger();
}

QPoint Desk::PointIn(int row) {
  auto& list = Get<QAbstractItemView>("ListView1");
  return list.visualRect(list.model()->index(row - 1, 1)).center();
}

void Desk::ClickRow(int row, Qt::MouseButton button) {
  auto& list = Get<QAbstractItemView>("ListView1");
  mouse.down = {button == Qt::LeftButton ? kLeftButton : kRightButton};
  QTest::mousePress(list.viewport(), button, {}, PointIn(row));
  mouse.down.clear();
  QTest::mouseRelease(list.viewport(), button, {}, PointIn(row));
}

void Desk::DoubleClickRow(int row) {
  ClickRow(row);
  auto* viewport = Get<QAbstractItemView>("ListView1").viewport();
  QTest::mouseDClick(viewport, Qt::LeftButton, {}, PointIn(row));
}

QString Desk::Cell(int row, int column) {
  auto& model = *Get<QAbstractItemView>("ListView1").model();
  return model.data(model.index(row - 1, column - 1)).toString();
}

int Desk::SelectedRow() {
  const auto rows = Get<QAbstractItemView>("ListView1").selectionModel()->selectedRows();
  return rows.isEmpty() ? 0 : rows.first().row() + 1;
}

bool Desk::IsRead(int row) {
  const auto icon = Machine().ListView1.Row(row).icon;
  return icon == kReadMessage || icon == kReadNoMessage;
}

std::string Desk::Setting(const std::string& name) {
  return GetRegValue(registry, RegistryRoot::LocalMachine, kSettingsKey, name);
}

bool Desk::Logged(const std::string& text) const {
  for (const auto& entry : std::filesystem::directory_iterator(home / "Log")) {
    if (ContentOf(entry.path().string()).find(text) != std::string::npos) return true;
  }
  return false;
}

}  // namespace orven::test
