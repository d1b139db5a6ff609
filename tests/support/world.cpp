// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/world.h"

#include <sstream>

#include "base/runtime_error.h"
#include "core/error_trap.h"
#include "records/call.h"

namespace orven::test {
namespace {

using std::chrono_literals::operator""h;
using std::chrono_literals::operator""min;

constexpr Clock::WallTime kBegin = std::chrono::sys_days(std::chrono::year(2003) / 12 / 31) + 14h + 5min + 7s;

/// The settings that differ from those of a first start, each as "Name=value;".
constexpr std::string_view kWorkingSettings =
    "MeTop=100; MeLeft=200; MeWidth=9000; MeHeight=6000; MassagesPath=/home/orven/Messages/; SecSilence=3; "
    "NumOfRing=2; MaxRec=1; Pass=4711; Greeting=Hello; PlayInRing=ring.wav; cOnlyIfGotMessage=0; "
    "PlayInIdle=idle.wav; cPlayInIdle=0; WhenMsgViewMsg=0; ViewDetails=0; AnimationFast=0; "
    "cCloseCallerView=0; CloseCallerView=10; LogFor=;";

}  // namespace

World::World(DatabaseControl* records)
    : time(kBegin),
      files(time),
      Wave1(time, files),
      WavePlay(time, files),
      records_(records == nullptr ? database : *records) {
  for (const auto group : {Group::Options, Group::Actions, Group::Events, Group::Log, Group::Window}) {
    for (const auto* row : RowsOf(group))
      if (row->first != nullptr) registry.Set(std::string(row->name), row->first);
  }
  std::istringstream settings{std::string(kWorkingSettings)};
  for (std::string name, value; std::getline(settings >> std::ws, name, '=');) {
    std::getline(settings, value, ';');
    registry.Set(name, value);
  }
  files.Put(std::string(kHome) + "/Greets/Hello.wav", TimedWave::Sound(2s));
  for (const char* sound : {"/beep.wav", "/Sound/ring.wav", "/Sound/idle.wav"}) {
    files.Put(kHome + std::string(sound), TimedWave::Sound(400ms));
  }
  Mail1.on_send = [this](const ScriptedMail::Mail&) { views.Effect("action:Mail"); };
  shell.before_start = [this] { views.Effect("action:App"); };
  WavePlay.on_play = [this](const std::string& path) { views.Effect("sound:" + path); };
  database.before_write = [this] {
    if (database_full) throw RuntimeError(ErrorNumber::DiskFull);
    disk.Write(database.opened_path);
  };
  registry.writable = [this] { return ErrorTrap::Silent()([this] { disk.Write("registry"); }); };
  Build();
}

void World::Build() {
  auto driver = std::make_unique<TestLine>(time);
  line = driver.get();
  std::vector<TelephoneDevice> devices;
  devices.push_back({device, std::move(driver), 120s});
  Tapi1 = std::make_unique<TelephonyControl>(
      time, std::move(devices),
      IdleCalls{[this] { return Wave1.IsPlaying() || Wave1.IsRecording(); },
                [this](const std::string& text) { Machine().log.WriteSystem(text); }});
  window = std::make_unique<MainWindow>(
      EnginePorts{time,      time,           files,      background, registry,      dialogs, shell,
                  mouse,     Mail1,          mail_tests, records_,   *Tapi1,        Wave1,   WavePlay,
                  waveforms, take_waveforms, uDat,       cards,      notifications, sleep,   &Words::English},
      views.All(), home, system, dialog_factory, [this] { ended = true; });
  views.list = &Machine().ListView1;
}

void World::Crash() {
  Wave1.Crash();
  WavePlay.StopPlay();
  views.caller_view.Unload();
  views.selection = 0;
  ended = false;
  window.reset();
  Tapi1.reset();
  Build();
}

std::vector<std::string> World::LogLines(const std::string& suffix) const {
  constexpr std::size_t kTime = 11;  // "14:05:07 : "
  std::vector<std::string> lines;
  const auto folder = std::string(kHome) + "/Log/";
  for (const auto& name : files.List(folder, "*" + suffix)) {
    std::istringstream content(files.Content(folder + name));
    for (std::string text; std::getline(content, text);) {
      lines.push_back(text.substr(kTime, text.size() - kTime - 1));  // without its '\r'
    }
  }
  return lines;
}

void World::CallAndWaitForAnswer() {
  line->Offer();
  for (int ring = 0; ring < 20 && !line->IsAnswered() && line->HasCall(); ++ring) {
    line->Ring();
    time.RunFor(1s);
  }
}

void World::CallAndWaitForRecording() {
  CallAndWaitForAnswer();
  time.RunUntil([this] { return Wave1.IsRecording(); }, 60s);
}

void World::Press(const std::string& digits) {
  for (const char digit : digits) {
    line->Press(digit);
    time.RunFor(1ms);
  }
}

void World::HangUp() {
  line->HangUp();
  time.RunFor(100ms);
}

void World::AddMessage(const std::string& name, std::chrono::milliseconds length) {
  files.Put(messages + name, TimedWave::Sound(length));
  database.Put({{kCallMassageName, name}, {kType, "1"}, {kRead, "0"}, {kCallName, "Anna"}});
}

}  // namespace orven::test
