// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "greetings/greeting_library.h"
#include "platform/files.h"
#include "records/call_store.h"
#include "shell/main_window_view.h"

namespace orven {

/// The greetings as the quick-option toolbar handles them. User-interface thread.
class GreetingCommands {
 public:
  GreetingCommands(const GreetingLibrary& library, MessagePlayer& player, EventSounds& sounds,
                   QuickOptionBoxes& boxes, Files& files, LineView& status)
      : library_(library), player_(player), sounds_(sounds), boxes_(boxes), files_(files), status_(status) {}

  /// Fills `cmbDefGreet` with the greetings' names, `selected` among them.
  void Fill(const std::string& selected);

  /// Plays the file that is named as the text in `cmbDefGreet`, exactly. A greeting's file has ".wav"
  /// besides: where there is no such file, the status bar says where greetings are played.
  void Play();

  /// Stops whatever the sound card plays.
  void Stop();

  /// Deletes the file that is named as the text in `cmbDefGreet`, exactly as Play plays it and without
  /// asking; then fills the box again.
  void Delete();

 private:
  void ShowNoFile();

  const GreetingLibrary& library_;
  MessagePlayer& player_;
  EventSounds& sounds_;
  QuickOptionBoxes& boxes_;
  Files& files_;
  LineView& status_;
};

}  // namespace orven
