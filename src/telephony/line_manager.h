// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "notify/line_health.h"
#include "notify/status_panel.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "telephony/telephony_control.h"

namespace orven {

/// Chooses the telephone device, takes and releases its line, and shows the line's state.
class LineManager {
 public:
  struct Ports {
    EventLoop& loop;
    TelephonyControl& Tapi1;
    Dialogs& dialogs;
    SystemLog& log;
    LineView& view;
  };

  LineManager(Ports ports, SettingsStore& store, Settings& settings)
      : ports_(ports),
        store_(store),
        settings_(settings),
        tmrOpenLine_(ports.loop.MakeTimer([this] { TryToOpen(settings_.Modem); })),
        tmrUseChosen_(ports.loop.MakeTimer([this] { UseChosen(); })) {}

  /// Finds the stored device again by its name, or chooses the first usable one when none was chosen
  /// yet. False when there is none; then the line stays off.
  bool SelectModemDevice();

  /// Shows a box that explains where to choose a device, unless that box is open.
  void TellToSelectDevice();

  /// Opens the line of a device; does nothing for a negative index or while a line is open. A failure (a port
  /// in use, no network yet) is tried again with growing pauses until it succeeds or CloseLine is called;
  /// each reason is logged once.
  void OpenLine(std::int32_t index);

  /// Releases the open line, even if another device was chosen meanwhile; `index` when none is open.
  void CloseLine(std::int32_t index);

  /// Replaces the devices: `replace` does it, while no line is open. The chosen device is found again by its
  /// name; if it no longer exists, the first usable one is chosen. The line is opened again if it was on, or
  /// if there was no device. Only while there is no call.
  void ReplaceDevices(const std::function<void()>& replace);

  /// Opens the chosen line in place of the open one; while there is a call, as soon as it is over.
  void UseChosen();

  bool LineOn() const { return health_.on; }

  const LineHealth& Health() const { return health_; }

  /// `listener` gets each change of the line's health, for as long as this object lives.
  void Listen(std::function<void(const LineHealth&)> listener) { listeners_.push_back(std::move(listener)); }

  /// Opening was tried, and no line has ever been open since the program started.
  bool NeverOpened() const { return ever_open_ == false; }

  /// Updates the on/off button, and the offer to use the chosen line while another one is open.
  void ShowLine();

  /// Index of the open line, or of the chosen device while none is open: choosing another device in the
  /// options must not take a call in progress off its line.
  std::int32_t CurrentIndex() const { return open_index_ >= 0 ? open_index_ : settings_.Modem; }

  /// Name of that line.
  std::string CurrentName() const { return open_index_ >= 0 ? DeviceName(open_index_) : settings_.ModemName; }

  /// Status texts "Monitoring " + device name, or "Off Mode" while the line is off; instead the trouble of a
  /// line that is open or is to be opened.
  void ShowMonitoring();

  /// What the device of line `index` reports, as of LineEvent::Kind::Trouble.
  void Trouble(std::int32_t index, const Words& trouble);

  /// Index of the first device with exactly this name; -1 when there is none.
  std::int32_t FindByName(const std::string& name) const;

 private:
  std::int32_t FindUsable() const;
  void ChooseFirstUsable();
  void TryToOpen(std::int32_t index);
  void Open(std::int32_t index);
  void OpenFailed(std::int32_t index, const std::string& line_of_log);
  void Become(LineHealth health);
  bool AnotherIsOpen() const {
    return open_index_ >= 0 && settings_.Modem >= 0 && open_index_ != settings_.Modem;
  }
  std::string DeviceName(std::int32_t index) const;

  Ports ports_;
  SettingsStore& store_;
  Settings& settings_;
  LineHealth health_;
  std::optional<bool> ever_open_;  ///< whether any opening has succeeded; nothing before the first one
  std::vector<std::function<void(const LineHealth&)>> listeners_;
  bool telling_ = false;  ///< the box about choosing a device is open
  std::int32_t open_index_ = -1;
  std::string failure_;            ///< of the latest opening, as the log has it
  std::chrono::seconds pause_{0};  ///< after the next failed opening
  std::unique_ptr<Timer> tmrOpenLine_;
  std::unique_ptr<Timer> tmrUseChosen_;  ///< runs while the chosen line waits for the end of a call
};

}  // namespace orven
