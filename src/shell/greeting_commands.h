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
                   QuickOptionBoxes& boxes, Files& files)
      : library_(library), player_(player), sounds_(sounds), boxes_(boxes), files_(files) {}

  /// Fills `cmbDefGreet` with the greetings' names, `selected` among them.
  void Fill(const std::string& selected);

  /// Plays the file that is named as the text in `cmbDefGreet`, exactly.
  void Play();

  /// Stops whatever the sound card plays.
  void Stop();

  /// Deletes the file that is named as the text in `cmbDefGreet`, exactly, without asking; then fills
  /// the box with whole file names.
  void Delete();

 private:
  const GreetingLibrary& library_;
  MessagePlayer& player_;
  EventSounds& sounds_;
  QuickOptionBoxes& boxes_;
  Files& files_;
};

}  // namespace orven
