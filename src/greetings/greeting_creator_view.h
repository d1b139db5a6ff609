// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/waveform.h"

namespace orven {

/// The tabs of the greeting creator, with the numbers that they have always had.
enum class CreatorTab { Speaker = 1, TextToSpeech = 2 };

/// Which controls of the greeting creator can be used now.
struct CreatorButtons {
  bool cmdRec = true;
  bool cmdStopRec = false;
  bool cmdPlay = false;
  bool cmdStopPlay = false;
  bool cmdCreateGreeting = true;
  bool cmdOK = true;
  bool operator==(const CreatorButtons&) const = default;
};

/// The greeting creator's window `frmGreetC`, as the engine sees it. Setting anything through this calls
/// nothing back.
class GreetingCreatorView {
 public:
  virtual ~GreetingCreatorView() = default;

  /// Selects the tab and shows its frame: `Frame1` or `Frame2`.
  virtual void SelectTab(CreatorTab tab) = 0;

  virtual void ShowButtons(const CreatorButtons& buttons) = 0;

  /// Shows or hides `lblRec`.
  virtual void ShowRecLabel(bool on) = 0;
  /// `ProgressBarRec`: seconds that have been recorded; there is no highest number.
  virtual void ShowRecProgress(std::int32_t seconds) = 0;
  /// Level of the microphone in thousandths of full scale (0 to 1000).
  virtual void ShowLevel(std::int32_t level) = 0;

  /// `ProgressBar1` and `lblPlay`: how far the take has been played; both 0 when nothing plays.
  virtual void ShowPlayProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) = 0;

  /// The take's picture; without peaks for none.
  virtual void ShowWaveform(const Waveform& waveform) = 0;

  /// One line about the take, for a person; may be empty.
  virtual void ShowState(const std::string& text) = 0;

  /// `VoiceCB`: adds the voices, and selects the first entry where there is one.
  virtual void AddVoices(const std::vector<std::string>& descriptions) = 0;
  /// 0-based; -1 for none.
  virtual std::int32_t SelectedVoice() const = 0;
  /// `RateSldr`: -10 (slow) to 10 (fast).
  virtual std::int32_t Rate() const = 0;

  /// `txtTTS`, with "\n" between lines.
  virtual std::string Text() const = 0;
  virtual void ClearText() = 0;

  /// `txtGreetingName`.
  virtual std::string GreetingName() const = 0;

  /// Closes the window.
  virtual void Close() = 0;
};

}  // namespace orven
