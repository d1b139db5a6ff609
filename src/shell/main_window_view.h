// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/settings_store.h"
#include "records/call_list.h"
#include "records/call_store.h"
#include "telephony/call_effects.h"

namespace orven {

/// The boxes of the quick-option toolbar. Filling or selecting through these is not a person's
/// choice and calls nothing back.
class QuickOptionBoxes {
 public:
  virtual ~QuickOptionBoxes() = default;
  /// Fills `cmbRings`.
  virtual void FillRings(const std::vector<std::string>& texts) = 0;
  virtual void ShowRings(std::int16_t count) = 0;
  /// Fills `cmbDefGreet` with greeting names and selects `selected` when it is among them.
  virtual void FillGreetings(const std::vector<std::string>& names, const std::string& selected) = 0;
  /// Checks or clears `chkRecMessage`.
  virtual void ShowRecordMessage(bool on) = 0;
};

/// The window itself: what start-up and exit do to it.
class WindowFrame : public PlacedWindow {
 public:
  enum class Toolbar { Toolbar1, ToolBarPlayer, TBQuickOption };

  /// Style bits of a toolbar's child window.
  virtual std::uint32_t ToolbarStyle(Toolbar toolbar) const = 0;
  virtual void SetToolbarStyle(Toolbar toolbar, std::uint32_t style) = 0;

  /// `Check1`: the list shows grid lines.
  virtual bool GridLines() const = 0;
  /// Sets those extended style bits of the call list that are in `mask` to the ones in `style`.
  virtual void SetListStyle(std::uint32_t mask, std::uint32_t style) = 0;

  virtual void SetSliderRange(std::int32_t first, std::int32_t last) = 0;
  virtual void EnableSlider(bool on) = 0;

  virtual void Show() = 0;
  virtual void Hide() = 0;

  /// Closes the caller view and the log viewer if they are loaded.
  virtual void CloseOtherWindows() = 0;
};

/// The tray icon as the main window knows it.
class TrayIcon : public CallCountsView, public TrayBlinker {
 public:
  /// Shows the empty picture: the program is ending.
  virtual void ShowNothing() = 0;
};

/// All of the main window that the engine talks to.
struct MainWindowViews {
  LineView& line;
  QuickOptionBoxes& boxes;
  WindowFrame& frame;
  CallListView& list;
  TrayIcon& tray;
  CallerView& caller_view;
  EventSounds& sounds;
  CallActions& actions;
  MessagePlayer& player;
};

/// A main window that is all of its views in one object.
class WholeMainWindow : public LineView,
                        public QuickOptionBoxes,
                        public WindowFrame,
                        public CallListView,
                        public TrayIcon,
                        public CallerView,
                        public EventSounds,
                        public CallActions,
                        public MessagePlayer {
 public:
  MainWindowViews All() { return {*this, *this, *this, *this, *this, *this, *this, *this, *this}; }
};

}  // namespace orven
