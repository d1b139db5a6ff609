// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "core/settings.h"
#include "platform/files.h"
#include "records/call_store.h"
#include "shell/main_window_view.h"

namespace orven {

/// The greetings as the quick-option toolbar handles them. User-interface thread.
class GreetingCommands {
 public:
  GreetingCommands(Files& files, MessagePlayer& player, EventSounds& sounds, QuickOptionBoxes& boxes,
                   const SharedOptions& shared)
      : files_(files), player_(player), sounds_(sounds), boxes_(boxes), shared_(shared) {}

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
  std::vector<std::string> FileNames() const;
  std::string Folder() const;

  Files& files_;
  MessagePlayer& player_;
  EventSounds& sounds_;
  QuickOptionBoxes& boxes_;
  const SharedOptions& shared_;
};

}  // namespace orven
