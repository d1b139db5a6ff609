// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "shell/main_window_view.h"

namespace orven {

/// The main window of a program that runs without windows: it shows nothing. What a window would do
/// to draw attention to a call (sounds, caller view, tray, actions) is written to the system log.
class WindowlessView : public WholeMainWindow {
 public:
  /// Where to write; nothing is written before. The log outlives the view's use.
  void SetLog(SystemLog* log) { log_ = log; }

  void ShowStatus(const std::string& /*text*/) override {}
  void ShowLine(bool /*on*/) override {}

  void FillRings(const std::vector<std::string>& /*texts*/) override {}
  void ShowRings(std::int16_t /*count*/) override {}
  void FillGreetings(const std::vector<std::string>& /*names*/, const std::string& /*selected*/) override {}
  void ShowRecordMessage(bool /*on*/) override {}

  /// No window has a normal state, so that no placement is saved over the stored one.
  WindowGeometry Geometry() const override;
  void Place(const WindowGeometry& /*geometry*/) override {}
  std::uint32_t ToolbarStyle(Toolbar /*toolbar*/) const override { return 0; }
  void SetToolbarStyle(Toolbar /*toolbar*/, std::uint32_t /*style*/) override {}
  bool GridLines() const override { return false; }
  void SetListStyle(std::uint32_t /*mask*/, std::uint32_t /*style*/) override {}
  void SetSliderRange(std::int32_t /*first*/, std::int32_t /*last*/) override {}
  void EnableSlider(bool /*on*/) override {}
  void Show() override {}
  void Hide() override {}
  void CloseOtherWindows() override { caller_view_open_ = false; }

  void ShowColumns(const std::vector<CallColumn>& /*columns*/) override {}
  void ShowRows(const std::vector<CallRow>& /*rows*/) override {}
  void ShowIcon(std::int32_t /*index*/, CallIcon /*icon*/) override {}
  void ShowSelection(std::int32_t /*index*/) override {}

  void MakeSysTryBaloon(std::int32_t /*total*/, std::int32_t /*new_calls*/) override {}
  void StartBlinking() override;
  void ShowNothing() override {}

  bool IsOpen() const override { return caller_view_open_; }
  void ViewCallViewer(bool animate, std::int16_t speed, bool auto_close, std::int16_t seconds) override;
  void HideControl() override {}
  void ShowMessage(const std::string& text) override;
  void ShowCall(const Call& /*call*/) override {}

  void PlayWave(const std::string& path) override;
  void DoActions(const std::string& kind, Call& call) override;

  bool IsPlaying() const override { return false; }
  void Stop() override {}
  std::string HeldFile() const override { return {}; }

 private:
  void Write(const std::string& text);

  SystemLog* log_ = nullptr;
  bool caller_view_open_ = false;
};

}  // namespace orven
