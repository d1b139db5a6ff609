// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include "base/runtime_error.h"
#include "greetings/greeting_creator.h"
#include "support/world.h"

namespace orven::test {

/// The creator's window, by what it was told and what a person has entered.
class RecordingCreatorView : public GreetingCreatorView {
 public:
  CreatorTab tab = CreatorTab::Speaker;
  CreatorButtons buttons;
  bool label = false, closed = false;
  std::int32_t seconds = -1, level = -1, voice = 0, rate = 0;
  std::chrono::milliseconds position{0};
  std::size_t peaks = 0;
  std::string state, text, name;
  std::vector<std::string> voices;

  void SelectTab(CreatorTab selected) override { tab = selected; }
  void ShowButtons(const CreatorButtons& enabled) override { buttons = enabled; }
  void ShowRecLabel(bool on) override { label = on; }
  void ShowRecProgress(std::int32_t recorded) override { seconds = recorded; }
  void ShowLevel(std::int32_t shown) override { level = shown; }
  void ShowPlayProgress(std::chrono::milliseconds at, std::chrono::milliseconds /*length*/) override {
    position = at;
  }
  void ShowWaveform(const Waveform& waveform) override { peaks = waveform.peaks.size(); }
  void ShowState(const std::string& line) override { state = line; }
  void AddVoices(const std::vector<std::string>& added) override {
    voices.insert(voices.end(), added.begin(), added.end());
  }
  std::int32_t SelectedVoice() const override { return voices.empty() ? -1 : voice; }
  std::int32_t Rate() const override { return rate; }
  std::string Text() const override { return text; }
  void ClearText() override { text.clear(); }
  std::string GreetingName() const override { return name; }
  void Close() override { closed = true; }
};

/// A creator that is about to open in a running program with a speech engine.
class Creator : public testing::Test {
 protected:
  Creator() {
    InstallEngine();
    world.Start().RunFor(1s);  // the beep of the open line is over
    Open();
  }

  void InstallEngine() {
    world.registry.Write(RegistryRoot::ClassesRoot, "SAPI.SpVoice", std::array{RegString("", "SpVoice")});
  }
  void Open() {
    creator.reset();  // one opening after the other
    creator = std::make_unique<GreetingCreator>(
        world.Machine().ForGreetingCreator([this](const std::string& name) { saved.push_back(name); }), view);
  }
  void Load() {
    creator->Load();
    world.uDat.TakeSent();
  }
  void RecordFor(std::chrono::milliseconds length) {
    creator->Record();
    world.RunFor(length);
    creator->StopRecord();
  }
  /// The helper writes what it is asked for.
  void MakeFiles(std::chrono::milliseconds after = 0ms) {
    world.uDat.on_message = [this, after](const std::string& message) {
      if (message.starts_with("STW:"))
        world.time.After(after, [this] { world.files.Put(speech_file, TimedWave::Sound(3s)); });
    };
  }
  std::string InGreets(const std::string& name) const {
    return std::string(World::kHome) + "/Greets/" + name;
  }

  const std::string speaker_file = std::string(World::kHome) + "/spktmp.wav";
  const std::string speech_file = std::string(World::kHome) + "/ttstmp.wav";
  World world;
  RecordingCreatorView view;
  std::vector<std::string> saved;
  std::unique_ptr<GreetingCreator> creator;
};

}  // namespace orven::test
