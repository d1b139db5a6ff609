// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "base/paths.h"
#include "core/activity_log.h"
#include "core/error_trap.h"
#include "core/settings.h"
#include "platform/registry.h"

namespace orven {

/// Position and size of the main window in twips, with its state.
struct WindowGeometry {
  std::int32_t top = 0, left = 0, width = 0, height = 0;
  std::int16_t state = 0;  ///< 0 normal, 1 minimised, 2 maximised
  bool operator==(const WindowGeometry&) const = default;
};

/// The main window as the placement routines see it.
class PlacedWindow {
 public:
  virtual ~PlacedWindow() = default;
  virtual WindowGeometry Geometry() const = 0;
  virtual void Place(const WindowGeometry& geometry) = 0;
};

/// Copies the stored settings into the program's fields and writes single ones back. A value that
/// cannot be converted is logged and its field keeps what it held. User-interface thread.
class SettingsStore {
 public:
  SettingsStore(Registry& registry, SystemLog& log, Settings& settings, const ApplicationFolder& home)
      : registry_(registry), log_(log), settings_(settings), home_(home) {}

  void GetMainOptions();
  void GetMainAction();
  void GetMainEvents();

  /// Reads what the log viewer and the log properties work with. A value that cannot be converted is skipped
  /// without a log line.
  void GetLogProperties();

  /// Reads the window placement; places the window only when its present state is normal. A stored value that
  /// is not a number leaves that edge of the window unchanged.
  void GetView(PlacedWindow& window);

  /// Saves the window placement, unless the window is hidden, minimised or maximised.
  void SetView(const PlacedWindow& window, bool hidden);

  /// Reads the options of the whole program, and stores the messages path if it is empty; runs after
  /// GetMainOptions. `use_messages_path` runs before the log flags are read, so that it can log its errors.
  void GetAppOptions(const std::function<void()>& use_messages_path);

  /// Limits messages to `MaxRec` minutes, under the trap of the running routine. A limit whose seconds do not
  /// fit into 16 bits is logged, and the previous one stays.
  void TakeMaxRec(const ErrorTrap& trap);

  /// Whether the call list shows grid lines; it does until a person switches them off.
  bool GetGridLines();
  void SetGridLines(bool on);

  /// What a dialog shows of the stored settings. One that cannot be converted fails under `trap`; it is off,
  /// or empty.
  Choices StoredChoices(Group group, const ErrorTrap& trap);

  /// What a dialog shows of the settings as they are used now.
  Choices UsedChoices(Group group);

  /// One stored setting as text; kNotFound when it is missing.
  std::string Value(std::string_view name);

  /// Whether a check without a field is on.
  bool IsOn(std::string_view name);

  /// Writes one setting as text.
  void Set(std::string_view name, const std::string& text);

 private:
  void Read(Group group, const ErrorTrap& trap);
  void Read(std::string_view name, const ErrorTrap& trap);

  Registry& registry_;
  SystemLog& log_;
  Settings& settings_;
  const ApplicationFolder& home_;
};

}  // namespace orven
