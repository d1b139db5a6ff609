// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/operating_system.h"
#include "shell/main_window_view.h"

namespace orven::test {

/// Every view of the main window at once. It shows nothing and remembers everything.
class RecordingViews : public WholeMainWindow {
 public:
  // The line.
  std::vector<std::string> statuses;
  bool line_on = false;
  std::string Status() const { return statuses.empty() ? "" : statuses.back(); }
  void ShowStatus(const std::string& text) override { statuses.push_back(text); }
  void ShowLine(bool on) override { line_on = on; }

  // The boxes.
  std::vector<std::string> rings, greetings;
  std::string selected_greeting;
  std::int16_t shown_rings = -1;
  bool shown_record = false;
  void FillRings(const std::vector<std::string>& texts) override { rings = texts; }
  void ShowRings(std::int16_t count) override { shown_rings = count; }
  void FillGreetings(const std::vector<std::string>& names, const std::string& selected) override {
    greetings = names;
    selected_greeting = selected;
  }
  void ShowRecordMessage(bool on) override { shown_record = on; }

  // The window.
  WindowGeometry geometry{100, 200, 9000, 6000, 0};
  bool grid_lines = false, slider_enabled = true, shown = false, others_closed = false;
  std::uint32_t list_style = 0;
  std::map<Toolbar, std::uint32_t> toolbar_styles;
  WindowGeometry Geometry() const override { return geometry; }
  void Place(const WindowGeometry& place) override { geometry = place; }
  std::uint32_t ToolbarStyle(Toolbar toolbar) const override {
    return toolbar_styles.contains(toolbar) ? toolbar_styles.at(toolbar) : 0;
  }
  void SetToolbarStyle(Toolbar toolbar, std::uint32_t style) override { toolbar_styles[toolbar] = style; }
  bool GridLines() const override { return grid_lines; }
  void SetListStyle(std::uint32_t mask, std::uint32_t style) override {
    list_style = (list_style & ~mask) | (style & mask);
  }
  void SetSliderRange(std::int32_t /*first*/, std::int32_t /*last*/) override {}
  void EnableSlider(bool on) override { slider_enabled = on; }
  void Show() override { shown = true; }
  void Hide() override { shown = false; }
  void CloseOtherWindows() override {
    others_closed = true;
    view_open = false;
  }

  // The list.
  std::vector<CallColumn> columns;
  std::vector<CallRow> rows;
  std::vector<std::int32_t> selections;
  void ShowColumns(const std::vector<CallColumn>& shown_columns) override { columns = shown_columns; }
  void ShowRows(const std::vector<CallRow>& shown_rows_now) override { rows = shown_rows_now; }
  void ShowIcon(std::int32_t index, CallIcon icon) override {
    rows.at(static_cast<std::size_t>(index) - 1).icon = icon;
  }
  void ShowSelection(std::int32_t index) override { selections.push_back(index); }

  // The tray.
  bool blinking = false, nothing_shown = false;
  std::int32_t total = -1, new_calls = -1;
  void MakeSysTryBaloon(std::int32_t all, std::int32_t unread) override {
    total = all;
    new_calls = unread;
  }
  void StartBlinking() override { blinking = true; }
  void ShowNothing() override { nothing_shown = true; }

  // What a call sets off, in order: "view", "view:New Call", "sound:/…", "action:Mail".
  std::vector<std::string> effects;
  bool view_open = false;
  Call view_call;
  std::function<void(const std::string&)> on_effect = [](const std::string&) {};
  bool Had(const std::string& effect) const {
    return std::find(effects.begin(), effects.end(), effect) != effects.end();
  }
  bool IsOpen() const override { return view_open; }
  void ViewCallViewer(bool /*animate*/, std::int16_t /*speed*/, bool /*auto_close*/,
                      std::int16_t /*seconds*/) override {
    view_open = true;
    Effect("view");
  }
  void HideControl() override { Effect("view:no commands"); }
  void ShowMessage(const std::string& text) override { Effect("view:" + text); }
  void ShowCall(const Call& call) override { view_call = call; }
  void PlayWave(const std::string& path) override { Effect("sound:" + path); }
  void DoActions(const std::string& kind, Call& /*call*/) override { Effect("action:" + kind); }

  // The player.
  std::string held_file;
  bool playing = false;
  int stops = 0;
  bool IsPlaying() const override { return playing; }
  void Stop() override {
    playing = false;
    ++stops;
  }
  std::string HeldFile() const override { return held_file; }

 private:
  void Effect(const std::string& effect) {
    effects.push_back(effect);
    on_effect(effect);
  }
};

/// Answers every dialog from what a test has set, and remembers the texts.
class ScriptedDialogs : public Dialogs {
 public:
  std::vector<std::string> messages, informations;
  std::optional<std::string> save_as;
  std::string save_title, save_filter, save_name;
  void Message(const std::string& text) override { messages.push_back(text); }
  std::function<void()> while_open = [] {};
  void Information(const std::string& text) override {
    informations.push_back(text);
    while_open();
  }
  bool Confirm(const std::string& /*text*/) override { return false; }
  std::optional<std::string> SaveAs(const std::string& title, const std::string& filter,
                                    const std::string& name) override {
    save_title = title;
    save_filter = filter;
    save_name = name;
    return save_as;
  }
};

class ScriptedSystem : public OperatingSystem {
 public:
  SystemVersion version;
  bool instance_free = true;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> common_controls;
  SystemVersion Version() const override { return version; }
  bool InitCommonControls(std::uint32_t size, std::uint32_t classes) override {
    common_controls.emplace_back(size, classes);
    return false;
  }
  bool ClaimInstance() override { return instance_free; }
};

}  // namespace orven::test
