// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "actions/actions_engine.h"
#include "core/settings_store.h"
#include "notify/caller_view.h"
#include "notify/status_panel.h"
#include "records/call_list.h"
#include "records/local_player.h"
#include "setup/setup_steps.h"

namespace orven {

/// The boxes of the quick-option toolbar. Filling or selecting through these causes no callback.
class QuickOptionBoxes {
 public:
  virtual ~QuickOptionBoxes() = default;
  /// Selects the number in `cmbRings`.
  virtual void ShowRings(std::int16_t count) noexcept = 0;
  /// Fills `cmbDefGreet` and selects `selected` when it is among the names, else the first one.
  virtual void FillGreetings(const std::vector<std::string>& names, const std::string& selected) noexcept = 0;
  /// The text in `cmbDefGreet`; empty when it is empty.
  virtual std::string SelectedGreeting() const noexcept = 0;
  /// Checks or clears `chkRecMessage`.
  virtual void ShowRecordMessage(bool on) noexcept = 0;
};

/// The window itself, for start-up, tray and exit.
class WindowFrame : public PlacedWindow {
 public:
  enum class Toolbar { Toolbar1, ToolBarPlayer, TBQuickOption };

  /// Style bits of a toolbar's window. Only TBSTYLE_FLAT (0x800) has a visible effect.
  virtual std::uint32_t ToolbarStyle(Toolbar toolbar) const noexcept = 0;
  virtual void SetToolbarStyle(Toolbar toolbar, std::uint32_t style) noexcept = 0;

  /// Shows or hides the whole toolbar `TBQuickOption`.
  virtual void ShowQuickToolbar(bool on) noexcept = 0;

  /// `Check1`: the list shows grid lines. Setting it causes no callback.
  virtual bool GridLines() const noexcept = 0;
  virtual void SetGridLines(bool on) noexcept = 0;
  /// Sets those extended style bits of the call list that are in `mask` to the ones in `style`:
  /// 0x1 grid lines, 0x20 full-row select.
  virtual void SetListStyle(std::uint32_t mask, std::uint32_t style) noexcept = 0;

  virtual std::uintptr_t Handle() const noexcept = 0;

  /// It is the window that the user works in, and in sight.
  virtual bool InFront() const noexcept = 0;
  virtual void Show() noexcept = 0;
  virtual void Hide() noexcept = 0;
  virtual void Minimise() noexcept = 0;
  /// Shows the window in its normal state, in front of the others.
  virtual void Restore() noexcept = 0;

  /// Pops up `mnuSystry` where the mouse is.
  virtual void PopUpTrayMenu() noexcept = 0;

  /// Closes the caller view and the log viewer if they are loaded.
  virtual void CloseOtherWindows() noexcept = 0;

  /// What an empty call list offers to set up.
  virtual void ShowSetupOffers(const SetupOffers& offers) noexcept = 0;

  /// Second and third panel of `StatusBar1`.
  virtual void ShowClock(const std::string& time, const std::string& date) noexcept = 0;
};

/// All views of the main window.
struct MainWindowViews {
  LineView& line;
  MailView& mail;
  QuickOptionBoxes& boxes;
  WindowFrame& frame;
  CallListView& list;
  PlayerView& player;
  CallerViewWindow& caller_view;
};

}  // namespace orven
