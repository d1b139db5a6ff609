// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/desk/desk.h"

#include <filesystem>

#include "core/mdlReg.h"
#include "records/call.h"

namespace orven::test {
namespace {

constexpr std::pair<const char*, const char*> kSettings[] = {
    {"NumOfRing", "4"}, {"Greeting", "Holiday"}, {"RecordMessage", "1"}, {"MaxRec", "2"},
    {"Modem", "-1"},    {"Sound", "0"},          {"WornDelete", "1"},    {"WornClear", "1"},
    {"cLogSys", "1"},   {"cLogCalls", "1"},      {"pQuickToolbar", "1"}, {"MeTop", "600"},
    {"MeLeft", "450"},  {"MeWidth", "10500"},    {"MeHeight", "7500"}};

}  // namespace

Desk::Desk(const std::string& settings, std::unique_ptr<LineDriver> driver)
    : registry(home / "registry.reg", [](const std::string& problem) { ADD_FAILURE() << problem; }),
      database({{"Calls", {kCallFields.begin(), kCallFields.end()}},
                kRead,
                {"OpenCalls", {kOpenCallFields.begin(), kOpenCallFields.end()}}}),
      WavePlay(loop, card, home / "Rescued") {
  for (const char* name : {"Greets", "Sound", "Log", "Messages"})
    std::filesystem::create_directories(home / name);
  std::string stored = "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVEN]\n";
  for (const auto& [name, value] : kSettings) stored += "\"" + std::string(name) + "\"=\"" + value + "\"\n";
  PutFile(home / "registry.reg", stored + "\"MassagesPath\"=\"" + home / "Messages/\"\n" + settings);
  for (const std::string name : {"Default", "Holiday", "Office"})
    PutWave(home / ("Greets/" + name + ".wav"), std::vector<std::int16_t>(4000, 77));
  if (driver == nullptr) driver.reset(line = new TestLine(loop));
  std::vector<TelephoneDevice> devices;
  devices.push_back({VoiceDevice("Home"), std::move(driver)});
  Tapi1 = std::make_unique<TelephonyControl>(loop, std::move(devices));
  line_devices = std::make_unique<AllAudioDevices>(*Tapi1, card);
  Wave1 = std::make_unique<FileWaveControl>(loop, *line_devices, home / "Rescued");
  engine = std::make_unique<MainWindow>(
      EnginePorts{clock,     loop,           files,      background, registry,      dialogs, shell,
                  mouse,     Mail1,          mail_tests, database,   *Tapi1,        *Wave1,  WavePlay,
                  waveforms, take_waveforms, uDat,       cards,      notifications, sleep,   &Words::English},
      window.Views(other_views.caller_view), folder, system, dialog_factory, [this] { ++ends; });
  window.Attach(*engine);
}

void Desk::File(const std::vector<FiledCall>& calls) {
  SqliteDatabase records({{"Calls", {kCallFields.begin(), kCallFields.end()}}, kRead});
  records.Open(home / "Calls");
  int minute = records.RecordCount();
  for (const auto& call : calls) {
    const auto file = call.name + ".wav";
    if (call.message != 0)
      PutWave(home / ("Messages/" + file), std::vector<std::int16_t>(2 * kSampleRate, call.message));
    const auto number = "555-01" + std::to_string(10 + minute % 90);
    const auto time = "09:" + std::to_string(10 + minute++ % 50) + ":00";
    records.Add({{kCallName, call.name},
                 {kCallNumber, number},
                 {kCallDate, "11/21/2026"},
                 {kCallTime, time},
                 {kCallMassageName, file},
                 {kType, call.message != 0 ? "2" : "-1"},
                 {kRead, "0"}});
  }
}

void Desk::Start() {
  engine->Show();
  // Stop the beep that signals the open line.
  card.StopPlay();
  WavePlay.StopPlay();
  EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
}

void Desk::Do(const char* command) {
  if (QString::fromLatin1(command).contains(u'.')) return Get<QToolButton>(command).click();
  Get<QAction>(command).trigger();
}

void Desk::ClickRow(int row, Qt::MouseButton button) {
  auto& list = Get<QAbstractItemView>("ListView1");
  const auto point = list.visualRect(list.model()->index(row - 1, 1)).center();
  mouse.down = {button == Qt::LeftButton ? kLeftButton : kRightButton};
  QTest::mousePress(list.viewport(), button, {}, point);
  mouse.down.clear();
  QTest::mouseRelease(list.viewport(), button, {}, point);
}

QString Desk::Cell(int row, int column) {
  auto& model = *Get<QAbstractItemView>("ListView1").model();
  return model.data(model.index(row - 1, column - 1)).toString();
}

std::string Desk::Setting(const std::string& name) {
  return GetRegValue(registry, RegistryRoot::LocalMachine, kSettingsKey, name);
}

}  // namespace orven::test
