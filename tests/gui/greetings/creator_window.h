// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cctype>
#include <sstream>

#include "base/runtime_error.h"
#include "greetings/frmGreetC.h"
#include "gui/window_test.h"

namespace orven::test {

/// The greeting creator's window over its engine, in a running program with a speech engine.
class CreatorWindow : public WindowTest {
 protected:
  CreatorWindow() {
    world.registry.Write(RegistryRoot::ClassesRoot, "SAPI.SpVoice", std::array{RegString("", "SpVoice")});
    world.Start().RunFor(1s);  // the beep of the open line is over
    Open();
  }
  /// Opens and loads a new window, with a new helper.
  void Open(bool helper_answers = true) {
    engine.reset();
    world.uDat = {};
    world.uDat.up = helper_answers;
    window = std::make_unique<frmGreetC>(nullptr);
    engine = std::make_unique<GreetingCreator>(
        world.Machine().ForGreetingCreator([this](const std::string& name) { saved.push_back(name); }),
        *window);
    window->Attach(*engine);
    Show(*window);
    QApplication::processEvents();
  }
  void ChooseTab(int tab) { Get<QTabWidget>("TabStrip1").setCurrentIndex(tab); }
  /// The enabled buttons, in the order of their use.
  std::string Buttons() {
    std::string enabled;
    for (const char* name :
         {"cmdRec", "cmdStopRec", "cmdPlay", "cmdStopPlay", "cmdCreateGreeting", "cmdOK"}) {
      if (Enabled(name)) enabled += std::string(enabled.empty() ? "" : " ") + name;
    }
    return enabled;
  }
  /// What was sent to the helper since the last call, separated by "|".
  std::string Sent() {
    std::string all;
    for (const auto& message : world.uDat.TakeSent()) all += (all.empty() ? "" : "|") + message;
    return all;
  }
  /// Clicks on buttons and lets time pass, in seconds or milliseconds: "cmdRec 2s cmdStopRec 1ms".
  void Do(const std::string& script) {
    std::istringstream words(script);
    for (std::string word; words >> word;) {
      if (std::isdigit(word[0]) == 0) Click(word);
      if (std::isdigit(word[0]) != 0) world.RunFor(std::stoi(word) * (word.ends_with("ms") ? 1ms : 1000ms));
    }
  }
  /// From now on the helper writes each file that it is asked for.
  void MakeFiles(std::chrono::milliseconds after) {
    world.uDat.on_message = [this, after](const std::string& message) {
      if (message.starts_with("STW:"))
        world.time.After(after, [this] { world.files.Put(speech_file, TimedWave::Sound(3s)); });
    };
  }
  std::string Saved(const std::string& name) const { return world.files.Content(greetings + name + ".wav"); }

  const std::string greetings = std::string(World::kHome) + "/Greets/";
  const std::string speaker_file = std::string(World::kHome) + "/spktmp.wav";
  const std::string speech_file = std::string(World::kHome) + "/ttstmp.wav";
  std::vector<std::string> saved;
  std::unique_ptr<frmGreetC> window;
  std::unique_ptr<GreetingCreator> engine;
};

}  // namespace orven::test
